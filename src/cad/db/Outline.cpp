#include "cad/db/Outline.h"

#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/db/kinds/OutlineSupport.h"

#include <algorithm>
#include <cmath>

namespace veltarn::db {
namespace {

bool finite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// A ring's last point that is its first again, but for the rounding of a full turn's sine.
bool closesOn(const Point3& last, const Point3& first) {
    const double scale = std::max({1.0, std::abs(first.x), std::abs(first.y), std::abs(first.z)});
    return std::abs(last.x - first.x) <= 1e-12 * scale && std::abs(last.y - first.y) <= 1e-12 * scale &&
           std::abs(last.z - first.z) <= 1e-12 * scale;
}

void dropRepeats(std::vector<Point3>& points) { points.erase(std::unique(points.begin(), points.end()), points.end()); }

// Twice the area the ring encloses seen from above: positive when it runs counter-clockwise.
double signedArea(const std::vector<Point3>& ring) {
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point3& a = ring[i];
        const Point3& b = ring[(i + 1) % ring.size()];
        sum += a.x * b.y - b.x * a.y;
    }
    return sum;
}

// What a kind's outline promises its users, made true once here: finite points, no point twice in
// a row, rings open and turned the GIS way, and what collapsed given as what it still is.
std::optional<Outline> finish(Outline outline) {
    for (const auto& part : outline.parts)
        if (!std::all_of(part.begin(), part.end(), finite)) return std::nullopt;
    for (auto& part : outline.parts)
        dropRepeats(part);
    std::erase_if(outline.parts, [](const std::vector<Point3>& part) { return part.empty(); });
    if (outline.parts.empty()) return std::nullopt;

    if (outline.shape == Outline::Shape::Polygon) {
        for (auto& ring : outline.parts)
            while (ring.size() > 1 && closesOn(ring.back(), ring.front()))
                ring.pop_back();
        std::vector<Point3>& outer = outline.parts.front();
        if (outer.size() < 3) {
            std::vector<Point3> line = std::move(outer);
            return finish({Outline::Shape::Line, {std::move(line)}});
        }
        // Holes of fewer than three points enclose nothing.
        std::erase_if(outline.parts, [&](const std::vector<Point3>& ring) { return ring.size() < 3; });
        for (std::size_t i = 0; i < outline.parts.size(); ++i) {
            std::vector<Point3>& ring = outline.parts[i];
            const double area = signedArea(ring);
            if ((i == 0 && area < 0) || (i > 0 && area > 0)) std::reverse(ring.begin(), ring.end());
        }
        return outline;
    }
    if (outline.shape == Outline::Shape::Line) {
        const Point3 first = outline.parts.front().front();
        std::erase_if(outline.parts, [](const std::vector<Point3>& part) { return part.size() < 2; });
        if (outline.parts.empty()) return outline_support::pointOutline(first);
        return outline;
    }
    return outline_support::pointOutline(outline.parts.front().front());
}

}  // namespace

std::optional<Outline> outline(const TagList& tags, double tolerance) {
    if (tags.empty()) return std::nullopt;
    if (!(tolerance > 0)) tolerance = 0;  // NaN too: the finest the caps allow
    const EntityKindOps* kind = kindOf(tags);
    std::optional<Outline> made =
        kind && kind->outline ? kind->outline(tags, tolerance) : outline_support::pointAt(tags, gc::kX, false);
    if (!made) return std::nullopt;
    return finish(std::move(*made));
}

}  // namespace veltarn::db
