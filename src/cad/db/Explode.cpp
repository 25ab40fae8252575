#include "cad/db/Explode.h"

#include "cad/db/EntityProperties.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/ObjectIdentity.h"
#include "cad/db/Transform.h"
#include "cad/dxf/NumberText.h"

#include <cmath>
#include <numbers>

namespace veltarn::db {
namespace {

constexpr double kDegrees = 180 / std::numbers::pi;
constexpr int kElevation = 38, kBulge = 42, kConstantWidth = 43, kStartWidth = 40, kEndWidth = 41;
constexpr int kClosed = 1, kSplineFrame = 16, kPolyline3d = 8, kPolygonMesh = 16, kPolyfaceMesh = 64;
constexpr int kAttributeInvisible = 1, kAttributeConstant = 2;
constexpr int kTextUpsideDown = 4;

Error fail(std::string message) { return dxf::makeError(std::move(message)); }

// The end of an entity's own tags: where its first VERTEX, ATTRIB or SEQEND starts.
std::size_t ownEnd(const TagList& tags) {
    std::size_t end = tags.find(gc::kStructure, 1);
    return end == TagList::npos ? tags.size() : end;
}

Point3 normalIn(const TagList& tags, std::size_t from, std::size_t to) {
    return tags.point(gc::kNormalX, from, to).value_or(Point3{0, 0, 1});
}

bool isDefaultNormal(const Point3& n) { return std::abs(n.x) < 1e-12 && std::abs(n.y) < 1e-12 && n.z > 0; }

// --- Pieces of polylines ----------------------------------------------------------------------

// A new entity with the source's common properties (layer, colour, linetype, lineweight...).
TagList pieceStart(const TagList& source, std::string_view type) {
    static constexpr int kCommon[] = {gc::kLayer, gc::kLinetypeName, gc::kColor, gc::kTrueColor, gc::kColorName,
                                      gc::kTransparency, gc::kLineweight, gc::kLinetypeScale, 60};
    bool modern = source.hasMarkers();
    TagList tags{{gc::kStructure, std::string(type)}};
    if (modern) tags.add(gc::kSubclass, "AcDbEntity");
    std::size_t end = ownEnd(source);
    auto [from, to] = modern ? source.subclass("AcDbEntity") : source.subclass("");
    if (from == TagList::npos) from = 1, to = end;
    for (int code : kCommon)
        if (auto value = source.text(code, from, to)) tags.add(code, std::string(*value));
    if (tags.find(gc::kLayer) == TagList::npos) tags.add(gc::kLayer, "0");
    return tags;
}

struct PathVertex {
    Point3 point;  // OCS for 2D polylines, WCS for 3D ones
    double bulge = 0;
};

void addNormal(TagList& tags, const Point3& normal) {
    if (!isDefaultNormal(normal)) tags.addPoint(gc::kNormalX, normal);
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

Result<std::vector<TagList>> explodeLwpolyline(const TagList& tags) {
    auto [from, to] = tags.subclass("AcDbPolyline");
    if (from == TagList::npos) return fail("a LWPOLYLINE without its AcDbPolyline data");
    std::vector<PathVertex> vertices;
    for (const Vertex& v : polylineVertices(tags)) vertices.push_back({v.point, v.bulge});
    std::vector<TagList> out;
    addSegments(out, tags, vertices, closed(tags).value_or(false), true, normalIn(tags, from, to),
                tags.real(gc::kThickness, from, to).value_or(0));
    return out;
}

Result<std::vector<TagList>> explodePolyline(const TagList& tags) {
    std::size_t end = ownEnd(tags);
    int flags = static_cast<int>(tags.integer(gc::kFlags, 1, end).value_or(0));
    if (flags & (kPolygonMesh | kPolyfaceMesh)) return fail("a polygon or polyface mesh is not exploded");
    bool planar = !(flags & kPolyline3d);
    double elevation = tags.point(gc::kX, 1, end).value_or(Point3{}).z;
    std::vector<PathVertex> vertices;
    for (std::size_t i = end; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "VERTEX") continue;
        std::size_t next = tags.find(gc::kStructure, i + 1);
        if (next == TagList::npos) next = tags.size();
        if (tags.integer(gc::kFlags, i + 1, next).value_or(0) & kSplineFrame) continue;  // the frame, not the curve
        PathVertex v{tags.point(gc::kX, i + 1, next).value_or(Point3{}), tags.real(kBulge, i + 1, next).value_or(0)};
        if (planar) v.point.z = elevation;
        vertices.push_back(v);
    }
    std::vector<TagList> out;
    addSegments(out, tags, vertices, flags & kClosed, planar, normalIn(tags, 1, end), tags.real(gc::kThickness, 1, end).value_or(0));
    return out;
}

// --- Placing a block's entities -----------------------------------------------------------------

struct Placement {
    Affine map;
    Point3 scale{1, 1, 1};
    bool mirrored = false;
    double size = 1;  // how lengths scale (|X scale|)

