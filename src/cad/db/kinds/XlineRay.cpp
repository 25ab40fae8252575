// XLINE and RAY: a point (10) and a direction (11), both in WCS.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    mapPoints(tags, gc::kX, from, to, [&](const Point3& q) { return p.map.apply(q); });
    mapPoints(tags, gc::kX2, from, to, [&](const Point3& v) { return normalized(p.map.vector(v)); });
    return {};
}

// The direction is no point of the box.
std::optional<Extents> extents(const TagList& tags) { return pointExtents(tags, true); }

}  // namespace

const EntityKindOps kXline{
    .kind = EntityKind::Xline,
    .geometrySubclass = "AcDbXline",
    .keepsShapeUnderAnyMap = true,
    .place = place,
    .extents = extents,
    .outline = outline_support::noOutline,  // endless: no finite geometry
};

const EntityKindOps kRay{
    .kind = EntityKind::Ray,
    .geometrySubclass = "AcDbRay",
    .keepsShapeUnderAnyMap = true,
    .place = place,
    .extents = extents,
    .outline = outline_support::noOutline,  // endless: no finite geometry
};

}  // namespace veltarn::db::kinds
