#include "cad/db/EntityKind.h"

#include "cad/db/GroupCodes.h"

#include <array>
#include <utility>

namespace veltarn::db {
namespace {

// POLYLINE flag bits that make it another kind (group 70 of AcDb2dPolyline / AcDb3dPolyline).
constexpr int kPolyline3d = 8;
constexpr int kPolygonMesh = 16;
constexpr int kPolyfaceMesh = 64;

constexpr std::array<std::pair<std::string_view, std::string_view>, 19> kExact{{
    {"3DFACE", "3DFace"},      {"3DSOLID", "3DSolid"}, {"ARC", "Arc"},         {"CIRCLE", "Circle"},
    {"ELLIPSE", "Ellipse"},    {"HATCH", "Hatch"},     {"LINE", "Line"},       {"MESH", "Mesh"},
    {"MULTILEADER", "MLeader"}, {"MLEADER", "MLeader"}, {"MLINE", "Mline"},     {"MPOLYGON", "MPolygon"},
    {"MTEXT", "MText"},        {"POINT", "Point"},     {"LWPOLYLINE", "Polyline"}, {"RAY", "Ray"},
    {"SPLINE", "Spline"},      {"WIPEOUT", "Wipeout"}, {"XLINE", "Xline"},
}};

}  // namespace

bool isDimension(std::string_view type) {
    return type == "DIMENSION" || type == "ARC_DIMENSION" || type == "LARGE_RADIAL_DIMENSION";
}

std::string entityTypeName(const TagList& tags) {
    std::string_view type = tags.type();
    for (const auto& [dxf, name] : kExact)
        if (type == dxf) return std::string(name);
    if (isDimension(type)) return "Dimension";
    if (type == "SURFACE") return "Surface";  // the derived surfaces have DXF names of their own
    if (type == "TEXT") return "Text";        // ATTRIB and ATTDEF are their own types
    if (type == "INSERT") {
        // A multiple insert is a derived kind: rows or columns above one, or its own marker.
        if (tags.find(gc::kSubclass, "AcDbMInsertBlock") != TagList::npos) return {};
        std::size_t end = tags.find(gc::kStructure, 1);
        if (tags.integer(gc::kFlags, 1, end).value_or(1) > 1 || tags.integer(gc::kInt71, 1, end).value_or(1) > 1) return {};
        return "BlockReference";
    }
    if (type == "POLYLINE") {
        std::size_t end = tags.find(gc::kStructure, 1);
        int flags = static_cast<int>(tags.integer(gc::kFlags, 1, end).value_or(0));
        if (flags & kPolyfaceMesh) return "PolyFaceMesh";
        if (flags & kPolygonMesh) return {};
        if (flags & kPolyline3d) return "3DPolyline";
        return {};  // an old-style 2D polyline
    }
    return {};
}

std::string entityTypeName(const Database& db, Handle entity) {
    std::string_view type = db.typeName(entity);
    if (type != "INSERT" && type != "POLYLINE") {
        TagList only{{0, std::string(type)}};
        return entityTypeName(only);
    }
    return entityTypeName(db.tags(entity));
}

bool isEntity(const Database& db, Handle handle) { return db.blockOf(handle) != kNoHandle; }

}  // namespace veltarn::db
