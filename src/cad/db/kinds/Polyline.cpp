// POLYLINE: the old form of polylines, its vertices VERTEX entities that follow it up to a SEQEND.
// Its flags (70) make it a 2D polyline (points in its OCS, with widths and bulges), a 3D polyline,
// a polygon mesh of M x N vertices or a polyface mesh (vertices, then face records naming them).
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

constexpr int kVertexFlags = 70;
constexpr int kVertex3dFlag = 32, kPolyline3dFlag = explode_support::kPolyline3d;
constexpr int kFaceRecordFlag = 128, kMeshVertexFlag = 64;

std::vector<Vertex> vertices(const TagList& tags) {
    std::vector<Vertex> out;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "VERTEX") continue;
        std::size_t end = tags.find(gc::kStructure, i + 1);
        if (end == TagList::npos) end = tags.size();
        int flags = static_cast<int>(tags.integer(kVertexFlags, i + 1, end).value_or(0));
        if ((flags & kFaceRecordFlag) && !(flags & kMeshVertexFlag)) continue;  // a polyface face record
        Vertex v;
        v.point = tags.point(gc::kX, i + 1, end).value_or(Point3{});
        v.bulge = tags.real(kBulge, i + 1, end).value_or(0);
        v.startWidth = tags.real(kStartWidth, i + 1, end).value_or(0);
        v.endWidth = tags.real(kEndWidth, i + 1, end).value_or(0);
        out.push_back(v);
    }
    return out;
}

bool setVertices(Database& db, TagList& tags, const std::vector<Vertex>& vertices) {
    auto [own, ownEnd] = ownTags(tags);
    (void)own;
    bool modern = tags.hasMarkers();
    bool is3d = (tags.integer(gc::kFlags, 1, ownEnd).value_or(0) & kPolyline3dFlag) != 0;
    std::string owner = tags.size() > 1 && tags[1].code == gc::kHandle ? tags[1].value : "0";
    std::string layer = std::string(tags.text(gc::kLayer, 1, ownEnd).value_or("0"));
    // The SEQEND is kept (with its handle); a missing one is made.
    TagList seqend;
    std::size_t seq = tags.find(gc::kStructure, "SEQEND", ownEnd);
    if (!db.handlesLeft(vertices.size() + (seq == TagList::npos ? 1 : 0)).ok()) return false;
    if (seq != TagList::npos) {
        std::size_t seqEnd = tags.find(gc::kStructure, seq + 1);
        for (std::size_t i = seq; i < (seqEnd == TagList::npos ? tags.size() : seqEnd); ++i)
            seqend.add(tags[i].code, tags[i].value);
    } else {
        seqend = {{0, "SEQEND"}, {5, formatHandle(db.allocateHandle().value())}};
        if (modern) {
            seqend.add(gc::kSoftPointer, owner);
            seqend.add(gc::kSubclass, "AcDbEntity");
        }
        seqend.add(gc::kLayer, layer);
    }
    tags.erase(ownEnd, tags.size() - ownEnd);
    for (const Vertex& v : vertices) {
        tags.add(0, "VERTEX");
        tags.add(gc::kHandle, formatHandle(db.allocateHandle().value()));
        if (modern) {
            tags.add(gc::kSoftPointer, owner);
            tags.add(gc::kSubclass, "AcDbEntity");
        }
        tags.add(gc::kLayer, layer);
        if (modern) {
            tags.add(gc::kSubclass, "AcDbVertex");
            tags.add(gc::kSubclass, is3d ? "AcDb3dPolylineVertex" : "AcDb2dVertex");
        }
        tags.addPoint(gc::kX, v.point);
        if (v.startWidth != 0) tags.addReal(kStartWidth, v.startWidth);
        if (v.endWidth != 0) tags.addReal(kEndWidth, v.endWidth);
        if (v.bulge != 0) tags.addReal(kBulge, v.bulge);
        tags.addInteger(kVertexFlags, is3d ? kVertex3dFlag : 0);
    }
    for (const TagValue& tag : seqend)
        tags.add(tag.code, tag.value);
    return true;
}

// A 2D polyline in its plane; 3D polylines and meshes point by point.
Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    auto wcs = [&](const Point3& q) { return p.map.apply(q); };
    auto lengths = [&](double v) { return v * p.size; };
    Point3 n = normalIn(tags, from, to);
    bool affine =
        (tags.integer(gc::kFlags, from, to).value_or(0) &
         (explode_support::kPolyline3d | explode_support::kPolygonMesh | explode_support::kPolyfaceMesh)) != 0;
    bool planar = !affine;
    PlaneMap plane(p, n);
    auto mapVertex = [&](const Point3& q) { return planar ? plane.point(q) : wcs(q); };
    std::size_t vertexFrom = to;
    mapPoints(tags, gc::kX, from, to, mapVertex);
    for (int code : {kStartWidth, kEndWidth})
        mapReals(tags, code, from, to, lengths);
    for (std::size_t i = vertexFrom; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "VERTEX") continue;
        std::size_t next = tags.find(gc::kStructure, i + 1);
        if (next == TagList::npos) next = tags.size();
        mapPoints(tags, gc::kX, i + 1, next, mapVertex);
        if (planar) {
            for (int code : {kStartWidth, kEndWidth})
                mapReals(tags, code, i + 1, next, lengths);
            if (p.mirrored) mapReals(tags, kBulge, i + 1, next, [](double b) { return -b; });
        }
    }
    if (planar) setNormal(tags, from, to, plane.normal);
    return {};
}

