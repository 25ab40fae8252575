// 3DFACE, SOLID and TRACE: four corners (10 to 13). A 3DFACE's are in WCS; a SOLID's and a
// TRACE's are in their OCS, with a thickness along its normal.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> placeFace(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4})
        mapPoints(tags, code, from, to, [&](const Point3& q) { return p.map.apply(q); });
    return {};
}

Result<void> placeInOcs(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    PlaneMap plane(p, normalIn(tags, from, to));
    placeInPlane(tags, from, to, p, plane);
    setNormal(tags, from, to, plane.normal);
    return {};
}

}  // namespace

const EntityKindOps kFace3d{
    .kind = EntityKind::Face3d,
    .geometrySubclass = "AcDbFace",
    .keepsShapeUnderAnyMap = true,
    .place = placeFace,
};

const EntityKindOps kSolid2d{
    .kind = EntityKind::Solid2d,
    .geometrySubclass = "AcDbTrace",
    .place = placeInOcs,
};

// A TRACE has no geometry subclass of its own to be written through.
const EntityKindOps kTrace{
    .kind = EntityKind::Trace,
    .place = placeInOcs,
};

}  // namespace veltarn::db::kinds
