#include "cad/db/BlockPlacement.h"

#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/KindSupport.h"

#include <numbers>

namespace veltarn::db {

using namespace kind_support;

namespace {

constexpr int kTextUpsideDown = 4;  // TEXT generation flag (71)

// TEXT, ATTRIB and ATTDEF, whose points are in their OCS.
void placeText(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    PlaneMap plane(p, normalIn(tags, from, to));
    mapPoints(tags, gc::kX, from, to, [&](const Point3& q) { return plane.point(q); });
    mapPoints(tags, gc::kX2, from, to, [&](const Point3& q) { return plane.point(q); });
    mapReals(tags, gc::kReal, from, to, [&](double v) { return v * p.size; });
    double rotation = plane.angle(tags.real(gc::kAngle, from, to).value_or(0));
    std::size_t at = tags.find(gc::kAngle, from, to);
    if (at == TagList::npos) {
        // After the height, where DXF puts it (or at the end of the text's own tags).
        std::size_t height = tags.find(gc::kReal, from, to);
        at = height == TagList::npos ? to : height + 1;
        tags.insert(at, gc::kAngle, "");
        ++to;
    }
    tags[at].value = real(rotation);
    if (p.mirrored) {  // the mirror image of a text reads upside down along its new direction
        std::size_t flags = tags.find(gc::kInt71, from, to);
        if (flags == TagList::npos) {
            tags.insert(at + 1, gc::kInt71, "0");
            flags = at + 1;
            ++to;
        }
        tags[flags].value = std::to_string(dxf::parseInteger(tags[flags].value).value_or(0) ^ kTextUpsideDown);
    }
    setNormal(tags, from, to, plane.normal);
}

// A block reference inside the block: it stays one, with the placements combined.
Result<void> placeInsert(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    Ocs ocs(n);
    double rotation = tags.real(gc::kAngle, from, to).value_or(0) / kDegrees;
    Point3 scale{tags.real(gc::kReal2, from, to).value_or(1), tags.real(gc::kReal3, from, to).value_or(1), tags.real(gc::kReal4, from, to).value_or(1)};
    Point3 u = p.map.vector(ocs.toWcs({std::cos(rotation), std::sin(rotation), 0}));
    Point3 w = p.map.vector(ocs.z);
    Ocs to3(w);
    double newRotation = std::atan2(dot(u, to3.y), dot(u, to3.x)) * kDegrees;
    Point3 insertion = to3.fromWcs(p.map.apply(ocs.toWcs(tags.point(gc::kX, from, to).value_or(Point3{}))));
    Point3 newScale{scale.x * length(u), scale.y * length(u) * (p.mirrored ? -1 : 1), scale.z * length(w)};
    mapPoints(tags, gc::kX, from, to, [&](const Point3&) { return insertion; });
    // Scales and rotation follow the insertion point in this order; missing ones are added when
    // they differ from their defaults.
    std::size_t cursor = tags.find(gc::kX, from, to) + 1;
    while (cursor < to && (tags[cursor].code == gc::kX + 10 || tags[cursor].code == gc::kX + 20)) ++cursor;
    auto setReal = [&](int code, double value, double fallback) {
        std::size_t at = tags.find(code, from, to);
        if (at != TagList::npos) {
            tags[at].value = real(value);
            cursor = std::max(cursor, at + 1);
        } else if (value != fallback) {
            tags.insert(cursor++, code, real(value));
            ++to;
        }
    };
    setReal(gc::kReal2, newScale.x, 1);
    setReal(gc::kReal3, newScale.y, 1);
    setReal(gc::kReal4, newScale.z, 1);
    setReal(gc::kAngle, newRotation < 0 ? newRotation + 360 : newRotation, 0);
    mapReals(tags, 44, from, to, [&](double v) { return v * p.size; });  // column and row spacing
    mapReals(tags, 45, from, to, [&](double v) { return v * p.size; });
    setNormal(tags, from, ownEnd(tags), normalized(w));
    // Its attributes move with it.
    for (std::size_t i = ownEnd(tags); i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t next = tags.find(gc::kStructure, i + 1);
        placeText(tags, i + 1, next == TagList::npos ? tags.size() : next, p);
    }
    return {};
}


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
void placeHatch(TagList& tags, const Placement& p) {
    auto [from, to] = tags.subclass("AcDbHatch");
    if (from == TagList::npos) return;
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
        for (HatchEdge& edge : path.edges) placeHatchEdge(edge, plane, p.size, elevation);
        path.sources.clear();
    }
    setHatchPaths(tags, paths);
    std::tie(from, to) = tags.subclass("AcDbHatch");
    std::size_t at = tags.find(gc::kX, from, to);
    if (at != TagList::npos) mapPoints(tags, gc::kX, at, at + 1, [&](const Point3&) { return Point3{0, 0, newElevation}; });
    std::size_t associative = tags.find(gc::kInt71, from, to);
    if (associative != TagList::npos) tags[associative].value = "0";
    // What follows the paths: from the hatch style (75) on.
    std::size_t tail = tags.find(gc::kInt75, tags.find(gc::kInt91, from, to), to);
    for (std::size_t i = tail == TagList::npos ? to : tail; i < to; ++i) {
        int code = tags[i].code;
        double v = dxf::parseReal(tags[i].value).value_or(0);
        bool pairNext = i + 1 < to && tags[i + 1].code == code + 1;
        if (code == 52 || code == 53) {  // pattern angle, a definition line's angle
            tags[i].value = real(std::fmod(plane.angle(v) + 720, 360));
        } else if (code == gc::kReal2 || code == 47 || code == 49) {  // scale, pixel size, dashes
            tags[i].value = real(v * p.size);
        } else if ((code == gc::kReal4 || code == 45) && pairNext) {  // base point, line offset
            double y = dxf::parseReal(tags[i + 1].value).value_or(0);
            Point3 q = code == gc::kReal4 ? plane.point({v, y, elevation}) : plane.vector({v, y, 0});
            tags[i].value = real(q.x);
            tags[++i].value = real(q.y);
        } else if (code == gc::kX) {  // a seed point
            Point3 q = plane.point({v, i + 1 < to ? dxf::parseReal(tags[i + 1].value).value_or(0) : 0, elevation});
            tags[i].value = real(q.x);
            if (i + 1 < to && tags[i + 1].code == gc::kX + 10) tags[++i].value = real(q.y);
        } else if (code == 460) {  // gradient angle, in radians
            tags[i].value = real(plane.angle(v * kDegrees) / kDegrees);
        }
    }
    setNormal(tags, from, ownEnd(tags), plane.normal);
}

}  // namespace