    bool equalXY() const { return std::abs(std::abs(scale.x) - std::abs(scale.y)) <= 1e-9 * std::max(std::abs(scale.x), 1.0); }
    bool equalXYZ() const { return equalXY() && std::abs(std::abs(scale.x) - std::abs(scale.z)) <= 1e-9 * std::max(std::abs(scale.x), 1.0); }
};

// One OCS entity's plane under the placement: its new normal and how angles turn. A mirrored
// placement keeps the normal's side (drawings stay in plan view) and runs angles the other way.
struct PlaneMap {
    Ocs from, to;
    Point3 normal;
    double turn = 0;  // degrees
    bool mirrored = false;

    PlaneMap(const Placement& p, const Point3& n) : from(n), to(normalized(p.map.vector(from.z))), normal(to.z), mirrored(p.mirrored) {
        Point3 u = p.map.vector(from.x);
        turn = std::atan2(dot(u, to.y), dot(u, to.x)) * kDegrees;
        map_ = &p.map;
    }
    Point3 point(const Point3& ocs) const { return to.fromWcs(map_->apply(from.toWcs(ocs))); }
    double angle(double degrees) const { return mirrored ? turn - degrees : turn + degrees; }

private:
    const Affine* map_;
};

std::string real(double v) { return dxf::formatReal(v); }

// Rewrites the point at `code` (with its Y and Z codes when present) in [from, to), every occurrence.
template <class F>
void mapPoints(TagList& tags, int code, std::size_t from, std::size_t to, F f) {
    for (std::size_t i = from; i < to; ++i) {
        if (tags[i].code != code) continue;
        Point3 p = tags.pointAt(i).value_or(Point3{});
        bool hasZ = i + 2 < tags.size() && tags[i + 2].code == code + 20 && tags[i + 1].code == code + 10;
        Point3 q = f(p);
        tags[i].value = real(q.x);
        if (i + 1 < tags.size() && tags[i + 1].code == code + 10) tags[i + 1].value = real(q.y);
        if (hasZ) tags[i + 2].value = real(q.z);
    }
}

template <class F>
void mapReals(TagList& tags, int code, std::size_t from, std::size_t to, F f) {
    for (std::size_t i = from; i < to; ++i)
        if (tags[i].code == code) tags[i].value = real(f(dxf::parseReal(tags[i].value).value_or(0)));
}

// Sets the extrusion of an entity whose own tags are [from, to): replaced in place, or added
// before any xdata when it differs from the default.
void setNormal(TagList& tags, std::size_t from, std::size_t to, const Point3& normal) {
    std::size_t at = tags.find(gc::kNormalX, from, to);
    if (at != TagList::npos) {
        mapPoints(tags, gc::kNormalX, at, at + 1, [&](const Point3&) { return normal; });
        if (!(at + 2 < tags.size() && tags[at + 2].code == gc::kNormalX + 20)) tags.insert(at + 2, gc::kNormalX + 20, real(normal.z));
        return;
    }
    if (isDefaultNormal(normal)) return;
    std::size_t end = from;
    while (end < to && tags[end].code < gc::kXdataApp) ++end;
    tags.insert(end, gc::kNormalX, real(normal.x));
    tags.insert(end + 1, gc::kNormalX + 10, real(normal.y));
    tags.insert(end + 2, gc::kNormalX + 20, real(normal.z));
}

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

// A TEXT with an attribute's look and value.
TagList textOf(const TagList& attribute, std::size_t from, std::size_t to) {
    static constexpr int kTextCodes[] = {gc::kThickness, gc::kX, gc::kReal, gc::kText, gc::kAngle, gc::kReal2, gc::kAngle2,
                                         gc::kTextStyleName, gc::kInt71, gc::kInt72, gc::kX2, gc::kNormalX};
    TagList source;
    for (std::size_t i = from; i < to; ++i) source.add(attribute[i].code, attribute[i].value);
    TagList text = pieceStart(source, "TEXT");
    bool modern = source.hasMarkers();
    if (modern) text.add(gc::kSubclass, "AcDbText");
    auto [bodyFrom, bodyTo] = modern ? source.subclass("AcDbText") : source.subclass("");
    if (bodyFrom == TagList::npos) bodyFrom = 1, bodyTo = source.size();
    for (int code : kTextCodes) {
        std::size_t at = source.find(code, bodyFrom, bodyTo);
        if (at == TagList::npos) continue;
        if (code == gc::kX || code == gc::kX2 || code == gc::kNormalX) text.addPoint(code, source.pointAt(at).value_or(Point3{}));
        else text.add(code, source[at].value);
    }
    if (text.find(gc::kText) == TagList::npos) text.add(gc::kText, "");
    if (modern) text.add(gc::kSubclass, "AcDbText");
    // An attribute's vertical alignment is its 74; a text's is its 73.
    if (auto vertical = source.text(gc::kInt74)) text.add(gc::kInt73, std::string(*vertical));
    return text;
}

Result<void> placeEntity(TagList& tags, const Placement& p, std::string_view block);

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

Result<void> placeEntity(TagList& tags, const Placement& p, std::string_view block) {
    std::string type(tags.type());
    std::size_t from = 1, to = ownEnd(tags);
    auto unplaceable = [&](std::string_view why) {
        return fail("cannot explode: block \"" + std::string(block) + "\" holds a " + type + " that " + std::string(why));
    };
    // Kinds whose shape survives any linear map; the others need equal X and Y scales.
    bool affine = type == "LINE" || type == "POINT" || type == "3DFACE" || type == "XLINE" || type == "RAY" || type == "SPLINE";
    if (type == "POLYLINE") affine = (tags.integer(gc::kFlags, from, to).value_or(0) & (kPolyline3d | kPolygonMesh | kPolyfaceMesh)) != 0;
    if (!affine && !p.equalXY()) return unplaceable("cannot be scaled unequally in X and Y");
    Point3 n = normalIn(tags, from, to);
    if (!affine && !isDefaultNormal(n) && !p.equalXYZ()) return unplaceable("lies in a tilted plane and cannot be scaled unequally");
    auto wcs = [&](const Point3& q) { return p.map.apply(q); };
    auto vector = [&](const Point3& v) { return p.map.vector(v); };
    auto lengths = [&](double v) { return v * p.size; };
    if (type == "LINE" || type == "POINT" || type == "3DFACE") {
        for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4}) mapPoints(tags, code, from, to, wcs);
        if (type != "3DFACE") setNormal(tags, from, to, normalized(vector(n)));
    } else if (type == "XLINE" || type == "RAY") {
        mapPoints(tags, gc::kX, from, to, wcs);
        mapPoints(tags, gc::kX2, from, to, [&](const Point3& v) { return normalized(vector(v)); });
    } else if (type == "SPLINE") {
        mapPoints(tags, gc::kX, from, to, wcs);
        mapPoints(tags, gc::kX2, from, to, wcs);
        mapPoints(tags, gc::kX3, from, to, vector);
        mapPoints(tags, gc::kX4, from, to, vector);
        if (tags.find(gc::kNormalX, from, to) != TagList::npos) setNormal(tags, from, to, normalized(vector(n)));
    } else if (type == "CIRCLE" || type == "ARC" || type == "SOLID" || type == "TRACE") {
        PlaneMap plane(p, n);
        for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4}) mapPoints(tags, code, from, to, [&](const Point3& q) { return plane.point(q); });
        mapReals(tags, gc::kReal, from, to, lengths);
        if (type == "ARC") {
            double start = tags.real(gc::kAngle, from, to).value_or(0), end = tags.real(gc::kAngle2, from, to).value_or(360);
            double a = plane.angle(p.mirrored ? end : start), b = plane.angle(p.mirrored ? start : end);
            tags.setRealIn("AcDbArc", gc::kAngle, std::fmod(a + 720, 360));
            tags.setRealIn("AcDbArc", gc::kAngle2, std::fmod(b + 720, 360));
            to = ownEnd(tags);
        }
        setNormal(tags, from, to, plane.normal);
    } else if (type == "ELLIPSE") {
        mapPoints(tags, gc::kX, from, to, wcs);
        mapPoints(tags, gc::kX2, from, to, vector);
        if (p.mirrored) {  // the same normal side: the curve's parameter runs backwards
            double start = tags.real(gc::kReal2, from, to).value_or(0), end = tags.real(gc::kReal3, from, to).value_or(2 * std::numbers::pi);
            mapReals(tags, gc::kReal2, from, to, [&](double) { return std::fmod(4 * std::numbers::pi - end, 2 * std::numbers::pi); });
            mapReals(tags, gc::kReal3, from, to, [&](double) { return std::fmod(4 * std::numbers::pi - start, 2 * std::numbers::pi); });
        }
        setNormal(tags, from, to, normalized(vector(n)));
    } else if (type == "TEXT") {
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
    } else {
        return unplaceable("cannot be placed");
    }
    return {};
}

