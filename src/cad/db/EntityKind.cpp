#include "cad/db/EntityKind.h"

#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/EntityKindOps.h"

namespace veltarn::db {
namespace {


}  // namespace

bool isDimension(std::string_view type) {
    return type == "DIMENSION" || type == "ARC_DIMENSION" || type == "LARGE_RADIAL_DIMENSION";
}

EntityKind entityKind(const TagList& tags) {
    std::string_view type = tags.type();
    if (const EntityKindOps* kind = kindOf(type, tags)) return kind->kind;
    return EntityKind::Other;
}

bool isEntity(const Database& db, Handle handle) { return db.blockOf(handle) != kNoHandle; }

}  // namespace veltarn::db
