// CIRCLE: centre (10, in its OCS) and radius (40) in AcDbCircle.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    PlaneMap plane(p, normalIn(tags, from, to));
    placeInPlane(tags, from, to, p, plane);
    setNormal(tags, from, to, plane.normal);
    return {};
}

std::optional<Extents> extents(const TagList& tags) {
    auto circle = circleOf(tags);
    if (!circle) return std::nullopt;
    const Point3& center = circle->center;
    const double radius = circle->radius;
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    bool any = false;
    for (double sign : {-1.0, 1.0}) {
        const double x = center.x + sign * radius, y = center.y + sign * radius;
        if (!std::isfinite(x) || !std::isfinite(y)) continue;
        box.add(x, y);
        any = true;
    }
    if (!any) return std::nullopt;
    return box;
}

// A polygon: the circle in its plane.
std::optional<Outline> outline(const TagList& tags, double tolerance) {
    const auto circle = circleOf(tags);
    if (!circle) return std::nullopt;
    std::vector<Point3> ring;
    outline_support::appendArc(ring, circle->center, circle->radius, 0, 2 * std::numbers::pi, tolerance);
    outline_support::toWcs(ring, normalIn(tags, 1, ownEnd(tags)));
    return outline_support::pathOutline(std::move(ring), true);
}

}  // namespace

const EntityKindOps kCircle{
    .kind = EntityKind::Circle,
    .geometrySubclass = "AcDbCircle",
    .place = place,
    .extents = extents,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