Result<std::vector<TagList>> explodeInsert(const Database& db, const TagList& tags) {
    std::size_t end = ownEnd(tags);
    std::string name(dxf::trimSpaces(tags.text(gc::kName, 1, end).value_or("")));
    if (tags.integer(gc::kFlags, 1, end).value_or(1) > 1 || tags.integer(gc::kInt71, 1, end).value_or(1) > 1)
        return fail("a multiple insert (MINSERT) is not exploded");
    Handle block = db.findBlock(name);
    if (block == kNoHandle) return fail("cannot explode: the drawing has no block \"" + name + "\"");
    Point3 base = db.tags(db.blockBegin(block)).point(gc::kX).value_or(Point3{});
    Placement p;
    p.scale = {tags.real(gc::kReal2, 1, end).value_or(1), tags.real(gc::kReal3, 1, end).value_or(1), tags.real(gc::kReal4, 1, end).value_or(1)};
    if (p.scale.x == 0 || p.scale.y == 0 || p.scale.z == 0) return fail("cannot explode a block reference scaled to nothing");
    p.map = Affine::blockReference(base, p.scale, tags.real(gc::kAngle, 1, end).value_or(0), tags.point(gc::kX, 1, end).value_or(Point3{}),
                                   normalIn(tags, 1, end));
    p.mirrored = p.map.determinant() < 0;
    p.size = std::abs(p.scale.x);

    std::vector<TagList> out;
    for (Handle entity : db.entitiesOf(block)) {
        TagList piece = detached(db.tags(entity));
        if (piece.type() == "ATTDEF") {
            // The value of a variable attribute is the reference's ATTRIB (below); a constant one
            // has no ATTRIB, so its text is kept as the block shows it. Invisible ones show nothing.
            int flags = static_cast<int>(piece.integer(gc::kFlags, 1, ownEnd(piece)).value_or(0));
            if ((flags & kAttributeInvisible) || !(flags & kAttributeConstant)) continue;
            piece = textOf(piece, 0, piece.size());
        }
        if (auto placed = placeEntity(piece, p, name); !placed) return placed.error();
        out.push_back(std::move(piece));
    }
    // Attributes become TEXT with their values, where they stand: the data a user typed is kept
    // visible (dropping it, as some CAD programs do, loses it; bringing back the ATTDEF tags shows
    // words the user never typed). Invisible attributes are dropped.
    for (std::size_t i = end; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t next = tags.find(gc::kStructure, i + 1);
        if (next == TagList::npos) next = tags.size();
        TagList attribute;
        for (std::size_t j = i; j < next; ++j) attribute.add(tags[j].code, tags[j].value);
        attribute = detached(std::move(attribute));
        auto [bodyFrom, bodyTo] = attribute.hasMarkers() ? attribute.subclass("AcDbAttribute") : attribute.subclass("");
        if (attribute.integer(gc::kFlags, bodyFrom, bodyTo).value_or(0) & kAttributeInvisible) continue;
        out.push_back(textOf(attribute, 0, attribute.size()));
    }
    return out;
}

