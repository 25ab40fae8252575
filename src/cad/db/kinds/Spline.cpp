// SPLINE: control points (10), fit points (11) and start and end tangents (12, 13), all in WCS;
// flags (70, bit 1 closed) in AcDbSpline.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    auto wcs = [&](const Point3& q) { return p.map.apply(q); };
    auto vector = [&](const Point3& v) { return p.map.vector(v); };
    mapPoints(tags, gc::kX, from, to, wcs);
    mapPoints(tags, gc::kX2, from, to, wcs);
    mapPoints(tags, gc::kX3, from, to, vector);
    mapPoints(tags, gc::kX4, from, to, vector);
    if (tags.find(gc::kNormalX, from, to) != TagList::npos) setNormal(tags, from, to, normalized(vector(n)));
    return {};
}

}  // namespace

const EntityKindOps kSpline{
    .kind = EntityKind::Spline,
    .geometrySubclass = "AcDbSpline",
    .closedFlag = ClosedFlag{"AcDbSpline", gc::kFlags, 1},
    .keepsShapeUnderAnyMap = true,
    .place = place,
};

}  // namespace veltarn::db::kinds