// Extents by its segments, arcs included.
std::optional<Extents> extents(const TagList& tags) {
    const std::vector<Vertex> points = vertices(tags);
    if (points.empty()) return std::nullopt;
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    addPolyline(box, points, closed(tags).value_or(false));
    return box;
}

struct VertexTags {
    std::size_t from, to;  // its tags
    int flags;
};

std::vector<VertexTags> vertexTags(const TagList& tags) {
    std::vector<VertexTags> out;
    for (std::size_t i = ownEnd(tags); i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "VERTEX") continue;
        std::size_t next = tags.find(gc::kStructure, i + 1);
        if (next == TagList::npos) next = tags.size();
        out.push_back({i + 1, next, static_cast<int>(tags.integer(gc::kFlags, i + 1, next).value_or(0))});
    }
    return out;
}

// A 3DFACE through four corners; `hidden` says which edges are invisible (bit 1 the first edge...).
// `tags` is the piece's start (pieceStart).
TagList face(TagList tags, const std::array<Point3, 4>& corners, int hidden) {
    if (tags.find(gc::kSubclass) != TagList::npos) tags.add(gc::kSubclass, "AcDbFace");
    for (int k = 0; k < 4; ++k)
        tags.addPoint(gc::kX + k, corners[static_cast<std::size_t>(k)]);
    if (hidden != 0) tags.addInteger(gc::kFlags, hidden);
    return tags;
}

// A polyface mesh: one 3DFACE per face record, its corners the mesh vertices the record names
// (1-based; negative where the edge starting there is invisible), a triangle's last corner twice.
// A face record's own layer and colour go to its face.
Result<std::vector<TagList>> explodePolyface(const TagList& tags) {
    constexpr int kFaceRecord = 128, kVertexTags = 64;
    std::vector<Point3> points;
    std::vector<TagList> out;
    for (const VertexTags& v : vertexTags(tags)) {
        if ((v.flags & kFaceRecord) && (v.flags & kVertexTags)) {
            points.push_back(tags.point(gc::kX, v.from, v.to).value_or(Point3{}));
            continue;
        }
        if (!(v.flags & kFaceRecord)) continue;
        std::array<Point3, 4> corners;
        int count = 0, hidden = 0;
        for (int k = 0; k < 4; ++k) {
            auto index = tags.integer(gc::kInt71 + k, v.from, v.to);
            if (!index || *index == 0) break;
            auto known = static_cast<std::int64_t>(points.size());
            std::size_t at = static_cast<std::size_t>(*index < -known || *index > known ? known + 1
                                                      : *index < 0                      ? -*index
                                                                                        : *index);
            if (at > points.size())
                return fail("a polyface mesh face names vertex " + std::to_string(*index) + " of " +
                            std::to_string(points.size()));
            corners[static_cast<std::size_t>(k)] = points[at - 1];
            if (*index < 0) hidden |= 1 << k;
            ++count;
        }
        if (count < 3) continue;  // not a face
        if (count == 3) corners[3] = corners[2];
        TagList start = pieceStart(tags, "3DFACE");
        for (int code : {gc::kLayer, gc::kColor})
            if (auto own = tags.text(code, v.from, v.to)) start.set(code, std::string(*own), 1, start.size());
        out.push_back(face(std::move(start), corners, hidden));
    }
    return out;
}

// A polygon mesh of M x N vertices: one 3DFACE per cell, across the seam where it is closed.
Result<std::vector<TagList>> explodePolygonMesh(const TagList& tags, int flags) {
    constexpr int kClosedN = 32, kSmoothed = 4;
    std::size_t end = ownEnd(tags);
    if ((flags & kSmoothed) && tags.integer(gc::kInt75, 1, end).value_or(0) != 0)
        return fail("a smoothed polygon mesh is not exploded");
    auto m = tags.integer(gc::kInt71, 1, end).value_or(0), n = tags.integer(gc::kInt72, 1, end).value_or(0);
    std::vector<Point3> points;
    for (const VertexTags& v : vertexTags(tags))
        points.push_back(tags.point(gc::kX, v.from, v.to).value_or(Point3{}));
    auto count = static_cast<std::int64_t>(points.size());
    if (m < 2 || n < 2 || m > count || n > count || m * n != count)
        return fail("a polygon mesh whose vertices do not make its " + std::to_string(m) + " x " + std::to_string(n) +
                    " grid");
    auto at = [&](std::int64_t i, std::int64_t j) { return points[static_cast<std::size_t>((i % m) * n + j % n)]; };
    std::vector<TagList> out;
    for (std::int64_t i = 0; i < m - ((flags & kClosed) ? 0 : 1); ++i)
        for (std::int64_t j = 0; j < n - ((flags & kClosedN) ? 0 : 1); ++j)
            out.push_back(
                face(pieceStart(tags, "3DFACE"), {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)}, 0));
    return out;
}

