// HATCH: boundary paths (91 on: polyline paths and edge paths of lines, arcs, elliptic arcs and
// splines), elevation (30 of 10) and extrusion, pattern (2, 52, 41 and the definition lines) and
// seed points, all in its OCS, in AcDbHatch.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

#include "cad/db/Geometry.h"

#include <algorithm>

namespace veltarn::db {
namespace {

using namespace kind_support;

// HATCH boundary data.
constexpr int kPathCount = 91, kPathFlags = 92, kEdgeCount = 93, kEdgeType = 72, kHasBulge = 72, kIsClosed = 73;
constexpr int kSourceCount = 97, kSplineKnots = 95, kSplineControls = 96, kSplineRational = 73;
constexpr int kPolylinePathFlag = 2;

// --- Hatches -----------------------------------------------------------------------------------------

// Shifts an arc edge's stored angles by `shift` degrees, keeping its span: the start goes to
// [0, 360) and the end follows it (a full circle stays 0..360 wide).
void shiftAngles(TagList& edge, double shift) {
    std::size_t start = edge.find(gc::kAngle), end = edge.find(gc::kAngle2);
    if (start == TagList::npos || end == TagList::npos) return;
    double s = dxf::parseReal(edge[start].value).value_or(0), e = dxf::parseReal(edge[end].value).value_or(360);
    double moved = std::fmod(std::fmod(s + shift, 360) + 360, 360);
    edge[start].value = real(moved);
    edge[end].value = real(moved + (e - s));
}

// One edge of an edge path (its tags after the type tag), in the hatch's OCS.
void placeHatchEdge(HatchEdge& edge, const PlaneMap& plane, double size, double elevation) {
    auto point = [&](const Point3& q) { return plane.point({q.x, q.y, elevation}); };
    auto vector = [&](const Point3& v) { return plane.vector({v.x, v.y, 0}); };
    TagList& tags = edge.data;
    std::size_t n = tags.size();
    if (edge.type == 1) {  // line: start, end
        mapPoints(tags, gc::kX, 0, n, point);
        mapPoints(tags, gc::kX2, 0, n, point);
    } else if (edge.type == 2 || edge.type == 3) {
        // Arcs and elliptic arcs. Clockwise ones (73 = 0) store their angles negated, so a turn
        // moves them the other way; a mirror swaps the sense and keeps the stored numbers' roles.
        mapPoints(tags, gc::kX, 0, n, point);
        std::size_t sense = tags.find(gc::kInt73);
        bool ccw = sense == TagList::npos || dxf::parseInteger(tags[sense].value).value_or(1) != 0;
        if (edge.type == 2) {
            mapReals(tags, gc::kReal, 0, n, [&](double r) { return r * size; });
            shiftAngles(tags, ccw == !plane.mirrored ? plane.turn : -plane.turn);
        } else {
            // An ellipse's parameters are measured from its major axis, which turns with it; a
            // mirror runs them backwards, which the swapped sense says.
            mapPoints(tags, gc::kX2, 0, n, vector);
        }
        if (plane.mirrored && sense != TagList::npos) tags[sense].value = ccw ? "0" : "1";
    } else if (edge.type == 4) {  // spline: control and fit points, start and end tangents
        mapPoints(tags, gc::kX, 0, n, point);
        mapPoints(tags, gc::kX2, 0, n, point);
        mapPoints(tags, gc::kX3, 0, n, vector);
        mapPoints(tags, gc::kX4, 0, n, vector);
    }
}

// A HATCH: its boundary paths, elevation and extrusion, and its pattern (angle, scale, the
// definition lines with their base points, offsets and dashes) and seed points. The placed hatch
// is no longer associative: its boundary objects stay in the block.
Result<void> place(TagList& tags, std::size_t, std::size_t, const Placement& p) {
    auto [from, to] = tags.subclass("AcDbHatch");
    if (from == TagList::npos) return {};
    PlaneMap plane(p, normalIn(tags, from, to));
    double elevation = tags.point(gc::kX, from, to).value_or(Point3{}).z;
    double newElevation = plane.point({0, 0, elevation}).z;
    std::vector<HatchPath> paths = hatchPaths(tags);
    for (HatchPath& path : paths) {
        for (Vertex& v : path.vertices) {
            Point3 q = plane.point({v.point.x, v.point.y, elevation});
            v.point = {q.x, q.y, 0};
            if (p.mirrored) v.bulge = -v.bulge;
        }
        for (HatchEdge& edge : path.edges)
            placeHatchEdge(edge, plane, p.size, elevation);
        path.sources.clear();
    }
    setHatchPaths(tags, paths);
    std::tie(from, to) = tags.subclass("AcDbHatch");
    std::size_t at = tags.find(gc::kX, from, to);
    if (at != TagList::npos)
        mapPoints(tags, gc::kX, at, at + 1, [&](const Point3&) { return Point3{0, 0, newElevation}; });
    std::size_t associative = tags.find(gc::kInt71, from, to);
    if (associative != TagList::npos) tags[associative].value = "0";
    // What follows the paths: from the hatch style (75) on.
    std::size_t tail = tags.find(gc::kInt75, tags.find(gc::kInt91, from, to), to);
    for (std::size_t i = tail == TagList::npos ? to : tail; i < to; ++i) {
        int code = tags[i].code;
        double v = dxf::parseReal(tags[i].value).value_or(0);
        bool pairNext = i + 1 < to && tags[i + 1].code == code + 1;
        if (code == gc::kHatchPatternAngle || code == gc::kHatchLineAngle) {  // pattern angle, a definition line's angle
            tags[i].value = real(std::fmod(plane.angle(v) + 720, 360));
        } else if (code == gc::kReal2 || code == gc::kHatchPixelSize || code == gc::kHatchDashLength) {  // scale, pixel size, dashes
            tags[i].value = real(v * p.size);
        } else if ((code == gc::kReal4 || code == gc::kHatchLineOffset) && pairNext) {  // base point, line offset
            double y = dxf::parseReal(tags[i + 1].value).value_or(0);
            Point3 q = code == gc::kReal4 ? plane.point({v, y, elevation}) : plane.vector({v, y, 0});
            tags[i].value = real(q.x);
            tags[++i].value = real(q.y);
        } else if (code == gc::kX) {  // a seed point
            Point3 q = plane.point({v, i + 1 < to ? dxf::parseReal(tags[i + 1].value).value_or(0) : 0, elevation});
            tags[i].value = real(q.x);
            if (i + 1 < to && tags[i + 1].code == gc::kX + 10) tags[++i].value = real(q.y);
        } else if (code == gc::kHatchGradientAngle) {  // gradient angle, in radians
            tags[i].value = real(plane.angle(v * kDegrees) / kDegrees);
        }
    }
    setNormal(tags, from, ownEnd(tags), plane.normal);
    return {};
}

// Its polyline paths' vertices; edge paths are not counted.
std::optional<Extents> extents(const TagList& tags) {
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    bool any = false;
    for (const HatchPath& path : hatchPaths(tags))
        for (const Vertex& v : path.vertices) {
            if (!std::isfinite(v.point.x) || !std::isfinite(v.point.y)) continue;
            box.add(v.point.x, v.point.y);
            any = true;
        }
    if (!any) return std::nullopt;
    return box;
}

constexpr PropertyPlace kProperties[]{
    {Property::Elevation, "AcDbHatch", 30, "0"},
    {Property::PatternName, "AcDbHatch", 2, ""},
    {Property::PatternAngle, "AcDbHatch", 52, "0"},
    {Property::PatternScale, "AcDbHatch", 41, "1"},
};

// Tags an edge of this type holds after its type tag (splines are counted as they are read).
std::size_t fixedEdgeLength(int type) { return type == 1 ? 4 : type == 2 ? 6 : type == 3 ? 8 : 0; }

// Reads the paths starting after the path-count tag; returns the index after the last path.
std::size_t readPaths(const TagList& tags, std::size_t i, std::size_t to, std::int64_t count,
                      std::vector<HatchPath>& out) {
    for (std::int64_t p = 0; p < count && i < to; ++p) {
        if (tags[i].code != kPathFlags) break;
        HatchPath path;
        path.flags = static_cast<int>(intAt(tags, i++));
        if (path.flags & kPolylinePathFlag) {
            bool bulges = i < to && tags[i].code == kHasBulge && intAt(tags, i) != 0;
            if (i < to && tags[i].code == kHasBulge) ++i;
            if (i < to && tags[i].code == kIsClosed) path.closed = intAt(tags, i++) != 0;
            std::int64_t n = i < to && tags[i].code == kEdgeCount ? intAt(tags, i++) : 0;
            for (std::int64_t v = 0; v < n && i + 1 < to; ++v) {
                Vertex vertex;
                vertex.point.x = realAt(tags, i++);
                vertex.point.y = realAt(tags, i++);
                if (bulges && i < to && tags[i].code == kBulge) vertex.bulge = realAt(tags, i++);
                path.vertices.push_back(vertex);
            }
        } else {
            std::int64_t n = i < to && tags[i].code == kEdgeCount ? intAt(tags, i++) : 0;
            for (std::int64_t e = 0; e < n && i < to && tags[i].code == kEdgeType; ++e) {
                HatchEdge edge;
                edge.type = static_cast<int>(intAt(tags, i++));
                std::size_t length = fixedEdgeLength(edge.type);
                std::size_t end = i + length;
                if (edge.type == 4) {
                    // degree, rational, periodic, knot count, control count, knots, controls (+ weights), fit data.
                    std::size_t j = i;
                    bool rational = false;
                    std::int64_t knots = 0, controls = 0;
                    for (; j < to && j < i + 5; ++j) {
                        if (tags[j].code == kSplineRational) rational = intAt(tags, j) != 0;
                        if (tags[j].code == kSplineKnots) knots = intAt(tags, j);
                        if (tags[j].code == kSplineControls) controls = intAt(tags, j);
                    }
                    j += static_cast<std::size_t>(knots) + static_cast<std::size_t>(controls) * (rational ? 3 : 2);
                    if (j + 1 < to && tags[j].code == kSourceCount) {
                        std::int64_t fit = intAt(tags, j);
                        int next = tags[j + 1].code;
                        if ((fit > 0 && next == gc::kX2) || (fit == 0 && (next == kSourceCount || next == gc::kX3))) {
                            j += 1 + static_cast<std::size_t>(fit) * 2;
                            if (j < to && tags[j].code == gc::kX3) j += 4;  // start and end tangents
                        }
                    }
                    end = j;
                }
                end = std::min(end, to);
                for (; i < end; ++i)
                    edge.data.add(tags[i].code, tags[i].value);
                path.edges.push_back(std::move(edge));
            }
        }
        if (i < to && tags[i].code == kSourceCount) {
            std::int64_t n = intAt(tags, i++);
            for (std::int64_t s = 0; s < n && i < to && tags[i].code == gc::kSoftPointer; ++s)
                path.sources.push_back(parseHandle(tags[i++].value).value_or(kNoHandle));
        }
        out.push_back(std::move(path));
    }
    return i;
}

// --- Outline ------------------------------------------------------------------------------------------

constexpr int kExternalPath = 1, kOutermostPath = 16;
constexpr int kLineEdge = 1, kArcEdge = 2, kEllipseEdge = 3, kSplineEdge = 4;
constexpr int kEdgeCounterClockwise = 73, kSplineDegree = 94, kSplineWeight = 42;

// One edge's points in the hatch's OCS, from its start to its end. A clockwise arc or elliptic arc
// (73 = 0) stores its angles negated: it runs from -start the other way round.
std::vector<Point3> edgePoints(const HatchEdge& edge, double tolerance) {
    const TagList& t = edge.data;
    std::vector<Point3> out;
    const auto center = t.point(gc::kX);
    const bool ccw = t.integer(kEdgeCounterClockwise).value_or(1) != 0;
    const double start = t.real(gc::kAngle).value_or(0) * kRadiansPerDegree;
    const double end = t.real(gc::kAngle2).value_or(360) * kRadiansPerDegree;
    const double turn = 2 * std::numbers::pi;
    auto sweepOf = [turn](double from, double to) {
        const double sweep = std::fmod(to - from, turn);
        return sweep <= 0 ? sweep + turn : sweep;
    };
    if (edge.type == kLineEdge) {
        const auto to = t.point(gc::kX2);
        if (center && to) out = {*center, *to};
    } else if (edge.type == kArcEdge && center) {
        const double radius = t.real(gc::kReal).value_or(0), sweep = sweepOf(start, end);
        outline_support::appendArc(out, *center, radius, ccw ? start : -start, ccw ? sweep : -sweep, tolerance);
    } else if (edge.type == kEllipseEdge && center) {
        // Its angles are true angles; the curve's parameter at an angle stretches by the ratio.
        const Point3 major = t.point(gc::kX2).value_or(Point3{1, 0, 0});
        const double ratio = t.real(gc::kReal).value_or(1);
        const Point3 minor{-major.y * ratio, major.x * ratio, 0};
        auto parameter = [ratio](double angle) { return std::atan2(std::sin(angle) / ratio, std::cos(angle)); };
        const double from = parameter(start), sweep = sweepOf(from, parameter(end));
        outline_support::appendEllipse(out, *center, major, minor, ccw ? from : -from, ccw ? sweep : -sweep, tolerance);
    } else if (edge.type == kSplineEdge) {
        outline_support::Spline spline;
        spline.degree = static_cast<int>(std::clamp<std::int64_t>(t.integer(kSplineDegree).value_or(3), -1, 1000));
        std::vector<Point3> fit;
        for (std::size_t i = 0; i < t.size(); ++i) {
            if (t[i].code == gc::kReal) spline.knots.push_back(realAt(t, i));
            if (t[i].code == kSplineWeight) spline.weights.push_back(realAt(t, i));
            if (t[i].code == gc::kX) spline.controls.push_back(t.pointAt(i).value_or(Point3{}));
            if (t[i].code == gc::kX2) fit.push_back(t.pointAt(i).value_or(Point3{}));
        }
        if (auto curve = outline_support::sampleSpline(spline, tolerance)) return std::move(*curve);
        out = fit.size() >= 2 ? std::move(fit) : std::move(spline.controls);
    }
    return out;
}

std::vector<Point3> ring(const HatchPath& path, double tolerance) {
    if (!path.vertices.empty() || (path.flags & kPolylinePathFlag))
        return outline_support::bulgedPath(path.vertices, true, tolerance);
    std::vector<Point3> out;
    for (const HatchEdge& edge : path.edges) {
        std::vector<Point3> points = edgePoints(edge, tolerance);
        if (points.empty()) continue;
        // Some writers give an edge end first: it is turned to go on from where the last one ended.
        if (!out.empty() && length(points.back() - out.back()) < length(points.front() - out.back()))
            std::reverse(points.begin(), points.end());
        out.insert(out.end(), points.begin(), points.end());
    }
    return out;
}

// A polygon whose rings are its boundary paths, the external (or outermost) ones first, at its
// elevation in its OCS.
std::optional<Outline> hatchOutline(const TagList& tags, double tolerance) {
    auto [from, to] = tags.subclass("AcDbHatch");
    if (from == TagList::npos) return std::nullopt;
    std::vector<HatchPath> paths = hatchPaths(tags);
    std::stable_partition(paths.begin(), paths.end(),
                          [](const HatchPath& path) { return (path.flags & (kExternalPath | kOutermostPath)) != 0; });
    const double elevation = tags.point(gc::kX, from, to).value_or(Point3{}).z;
    const Point3 normal = normalIn(tags, 1, ownEnd(tags));
    Outline out{Outline::Shape::Polygon, {}};
    for (const HatchPath& path : paths) {
        std::vector<Point3> points = ring(path, tolerance);
        if (points.empty()) continue;
        for (Point3& p : points)
            p.z = elevation;
        outline_support::toWcs(points, normal);
        out.parts.push_back(std::move(points));
    }
    if (out.parts.empty()) return std::nullopt;
    return out;
}

}  // namespace

const EntityKindOps kinds::kHatch{
    .kind = EntityKind::Hatch,
    .geometrySubclass = "AcDbHatch",
    .properties = kProperties,
    .place = place,
    .extents = extents,
    .outline = hatchOutline,
};

// --- Boundary paths ------------------------------------------------------------------------------

std::vector<HatchPath> hatchPaths(const TagList& tags) {
    std::vector<HatchPath> out;
    auto [from, to] = tags.subclass("AcDbHatch");
    if (from == TagList::npos) return out;
    std::size_t at = tags.find(kPathCount, from, to);
    if (at == TagList::npos) return out;
    readPaths(tags, at + 1, to, intAt(tags, at), out);
    return out;
}

bool setHatchPaths(TagList& tags, const std::vector<HatchPath>& paths) {
    if (tags.type() != "HATCH") return false;
    auto [from, to] = tags.subclass("AcDbHatch");
    if (from == TagList::npos) return false;
    std::size_t at = tags.find(kPathCount, from, to);
    std::size_t end;
    if (at == TagList::npos) {
        at = dataEnd(tags, from, to);
        end = at;
    } else {
        std::vector<HatchPath> old;
        end = readPaths(tags, at + 1, to, intAt(tags, at), old);
    }
    TagList fresh;
    fresh.addInteger(kPathCount, static_cast<std::int64_t>(paths.size()));
    for (const HatchPath& path : paths) {
        bool polyline = !path.vertices.empty() || (path.flags & kPolylinePathFlag);
        fresh.addInteger(kPathFlags, polyline ? (path.flags | kPolylinePathFlag) : (path.flags & ~kPolylinePathFlag));
        if (polyline) {
            bool bulges = false;
            for (const Vertex& v : path.vertices)
                bulges = bulges || v.bulge != 0;
            fresh.addInteger(kHasBulge, bulges ? 1 : 0);
            fresh.addInteger(kIsClosed, path.closed ? 1 : 0);
            fresh.addInteger(kEdgeCount, static_cast<std::int64_t>(path.vertices.size()));
            for (const Vertex& v : path.vertices) {
                fresh.addPoint2(gc::kX, v.point.x, v.point.y);
                if (bulges) fresh.addReal(kBulge, v.bulge);
            }
        } else {
            fresh.addInteger(kEdgeCount, static_cast<std::int64_t>(path.edges.size()));
            for (const HatchEdge& edge : path.edges) {
                fresh.addInteger(kEdgeType, edge.type);
                for (const TagValue& tag : edge.data)
                    fresh.add(tag.code, tag.value);
            }
        }
        fresh.addInteger(kSourceCount, static_cast<std::int64_t>(path.sources.size()));
        for (Handle source : path.sources)
            fresh.add(gc::kSoftPointer, formatHandle(source));
    }
    tags.erase(at, end - at);
    for (std::size_t i = 0; i < fresh.size(); ++i)
        tags.insert(at + i, fresh[i].code, fresh[i].value);
    return true;
}

}  // namespace veltarn::db
