// SPLINE: control points (10), fit points (11) and start and end tangents (12, 13), all in WCS;
// flags (70, bit 1 closed) in AcDbSpline.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

#include <algorithm>

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

constexpr int kDegree = 71, kKnot = gc::kReal, kWeight = gc::kReal2;

// The curve of its control points, knots and weights; a spline with fit points only (or control
// data that make no spline) joins its fit points straight, and one with neither its control
// points. A closed spline is a polygon.
std::optional<Outline> outline(const TagList& tags, double tolerance) {
    auto [from, to] = tags.subclass("AcDbSpline");
    if (from == TagList::npos) return std::nullopt;
    const bool isClosed = closed(tags).value_or(false);
    outline_support::Spline spline;
    spline.degree = static_cast<int>(std::clamp<std::int64_t>(tags.integer(kDegree, from, to).value_or(3), -1, 1000));
    spline.controls = pointList(tags, "AcDbSpline", gc::kX);
    for (std::size_t i = from; i < to; ++i) {
        if (tags[i].code == kKnot) spline.knots.push_back(realAt(tags, i));
        if (tags[i].code == kWeight) spline.weights.push_back(realAt(tags, i));
    }
    if (!spline.controls.empty())
        if (auto curve = outline_support::sampleSpline(spline, tolerance))
            return outline_support::pathOutline(std::move(*curve), isClosed);
    std::vector<Point3> fit = pointList(tags, "AcDbSpline", gc::kX2);
    std::vector<Point3> points = fit.size() >= 2 ? std::move(fit) : std::move(spline.controls);
    if (points.empty()) return std::nullopt;
    return outline_support::pathOutline(std::move(points), isClosed);
}

}  // namespace

const EntityKindOps kSpline{
    .kind = EntityKind::Spline,
    .geometrySubclass = "AcDbSpline",
    .closedFlag = ClosedFlag{"AcDbSpline", gc::kFlags, 1},
    .keepsShapeUnderAnyMap = true,
    .place = place,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
