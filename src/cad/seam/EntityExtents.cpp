#include "cad/seam/EntityExtents.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"

namespace veltarn::seam {
namespace {

// The quadrant points an arc from `start` to `end` (degrees, counter-clockwise) passes.
void addArc(Extents& box, const db::Point3& center, double radius, double start, double end) {
    auto normalized = [](double a) {
        a = std::fmod(a, 360.0);
        return a < 0 ? a + 360.0 : a;
    };
    start = normalized(start);
    end = normalized(end);
    if (end <= start) end += 360.0;
    auto addAngle = [&](double degrees) {
        const double radians = degrees * std::numbers::pi / 180.0;
        box.add(center.x + radius * std::cos(radians), center.y + radius * std::sin(radians));
    };
    addAngle(start);
    addAngle(end);
    for (double q = 0; q < 720.0; q += 90.0)
        if (q > start && q < end) addAngle(q);
}

}  // namespace

void Extents::add(double x, double y) {
    minX = std::min(minX, x);
    maxX = std::max(maxX, x);
    minY = std::min(minY, y);
    maxY = std::max(maxY, y);
}

std::optional<Extents> entityExtents(const db::TagList& tags) {
    const std::string_view type = tags.type();
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    bool any = false;
    auto addPoint = [&](const db::Point3& p) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
        box.add(p.x, p.y);
        any = true;
    };
    if (type == "CIRCLE" || type == "ARC") {
        auto [from, to] = tags.subclass("AcDbCircle");
        auto center = tags.point(db::gc::kX, from == db::TagList::npos ? 0 : from, to);
        const double radius = std::abs(tags.real(db::gc::kReal, from == db::TagList::npos ? 0 : from, to).value_or(0));
        if (!center) return std::nullopt;
        if (type == "CIRCLE") {
            addPoint({center->x - radius, center->y - radius, 0});
            addPoint({center->x + radius, center->y + radius, 0});
        } else {
            auto [arcFrom, arcTo] = tags.subclass("AcDbArc");
            const std::size_t begin = arcFrom == db::TagList::npos ? 0 : arcFrom;
            addArc(box, *center, radius, tags.real(db::gc::kAngle, begin, arcTo).value_or(0),
                   tags.real(db::gc::kAngle2, begin, arcTo).value_or(360));
            any = true;
        }
    } else if (type == "ELLIPSE") {
        auto center = tags.point(db::gc::kX);
        auto axis = tags.point(db::gc::kX2);
        if (!center || !axis) return std::nullopt;
        // The whole ellipse fits in the circle of its major axis.
        const double r = std::hypot(axis->x, axis->y);
        addPoint({center->x - r, center->y - r, 0});
        addPoint({center->x + r, center->y + r, 0});
    } else if (type == "LWPOLYLINE" || type == "POLYLINE") {
        for (const db::Vertex& v : db::polylineVertices(tags)) addPoint(v.point);
    } else if (type == "HATCH") {
        for (const db::HatchPath& path : db::hatchPaths(tags))
            for (const db::Vertex& v : path.vertices) addPoint(v.point);
    } else {
        // Points of the entity's own geometry; a direction or an unused text alignment (11) is none.
        const bool directionAt11 = type == "XLINE" || type == "RAY" || type == "MTEXT" || type == "TEXT";
        std::size_t end = tags.find(db::gc::kStructure, 1);
        if (end == db::TagList::npos) end = tags.size();
        for (std::size_t i = 1; i < end; ++i) {
            const int code = tags[i].code;
            if (code < 10 || code > 18 || (directionAt11 && code == 11) || tags[i].code >= 1000) continue;
            if (auto p = tags.pointAt(i)) addPoint(*p);
        }
    }
    if (!any) return std::nullopt;
    return box;
}

}  // namespace veltarn::seam
