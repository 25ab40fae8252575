// LINE: two points (10, 11) in WCS, extruded along its normal by its thickness.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4})
        mapPoints(tags, code, from, to, [&](const Point3& q) { return p.map.apply(q); });
    setNormal(tags, from, to, normalized(p.map.vector(n)));
    return {};
}

}  // namespace

const EntityKindOps kLine{
    .kind = EntityKind::Line,
    .geometrySubclass = "AcDbLine",
    .keepsShapeUnderAnyMap = true,
    .place = place,
};

}  // namespace veltarn::db::kinds
