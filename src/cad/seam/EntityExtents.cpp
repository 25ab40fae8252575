#include "cad/seam/EntityExtents.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "cad/db/EntityProperties.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/KindSupport.h"

namespace veltarn::seam {
namespace {

using db::kind_support::addArc;

constexpr double kDegrees = std::numbers::pi / 180.0;
// A polyline's segments: straight, or arcs where a vertex has a bulge (the tangent of a quarter of
// the arc's angle; positive turns counter-clockwise).
void addPolyline(Extents& box, const std::vector<db::Vertex>& vertices, bool closed) {
    for (const db::Vertex& v : vertices) box.add(v.point.x, v.point.y);
    const std::size_t segments = closed ? vertices.size() : vertices.size() - (vertices.empty() ? 0 : 1);
    for (std::size_t i = 0; i < segments; ++i) {
        const db::Vertex& from = vertices[i];
        const db::Point3& to = vertices[(i + 1) % vertices.size()].point;
        const double bulge = from.bulge;
        const double chord = std::hypot(to.x - from.point.x, to.y - from.point.y);
        if (bulge == 0 || !std::isfinite(bulge) || chord == 0) continue;
        // The centre lies off the chord's midpoint, along its left normal.
        const double offset = chord / 2 * (1 - bulge * bulge) / (2 * bulge);
        const double ux = (to.x - from.point.x) / chord, uy = (to.y - from.point.y) / chord;
        const db::Point3 center{(from.point.x + to.x) / 2 - uy * offset, (from.point.y + to.y) / 2 + ux * offset, 0};
        const double radius = std::hypot(from.point.x - center.x, from.point.y - center.y);
        double start = std::atan2(from.point.y - center.y, from.point.x - center.x) / kDegrees;
        double end = std::atan2(to.y - center.y, to.x - center.x) / kDegrees;
        if (bulge < 0) std::swap(start, end);  // clockwise: the same arc, counter-clockwise from the end
        addArc(box, center, radius, start, end);
    }
}

}  // namespace

std::optional<Extents> entityExtents(const db::TagList& tags) {
    const std::string_view type = tags.type();
    if (const db::EntityKindOps* kind = db::kindOf(type, tags))
        return kind->extents ? kind->extents(tags) : db::kind_support::pointExtents(tags, false);
    if (type == "LWPOLYLINE" || type == "POLYLINE") {
        const std::vector<db::Vertex> vertices = db::polylineVertices(tags);
        if (vertices.empty()) return std::nullopt;
        Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
        addPolyline(box, vertices, db::closed(tags).value_or(false));
        return box;
    }
    return db::kind_support::pointExtents(tags, false);  // the points of its geometry
}

}  // namespace veltarn::seam
