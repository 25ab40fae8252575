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
    if (type == "INSERT") {
        // A multiple insert: rows or columns above one, or its own marker.
        if (tags.find(gc::kSubclass, "AcDbMInsertBlock") != TagList::npos) return EntityKind::MultipleInsert;
        std::size_t end = tags.find(gc::kStructure, 1);
        if (tags.integer(gc::kFlags, 1, end).value_or(1) > 1 || tags.integer(gc::kInt71, 1, end).value_or(1) > 1)
            return EntityKind::MultipleInsert;
        return EntityKind::BlockReference;
    }
    return EntityKind::Other;
}

bool isEntity(const Database& db, Handle handle) { return db.blockOf(handle) != kNoHandle; }

}  // namespace veltarn::db