Result<void> placeEntity(TagList& tags, const Placement& p, std::string_view block) {
    std::string type(tags.type());
    std::size_t from = 1, to = ownEnd(tags);
    auto unplaceable = [&](std::string_view why) {
        return fail("cannot explode: block \"" + std::string(block) + "\" holds a " + type + " that " + std::string(why));
    };
    const EntityKindOps* kind = kindOf(type, tags);
    // Kinds whose shape survives any linear map; the others need equal X and Y scales.
    bool affine = kind && kind->keepsShapeUnderAnyMap;
    if (type == "POLYLINE") affine = (tags.integer(gc::kFlags, from, to).value_or(0) & (kPolyline3d | kPolygonMesh | kPolyfaceMesh)) != 0;
    if (!affine && !p.equalXY()) return unplaceable("cannot be scaled unequally in X and Y");
    Point3 n = normalIn(tags, from, to);
    if (!affine && !isDefaultNormal(n) && !p.equalXYZ()) return unplaceable("lies in a tilted plane and cannot be scaled unequally");
    auto wcs = [&](const Point3& q) { return p.map.apply(q); };
    auto vector = [&](const Point3& v) { return p.map.vector(v); };
    auto lengths = [&](double v) { return v * p.size; };
    if (kind) {
        if (!kind->place) return unplaceable("cannot be placed");
        return kind->place(tags, from, to, p);
    }
    if (type == "TEXT") {
        placeText(tags, from, to, p);
    } else if (type == "MTEXT") {
        // MTEXT has no mirror flags: its mirror image lies on the other side of its plane.
        Point3 direction = tags.point(gc::kX2, from, to).value_or(Ocs(n).toWcs({std::cos(tags.real(gc::kAngle, from, to).value_or(0) / kDegrees),
                                                                               std::sin(tags.real(gc::kAngle, from, to).value_or(0) / kDegrees), 0}));
        Point3 newDirection = normalized(vector(direction));
        Point3 newNormal = normalized(cross(vector(Ocs(n).x), vector(Ocs(n).y)));
        mapPoints(tags, gc::kX, from, to, wcs);
        for (int code : {gc::kReal, gc::kReal2, 46}) mapReals(tags, code, from, to, lengths);
        tags.removeAll(gc::kAngle, from, to);
        to = ownEnd(tags);
        if (tags.find(gc::kX2, from, to) != TagList::npos) mapPoints(tags, gc::kX2, from, to, [&](const Point3&) { return newDirection; });
        else tags.setPointIn("AcDbMText", gc::kX2, newDirection);
        setNormal(tags, from, ownEnd(tags), newNormal);
    } else if (type == "LWPOLYLINE") {
        PlaneMap plane(p, n);
        double elevation = tags.real(kElevation, from, to).value_or(0);
        double newElevation = plane.point({0, 0, elevation}).z;
        for (std::size_t i = from; i < to; ++i) {
            if (tags[i].code != gc::kX) continue;
            Point3 q = plane.point({dxf::parseReal(tags[i].value).value_or(0),
                                    i + 1 < to && tags[i + 1].code == 20 ? dxf::parseReal(tags[i + 1].value).value_or(0) : 0, elevation});
            tags[i].value = real(q.x);
            if (i + 1 < to && tags[i + 1].code == 20) tags[i + 1].value = real(q.y);
            newElevation = q.z;
        }
        for (int code : {kStartWidth, kEndWidth, kConstantWidth}) mapReals(tags, code, from, to, lengths);
        if (p.mirrored) mapReals(tags, kBulge, from, to, [](double b) { return -b; });
        if (newElevation != 0 || tags.find(kElevation, from, to) != TagList::npos) tags.setRealIn("AcDbPolyline", kElevation, newElevation);
        setNormal(tags, from, ownEnd(tags), plane.normal);
    } else if (type == "POLYLINE") {
        bool planar = !affine;
        PlaneMap plane(p, n);
        auto mapVertex = [&](const Point3& q) { return planar ? plane.point(q) : wcs(q); };
        std::size_t vertexFrom = to;
        mapPoints(tags, gc::kX, from, to, mapVertex);
        for (int code : {kStartWidth, kEndWidth}) mapReals(tags, code, from, to, lengths);
        for (std::size_t i = vertexFrom; i < tags.size(); ++i) {
            if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "VERTEX") continue;
            std::size_t next = tags.find(gc::kStructure, i + 1);
            if (next == TagList::npos) next = tags.size();
            mapPoints(tags, gc::kX, i + 1, next, mapVertex);
            if (planar) {
                for (int code : {kStartWidth, kEndWidth}) mapReals(tags, code, i + 1, next, lengths);
                if (p.mirrored) mapReals(tags, kBulge, i + 1, next, [](double b) { return -b; });
            }
        }
        if (planar) setNormal(tags, from, to, plane.normal);
    } else if (type == "INSERT") {
        return placeInsert(tags, from, to, p);
    } else if (type == "HATCH") {
        placeHatch(tags, p);
    } else {
        return unplaceable("cannot be placed");
    }
    return {};
}

}  // namespace veltarn::db
