// LWPOLYLINE: its vertices (10, in its OCS, with start and end widths 40, 41 and bulges 42),
// their count (90), flags (70, bit 1 closed), constant width (43) and elevation (38) in
// AcDbPolyline.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

constexpr int kVertexCount = 90;

std::vector<Vertex> vertices(const TagList& tags) {
    std::vector<Vertex> out;
    auto [from, to] = tags.subclass("AcDbPolyline");
    double z = tags.real(kElevation, from, to).value_or(0);
    to = dataEnd(tags, from, to);
    for (std::size_t i = from; i < to; ++i) {
        int code = tags[i].code;
        if (code == gc::kX)
            out.push_back({{realAt(tags, i), 0, z}});
        else if (out.empty())
            continue;
        else if (code == gc::kX + 10)
            out.back().point.y = realAt(tags, i);
        else if (code == kStartWidth)
            out.back().startWidth = realAt(tags, i);
        else if (code == kEndWidth)
            out.back().endWidth = realAt(tags, i);
        else if (code == kBulge)
            out.back().bulge = realAt(tags, i);
    }
    return out;
}

bool setVertices(Database&, TagList& tags, const std::vector<Vertex>& vertices) {
    auto [from, to] = tags.subclass("AcDbPolyline");
    if (from == TagList::npos) return false;
    std::size_t end = dataEnd(tags, from, to);
    std::size_t first = tags.find(gc::kX, from, end);
    std::size_t at = first == TagList::npos ? end : first;
    // The vertex tags run from the first 10 to the end of the geometry.
    if (first != TagList::npos) tags.erase(first, end - first);
    TagList fresh;
    for (const Vertex& v : vertices) {
        fresh.addPoint2(gc::kX, v.point.x, v.point.y);
        if (v.startWidth != 0 || v.endWidth != 0) {
            fresh.addReal(kStartWidth, v.startWidth);
            fresh.addReal(kEndWidth, v.endWidth);
        }
        if (v.bulge != 0) fresh.addReal(kBulge, v.bulge);
    }
    for (std::size_t i = 0; i < fresh.size(); ++i)
        tags.insert(at + i, fresh[i].code, fresh[i].value);
    tags.setIntegerIn("AcDbPolyline", kVertexCount, static_cast<std::int64_t>(vertices.size()));
    if (!vertices.empty() && vertices[0].point.z != 0) tags.setRealIn("AcDbPolyline", kElevation, vertices[0].point.z);
    return true;
}

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    PlaneMap plane(p, n);
    auto lengths = [&](double v) { return v * p.size; };
    double elevation = tags.real(kElevation, from, to).value_or(0);
    double newElevation = plane.point({0, 0, elevation}).z;
    for (std::size_t i = from; i < to; ++i) {
        if (tags[i].code != gc::kX) continue;
        Point3 q = plane.point(
            {dxf::parseReal(tags[i].value).value_or(0),
             i + 1 < to && tags[i + 1].code == gc::kY ? dxf::parseReal(tags[i + 1].value).value_or(0) : 0, elevation});
        tags[i].value = real(q.x);
        if (i + 1 < to && tags[i + 1].code == gc::kY) tags[i + 1].value = real(q.y);
        newElevation = q.z;
    }
    for (int code : {kStartWidth, kEndWidth, kConstantWidth})
        mapReals(tags, code, from, to, lengths);
    if (p.mirrored) mapReals(tags, kBulge, from, to, [](double b) { return -b; });
    if (newElevation != 0 || tags.find(kElevation, from, to) != TagList::npos)
        tags.setRealIn("AcDbPolyline", kElevation, newElevation);
    setNormal(tags, from, ownEnd(tags), plane.normal);
    return {};
}

// Into LINEs and ARCs (bulges); widths are lost, as in CAD programs.
Result<std::vector<TagList>> explode(const Database&, const TagList& tags) {
    auto [from, to] = tags.subclass("AcDbPolyline");
    if (from == TagList::npos) return fail("a LWPOLYLINE without its AcDbPolyline data");
    std::vector<PathVertex> vertices;
    for (const Vertex& v : polylineVertices(tags))
        vertices.push_back({v.point, v.bulge});
    std::vector<TagList> out;
    addSegments(out, tags, vertices, closed(tags).value_or(false), true, normalIn(tags, from, to),
                tags.real(gc::kThickness, from, to).value_or(0));
    return out;
}

// Extents by its segments, arcs included.
std::optional<Extents> extents(const TagList& tags) {
    const std::vector<Vertex> points = vertices(tags);
    if (points.empty()) return std::nullopt;
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    addPolyline(box, points, closed(tags).value_or(false));
    return box;
}

// Its vertices (in its OCS, at its elevation) and the arcs of its bulges: a polygon when closed.
std::optional<Outline> outline(const TagList& tags, double tolerance) {
    const bool isClosed = closed(tags).value_or(false);
    std::vector<Point3> points = outline_support::bulgedPath(vertices(tags), isClosed, tolerance);
    if (points.empty()) return std::nullopt;
    outline_support::toWcs(points, normalIn(tags, 1, ownEnd(tags)));
    return outline_support::pathOutline(std::move(points), isClosed);
}

constexpr PropertyPlace kProperties[]{
    {Property::ConstantWidth, "AcDbPolyline", kConstantWidth, "0"},
    {Property::Elevation, "AcDbPolyline", kElevation, "0"},
};

}  // namespace

const EntityKindOps kLwPolyline{
    .kind = EntityKind::LwPolyline,
    .geometrySubclass = "AcDbPolyline",
    .properties = kProperties,
    .closedFlag = ClosedFlag{"AcDbPolyline", gc::kFlags, 1},
    .reversible = true,
    .place = place,
    .vertices = vertices,
    .setVertices = setVertices,
    .extents = extents,
    .explode = explode,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