Result<std::vector<TagList>> explodeDimension(const Database& db, const TagList& tags) {
    std::size_t end = ownEnd(tags);
    auto [from, to] = tags.hasMarkers() ? tags.subclass("AcDbDimension") : std::pair<std::size_t, std::size_t>{1, end};
    std::string name(dxf::trimSpaces(tags.text(gc::kName, from, to).value_or("")));
    Handle block = name.empty() ? kNoHandle : db.findBlock(name);
    if (block == kNoHandle) return fail("cannot explode a dimension that has no block");
    // A dimension's block is drawn in place: its entities are already where the dimension shows them.
    std::vector<TagList> out;
    for (Handle entity : db.entitiesOf(block)) out.push_back(detached(db.tags(entity)));
    return out;
}

}  // namespace

Result<std::vector<TagList>> explode(const Database& db, Handle entity) {
    TagList tags;
    if (OpenStatus status = db.read(entity, tags); status != OpenStatus::Ok) return fail("cannot explode " + formatHandle(entity) + ": " + describe(status));
    if (db.blockOf(entity) == kNoHandle) return fail("cannot explode " + formatHandle(entity) + ": not an entity");
    std::string_view type = tags.type();
    if (type == "LWPOLYLINE") return explodeLwpolyline(tags);
    if (type == "POLYLINE") return explodePolyline(tags);
    if (type == "INSERT") return explodeInsert(db, tags);
    if (type == "DIMENSION") return explodeDimension(db, tags);
    return fail("cannot explode a " + std::string(type));
}

Result<std::vector<Handle>> explodeInPlace(Database& db, Handle entity) {
    {
        ObjectWriter check = db.openForWrite(entity);
        if (!check) return fail("cannot explode " + formatHandle(entity) + ": " + describe(check.status()));
    }
    auto pieces = explode(db, entity);
    if (!pieces) return pieces.error();
    Handle block = db.blockOf(entity);
    std::vector<Handle> added;
    for (TagList& piece : *pieces) {
        auto handle = db.appendEntity(block, std::move(piece));
        if (!handle) {
            for (Handle h : added) (void)db.erase(h);  // nothing half done
            return handle.error();
        }
        added.push_back(*handle);
    }
    (void)eraseObject(db, entity);
    return added;
}

}  // namespace veltarn::db
