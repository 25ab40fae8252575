#include "cad/db/Explode.h"

#include "cad/db/BlockPlacement.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/ExplodeSupport.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/ObjectIdentity.h"
#include "cad/db/Transform.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/db/kinds/KindSupport.h"
#include "cad/dxf/NumberText.h"

#include <array>
#include <cmath>
#include <numbers>

namespace veltarn::db {

using namespace kind_support;

Result<std::vector<TagList>> explode(const Database& db, Handle entity) {
    TagList tags;
    if (OpenStatus status = db.read(entity, tags); status != OpenStatus::Ok) return fail("cannot explode " + formatHandle(entity) + ": " + describe(status));
    if (db.blockOf(entity) == kNoHandle) return fail("cannot explode " + formatHandle(entity) + ": not an entity");
    std::string_view type = tags.type();
    const EntityKindOps* kind = kindOf(type, tags);
    if (!kind || !kind->explode) return fail("cannot explode a " + std::string(type));
    return kind->explode(db, tags);
}

Result<std::vector<Handle>> explodeInPlace(Database& db, Handle entity) {
    {
        ObjectWriter check = db.openForWrite(entity);
        if (!check) return fail("cannot explode " + formatHandle(entity) + ": " + describe(check.status()));
    }
    auto pieces = explode(db, entity);
    if (!pieces) return pieces.error();
    Handle block = db.blockOf(entity);
    std::vector<Handle> added;
    for (TagList& piece : *pieces) {
        auto handle = db.appendEntity(block, std::move(piece));
        if (!handle) {
            for (Handle h : added) (void)db.erase(h);  // nothing half done
            return handle.error();
        }
        added.push_back(*handle);
    }
    (void)eraseObject(db, entity);
    return added;
}

}  // namespace veltarn::db
