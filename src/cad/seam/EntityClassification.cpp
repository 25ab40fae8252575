#include "cad/seam/EntityClassification.h"

#include <array>
#include <utility>

#include "cad/db/GroupCodes.h"

namespace veltarn::seam {
namespace {

using host::EntityClass;

constexpr std::array<std::pair<std::string_view, EntityClass>, 22> kByType{{
    {"3DFACE", EntityClass::kFace},        {"3DSOLID", EntityClass::kSolid3d},
    {"ARC", EntityClass::kArc},            {"CIRCLE", EntityClass::kCircle},
    {"ELLIPSE", EntityClass::kEllipse},    {"HATCH", EntityClass::kHatch},
    {"LINE", EntityClass::kLine},          {"MESH", EntityClass::kSubDMesh},
    {"MULTILEADER", EntityClass::kMLeader}, {"MLEADER", EntityClass::kMLeader},
    {"MLINE", EntityClass::kMline},        {"MPOLYGON", EntityClass::kMPolygon},
    {"MTEXT", EntityClass::kMText},        {"POINT", EntityClass::kPoint},
    {"LWPOLYLINE", EntityClass::kPolyline}, {"RAY", EntityClass::kRay},
    {"SPLINE", EntityClass::kSpline},      {"SURFACE", EntityClass::kSurface},
    {"TEXT", EntityClass::kText},          {"WIPEOUT", EntityClass::kWipeout},
    {"XLINE", EntityClass::kXline},        {"ARC_DIMENSION", EntityClass::kDimensionArc},
}};

// POLYLINE flag bits (group 70) that make it another kind.
constexpr int kPolyline3dFlag = 8;
constexpr int kPolygonMeshFlag = 16;
constexpr int kPolyfaceMeshFlag = 64;

// DIMENSION's type in the low bits of group 70.
constexpr int kDimensionTypeMask = 0x0F;

// A flag of the entity's own tags (a POLYLINE's VERTEX entities follow after the next "0").
int flagsOf(const db::TagList& tags, int code) {
    const std::size_t end = tags.find(db::gc::kStructure, 1);
    return static_cast<int>(tags.integer(code, 1, end).value_or(0));
}

EntityClass dimensionClass(const db::TagList& tags) {
    // Group 70 also appears in other subclasses: read it in the dimension's own.
    auto [from, to] = tags.subclass("AcDbDimension");
    const int type = static_cast<int>(tags.integer(db::gc::kFlags, from == db::TagList::npos ? 1 : from, to).value_or(0));
    switch (type & kDimensionTypeMask) {
        case 0: return EntityClass::kDimensionRotated;
        case 1: return EntityClass::kDimensionAligned;
        case 2: return EntityClass::kDimensionAngular2Line;
        case 3: return EntityClass::kDimensionDiametric;
        case 4: return EntityClass::kDimensionRadial;
        case 5: return EntityClass::kDimensionAngular3Point;
        case 6: return EntityClass::kDimensionOrdinate;
        default: return EntityClass::kDimensionRotated;
    }
}

}  // namespace

host::EntityClass entityClassOf(const db::TagList& tags) {
    const std::string_view type = tags.type();
    for (const auto& [name, kind] : kByType)
        if (type == name) return kind;
    if (type == "DIMENSION") return dimensionClass(tags);
    if (type == "LARGE_RADIAL_DIMENSION") return EntityClass::kDimensionRadialLarge;
    if (type == "INSERT") {
        if (tags.find(db::gc::kSubclass, "AcDbMInsertBlock") != db::TagList::npos) return EntityClass::kMInsertBlock;
        const std::size_t end = tags.find(db::gc::kStructure, 1);
        // Column and row counts above one make a multiple insert.
        if (tags.integer(db::gc::kFlags, 1, end).value_or(1) > 1 || tags.integer(db::gc::kInt71, 1, end).value_or(1) > 1)
            return EntityClass::kMInsertBlock;
        return EntityClass::kBlockReference;
    }
    if (type == "POLYLINE") {
        const int flags = flagsOf(tags, db::gc::kFlags);
        if (flags & kPolyfaceMeshFlag) return EntityClass::kPolyFaceMesh;
        if (flags & kPolygonMeshFlag) return EntityClass::kOther;
        if (flags & kPolyline3dFlag) return EntityClass::kPolyline3d;
        return EntityClass::kPolyline2d;
    }
    return EntityClass::kOther;
}

}  // namespace veltarn::seam
