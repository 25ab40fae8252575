#include "cad/db/BlockPlacement.h"

#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

#include <numbers>

namespace veltarn::db {

using namespace kind_support;

namespace {

}  // namespace

Result<void> placeEntity(TagList& tags, const Placement& p, std::string_view block) {
    std::string type(tags.type());
    std::size_t from = 1, to = ownEnd(tags);
    auto unplaceable = [&](std::string_view why) {
        return fail("cannot explode: block \"" + std::string(block) + "\" holds a " + type + " that " + std::string(why));
    };
    const EntityKindOps* kind = kindOf(type, tags);
    // Kinds whose shape survives any linear map; the others need equal X and Y scales.
    bool affine = kind && kind->keepsShapeUnderAnyMap;
    if (!affine && !p.equalXY()) return unplaceable("cannot be scaled unequally in X and Y");
    Point3 n = normalIn(tags, from, to);
    if (!affine && !isDefaultNormal(n) && !p.equalXYZ())
        return unplaceable("lies in a tilted plane and cannot be scaled unequally");
    if (!kind || !kind->place) return unplaceable("cannot be placed");
    return kind->place(tags, from, to, p);
}

}  // namespace veltarn::db