Result<std::vector<TagList>> explodePolyline(const TagList& tags) {
    std::size_t end = ownEnd(tags);
    int flags = static_cast<int>(tags.integer(gc::kFlags, 1, end).value_or(0));
    if (flags & explode_support::kPolyfaceMesh) return explodePolyface(tags);
    if (flags & explode_support::kPolygonMesh) return explodePolygonMesh(tags, flags);
    bool planar = !(flags & explode_support::kPolyline3d);
    double elevation = tags.point(gc::kX, 1, end).value_or(Point3{}).z;
    std::vector<PathVertex> vertices;
    for (const VertexTags& vertex : vertexTags(tags)) {
        if (vertex.flags & kSplineFrame) continue;  // the frame, not the curve
        PathVertex v{tags.point(gc::kX, vertex.from, vertex.to).value_or(Point3{}),
                     tags.real(kBulge, vertex.from, vertex.to).value_or(0)};
        if (planar) v.point.z = elevation;
        vertices.push_back(v);
    }
    std::vector<TagList> out;
    addSegments(out, tags, vertices, flags & kClosed, planar, normalIn(tags, 1, end),
                tags.real(gc::kThickness, 1, end).value_or(0));
    return out;
}

Result<std::vector<TagList>> explode(const Database&, const TagList& tags) { return explodePolyline(tags); }

// The curve's vertices, not its spline frame. A 2D polyline's are in its OCS at its elevation, with
// the arcs of its bulges; a 3D polyline's in WCS, joined straight.
std::optional<Outline> outline(const TagList& tags, double tolerance) {
    const std::size_t end = ownEnd(tags);
    const int flags = static_cast<int>(tags.integer(gc::kFlags, 1, end).value_or(0));
    const bool planar = !(flags & explode_support::kPolyline3d), isClosed = (flags & kClosed) != 0;
    const double elevation = tags.point(gc::kX, 1, end).value_or(Point3{}).z;
    std::vector<Vertex> vertices;
    for (const VertexTags& vertex : vertexTags(tags)) {
        if (vertex.flags & kSplineFrame) continue;
        Vertex v;
        v.point = tags.point(gc::kX, vertex.from, vertex.to).value_or(Point3{});
        if (planar) {
            v.point.z = elevation;
            v.bulge = tags.real(kBulge, vertex.from, vertex.to).value_or(0);
        }
        vertices.push_back(v);
    }
    std::vector<Point3> points = outline_support::bulgedPath(vertices, isClosed, tolerance);
    if (points.empty()) return std::nullopt;
    if (planar) outline_support::toWcs(points, normalIn(tags, 1, end));
    return outline_support::pathOutline(std::move(points), isClosed);
}

// Both default widths are written with the constant width (see setProperty).
constexpr PropertyPlace kProperties[]{
    {Property::ConstantWidth, "AcDb2dPolyline", kStartWidth, "0"},
    {Property::Elevation, "AcDb2dPolyline", 30, "0"},
};

// setClosed picks the subclass by the one the polyline has.
constexpr ClosedFlag kClosedFlag{"AcDb2dPolyline", gc::kFlags, 1};

}  // namespace

const EntityKindOps kPolyline2d{
    .kind = EntityKind::Polyline2d,
    .properties = kProperties,
    .closedFlag = kClosedFlag,
    .reversible = true,
    .place = place,
    .vertices = vertices,
    .setVertices = setVertices,
    .extents = extents,
    .explode = explode,
    .outline = outline,
};

const EntityKindOps kPolyline3d{
    .kind = EntityKind::Polyline3d,
    .properties = kProperties,
    .closedFlag = kClosedFlag,
    .keepsShapeUnderAnyMap = true,
    .reversible = true,
    .place = place,
    .vertices = vertices,
    .setVertices = setVertices,
    .extents = extents,
    .explode = explode,
    .outline = outline,
};

const EntityKindOps kPolygonMesh{
    .kind = EntityKind::PolygonMesh,
    .properties = kProperties,
    .closedFlag = kClosedFlag,
    .keepsShapeUnderAnyMap = true,
    .place = place,
    .vertices = vertices,
    .setVertices = setVertices,
    .extents = extents,
    .explode = explode,
    .outline = outline_support::noOutline,  // faces, not one point, line or polygon
};

const EntityKindOps kPolyfaceMesh{
    .kind = EntityKind::PolyfaceMesh,
    .properties = kProperties,
    .closedFlag = kClosedFlag,
    .keepsShapeUnderAnyMap = true,
    .place = place,
    .vertices = vertices,
    .setVertices = setVertices,
    .extents = extents,
    .explode = explode,
    .outline = outline_support::noOutline,
};

}  // namespace veltarn::db::kinds
