// ELLIPSE: centre (10) and major axis end relative to it (11) in WCS, minor to major ratio (40),
// start and end parameters (41, 42, radians).
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

#include <numbers>

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    mapPoints(tags, gc::kX, from, to, [&](const Point3& q) { return p.map.apply(q); });
    mapPoints(tags, gc::kX2, from, to, [&](const Point3& v) { return p.map.vector(v); });
    if (p.mirrored) {  // the same normal side: the curve's parameter runs backwards
        double start = tags.real(gc::kReal2, from, to).value_or(0),
               end = tags.real(gc::kReal3, from, to).value_or(2 * std::numbers::pi);
        mapReals(tags, gc::kReal2, from, to,
                 [&](double) { return std::fmod(4 * std::numbers::pi - end, 2 * std::numbers::pi); });
        mapReals(tags, gc::kReal3, from, to,
                 [&](double) { return std::fmod(4 * std::numbers::pi - start, 2 * std::numbers::pi); });
    }
    setNormal(tags, from, to, normalized(p.map.vector(n)));
    return {};
}

// Points are c + a cos t + b sin t; x and y are extreme where their derivatives vanish.
std::optional<Extents> extents(const TagList& tags) {
    auto center = tags.point(gc::kX);
    auto axis = tags.point(gc::kX2);
    if (!center || !axis) return std::nullopt;
    const double ratio = tags.real(gc::kReal).value_or(1);
    const double ax = axis->x, ay = axis->y, bx = -axis->y * ratio, by = axis->x * ratio;
    double start = tags.real(gc::kReal2).value_or(0), end = tags.real(gc::kReal3).value_or(2 * std::numbers::pi);
    const double turn = 2 * std::numbers::pi;
    start = std::fmod(start, turn);
    if (start < 0) start += turn;
    end = std::fmod(end, turn);
    if (end < 0) end += turn;
    if (end <= start) end += turn;
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    auto addAt = [&](double t) {
        box.add(center->x + ax * std::cos(t) + bx * std::sin(t), center->y + ay * std::cos(t) + by * std::sin(t));
    };
    addAt(start);
    addAt(end);
    for (double extreme : {std::atan2(bx, ax), std::atan2(by, ay)}) {
        for (double t = extreme - turn; t < end + turn; t += std::numbers::pi)
            if (t > start && t < end) addAt(t);
    }
    return box;
}

// The whole ellipse is a polygon, a part of it a line. Its minor axis is the major one turned a
// quarter about the extrusion and shortened by the ratio.
std::optional<Outline> outline(const TagList& tags, double tolerance) {
    const std::size_t end = ownEnd(tags);
    const auto center = tags.point(gc::kX, 1, end);
    const auto major = tags.point(gc::kX2, 1, end);
    if (!center || !major) return std::nullopt;
    const double ratio = tags.real(gc::kReal, 1, end).value_or(1);
    const Point3 minor = cross(normalized(normalIn(tags, 1, end)), *major) * ratio;
    const double turn = 2 * std::numbers::pi;
    const double start = tags.real(gc::kReal2, 1, end).value_or(0);
    double sweep = std::fmod(tags.real(gc::kReal3, 1, end).value_or(turn) - start, turn);
    if (sweep <= 0) sweep += turn;
    const bool whole = std::abs(sweep - turn) < 1e-9;
    std::vector<Point3> points;
    outline_support::appendEllipse(points, *center, *major, minor, start, sweep, tolerance);
    return outline_support::pathOutline(std::move(points), whole);
}

}  // namespace

const EntityKindOps kEllipse{
    .kind = EntityKind::Ellipse,
    .geometrySubclass = "AcDbEllipse",
    .place = place,
    .extents = extents,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
