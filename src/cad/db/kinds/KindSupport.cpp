#include "cad/db/kinds/KindSupport.h"

#include <numbers>

namespace veltarn::db::kind_support {

void setNormal(TagList& tags, std::size_t from, std::size_t to, const Point3& normal) {
    std::size_t at = tags.find(gc::kNormalX, from, to);
    if (at != TagList::npos) {
        mapPoints(tags, gc::kNormalX, at, at + 1, [&](const Point3&) { return normal; });
        if (!(at + 2 < tags.size() && tags[at + 2].code == gc::kNormalX + 20))
            tags.insert(at + 2, gc::kNormalX + 20, real(normal.z));
        return;
    }
    if (isDefaultNormal(normal)) return;
    std::size_t end = from;
    while (end < to && tags[end].code < gc::kXdataApp)
        ++end;
    tags.insert(end, gc::kNormalX, real(normal.x));
    tags.insert(end + 1, gc::kNormalX + 10, real(normal.y));
    tags.insert(end + 2, gc::kNormalX + 20, real(normal.z));
}

void placeInPlane(TagList& tags, std::size_t from, std::size_t to, const Placement& p, const PlaneMap& plane) {
    for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4})
        mapPoints(tags, code, from, to, [&](const Point3& q) { return plane.point(q); });
    mapReals(tags, gc::kReal, from, to, [&](double v) { return v * p.size; });
}

std::optional<CircleShape> circleOf(const TagList& tags) {
    auto [from, to] = tags.subclass("AcDbCircle");
    const std::size_t begin = from == TagList::npos ? 0 : from;
    auto center = tags.point(gc::kX, begin, to);
    if (!center) return std::nullopt;
    return CircleShape{*center, std::abs(tags.real(gc::kReal, begin, to).value_or(0))};
}

Result<void> placeWcsPointsAndNormal(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4})
        mapPoints(tags, code, from, to, [&](const Point3& q) { return p.map.apply(q); });
    setNormal(tags, from, to, normalized(p.map.vector(n)));
    return {};
}

void addSegments(std::vector<TagList>& out, const TagList& source, const std::vector<PathVertex>& vertices, bool closed,
                 bool planar, const Point3& normal, double thickness) {
    bool modern = source.hasMarkers();
    Ocs ocs(normal);
    std::size_t n = vertices.size();
    std::size_t count = closed ? n : (n == 0 ? 0 : n - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const PathVertex& a = vertices[i];
        const PathVertex& b = vertices[(i + 1) % n];
        if (a.point == b.point) continue;
        if (!planar || a.bulge == 0) {
            TagList line = pieceStart(source, "LINE");
            if (modern) line.add(gc::kSubclass, "AcDbLine");
            if (thickness != 0) line.addReal(gc::kThickness, thickness);
            line.addPoint(gc::kX, planar ? ocs.toWcs(a.point) : a.point);
            line.addPoint(gc::kX2, planar ? ocs.toWcs(b.point) : b.point);
            if (planar) addNormal(line, normal);
            out.push_back(std::move(line));
            continue;
        }
        // The arc through a and b whose bulge is tan(included angle / 4); negative bulges turn clockwise.
        Point3 chord = b.point - a.point;
        double d = std::hypot(chord.x, chord.y);
        Point3 left{-chord.y / d, chord.x / d, 0};
        Point3 mid = (a.point + b.point) * 0.5;
        Point3 center = mid + left * (d * (1 - a.bulge * a.bulge) / (4 * a.bulge));
        double radius = d * (1 + a.bulge * a.bulge) / (4 * std::abs(a.bulge));
        double from = std::atan2(a.point.y - center.y, a.point.x - center.x) * kDegrees;
        double to = std::atan2(b.point.y - center.y, b.point.x - center.x) * kDegrees;
        if (a.bulge < 0) std::swap(from, to);  // arcs always run counter-clockwise
        TagList arc = pieceStart(source, "ARC");
        if (modern) arc.add(gc::kSubclass, "AcDbCircle");
        if (thickness != 0) arc.addReal(gc::kThickness, thickness);
        arc.addPoint(gc::kX, {center.x, center.y, a.point.z});
        arc.addReal(gc::kReal, radius);
        addNormal(arc, normal);
        if (modern) arc.add(gc::kSubclass, "AcDbArc");
        arc.addReal(gc::kAngle, from < 0 ? from + 360 : from);
        arc.addReal(gc::kAngle2, to < 0 ? to + 360 : to);
        out.push_back(std::move(arc));
    }
}

void addPolyline(Extents& box, const std::vector<Vertex>& vertices, bool closed) {
    for (const Vertex& v : vertices)
        box.add(v.point.x, v.point.y);
    const std::size_t segments = closed ? vertices.size() : vertices.size() - (vertices.empty() ? 0 : 1);
    for (std::size_t i = 0; i < segments; ++i) {
        const Vertex& from = vertices[i];
        const Point3& to = vertices[(i + 1) % vertices.size()].point;
        const double bulge = from.bulge;
        const double chord = std::hypot(to.x - from.point.x, to.y - from.point.y);
        if (bulge == 0 || !std::isfinite(bulge) || chord == 0) continue;
        // The centre lies off the chord's midpoint, along its left normal.
        const double offset = chord / 2 * (1 - bulge * bulge) / (2 * bulge);
        const double ux = (to.x - from.point.x) / chord, uy = (to.y - from.point.y) / chord;
        const Point3 center{(from.point.x + to.x) / 2 - uy * offset, (from.point.y + to.y) / 2 + ux * offset, 0};
        const double radius = std::hypot(from.point.x - center.x, from.point.y - center.y);
        double start = std::atan2(from.point.y - center.y, from.point.x - center.x) / kRadiansPerDegree;
        double end = std::atan2(to.y - center.y, to.x - center.x) / kRadiansPerDegree;
        if (bulge < 0) std::swap(start, end);  // clockwise: the same arc, counter-clockwise from the end
        addArc(box, center, radius, start, end);
    }
}

void addArc(Extents& box, const Point3& center, double radius, double start, double end) {
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

void addTurnedBox(Extents& box, const Point3& anchor, double dx, double dy, double width, double height,
                  double radians) {
    const double c = std::cos(radians), s = std::sin(radians);
    for (double x : {dx, dx + width})
        for (double y : {dy, dy + height})
            box.add(anchor.x + x * c - y * s, anchor.y + x * s + y * c);
}

std::size_t shownLength(std::string_view text) {
    std::size_t count = 0;
    for (unsigned char c : text)
        if ((c & 0xC0) != 0x80) ++count;  // one per UTF-8 character
    return count;
}

std::optional<Extents> pointExtents(const TagList& tags, bool directionAt11) {
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    bool any = false;
    std::size_t end = tags.find(gc::kStructure, 1);
    if (end == TagList::npos) end = tags.size();
    for (std::size_t i = 1; i < end; ++i) {
        const int code = tags[i].code;
        if (code < gc::kPointFirst || code > gc::kPointLast || (directionAt11 && code == gc::kX2) || tags[i].code >= gc::kXdataFirst)
            continue;
        if (auto p = tags.pointAt(i); p && std::isfinite(p->x) && std::isfinite(p->y)) {
            box.add(p->x, p->y);
            any = true;
        }
    }
    if (!any) return std::nullopt;
    return box;
}

}  // namespace veltarn::db::kind_support
