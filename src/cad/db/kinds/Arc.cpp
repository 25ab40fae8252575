// ARC: a circle's centre and radius (AcDbCircle) and its start and end angles (50, 51, degrees,
// counter-clockwise in its OCS) in AcDbArc.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    PlaneMap plane(p, normalIn(tags, from, to));
    placeInPlane(tags, from, to, p, plane);
    // A mirror runs the arc the other way: its ends trade places.
    double start = tags.real(gc::kAngle, from, to).value_or(0), end = tags.real(gc::kAngle2, from, to).value_or(360);
    double a = plane.angle(p.mirrored ? end : start), b = plane.angle(p.mirrored ? start : end);
    tags.setRealIn("AcDbArc", gc::kAngle, std::fmod(a + 720, 360));
    tags.setRealIn("AcDbArc", gc::kAngle2, std::fmod(b + 720, 360));
    setNormal(tags, from, ownEnd(tags), plane.normal);
    return {};
}

std::optional<Extents> extents(const TagList& tags) {
    auto circle = circleOf(tags);
    if (!circle) return std::nullopt;
    const Point3& center = circle->center;
    const double radius = circle->radius;
    auto [arcFrom, arcTo] = tags.subclass("AcDbArc");
    const std::size_t begin = arcFrom == TagList::npos ? 0 : arcFrom;
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    addArc(box, center, radius, tags.real(gc::kAngle, begin, arcTo).value_or(0),
           tags.real(gc::kAngle2, begin, arcTo).value_or(360));
    return box;
}

// A line: counter-clockwise in its plane from the start angle to the end angle, a full turn when
// they are equal.
std::optional<Outline> outline(const TagList& tags, double tolerance) {
    const auto circle = circleOf(tags);
    if (!circle) return std::nullopt;
    auto [arcFrom, arcTo] = tags.subclass("AcDbArc");
    const std::size_t begin = arcFrom == TagList::npos ? 0 : arcFrom;
    const double start = tags.real(gc::kAngle, begin, arcTo).value_or(0);
    double sweep = std::fmod(tags.real(gc::kAngle2, begin, arcTo).value_or(360) - start, 360.0);
    if (sweep <= 0) sweep += 360;
    std::vector<Point3> points;
    outline_support::appendArc(points, circle->center, circle->radius, start * kRadiansPerDegree,
                               sweep * kRadiansPerDegree, tolerance);
    outline_support::toWcs(points, normalIn(tags, 1, ownEnd(tags)));
    return outline_support::lineOutline(std::move(points));
}

}  // namespace

const EntityKindOps kArc{
    .kind = EntityKind::Arc,
    .geometrySubclass = "AcDbCircle",
    .place = place,
    .extents = extents,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
