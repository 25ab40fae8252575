// kindOf: from a DXF type (and the flags that make derived kinds) to the kind's operations.
#include "cad/db/kinds/Kinds.h"

#include "cad/db/GroupCodes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace veltarn::db {
namespace {

constexpr std::array<std::pair<std::string_view, const EntityKindOps*>, 29> kByType{{
    {"3DFACE", &kinds::kFace3d},
    {"3DSOLID", &kinds::kSolid3d},
    {"ARC", &kinds::kArc},
    {"ARC_DIMENSION", &kinds::kArcDimension},
    {"ATTDEF", &kinds::kAttributeDefinition},
    {"ATTRIB", &kinds::kAttribute},
    {"CIRCLE", &kinds::kCircle},
    {"DIMENSION", &kinds::kDimension},
    {"ELLIPSE", &kinds::kEllipse},
    {"HATCH", &kinds::kHatch},
    {"LARGE_RADIAL_DIMENSION", &kinds::kLargeRadialDimension},
    {"LEADER", &kinds::kLeader},
    {"LINE", &kinds::kLine},
    {"LWPOLYLINE", &kinds::kLwPolyline},
    {"MESH", &kinds::kMesh},
    {"MLEADER", &kinds::kMultileader},
    {"MLINE", &kinds::kMline},
    {"MPOLYGON", &kinds::kMPolygon},
    {"MTEXT", &kinds::kMText},
    {"MULTILEADER", &kinds::kMultileader},
    {"POINT", &kinds::kPoint},
    {"RAY", &kinds::kRay},
    {"SOLID", &kinds::kSolid2d},
    {"SPLINE", &kinds::kSpline},
    {"SURFACE", &kinds::kSurface},
    {"TEXT", &kinds::kText},
    {"TRACE", &kinds::kTrace},
    {"WIPEOUT", &kinds::kWipeout},
    {"XLINE", &kinds::kXline},
}};
// Looked up by binary search.
static_assert(std::ranges::is_sorted(kByType, {}, &std::pair<std::string_view, const EntityKindOps*>::first));

}  // namespace

const EntityKindOps* kindOf(std::string_view dxfType, const TagList& tags) {
    // Flags make an INSERT or a POLYLINE another kind.
    if (dxfType == "INSERT") {
        // A multiple insert: rows or columns above one, or its own marker.
        if (tags.find(gc::kSubclass, "AcDbMInsertBlock") != TagList::npos) return &kinds::kMultipleInsert;
        const std::size_t end = tags.find(gc::kStructure, 1);
        if (tags.integer(gc::kFlags, 1, end).value_or(1) > 1 || tags.integer(gc::kInt71, 1, end).value_or(1) > 1)
            return &kinds::kMultipleInsert;
        return &kinds::kBlockReference;
    }
    if (dxfType == "POLYLINE") {
        constexpr int kPolyline3d = 8, kPolygonMesh = 16, kPolyfaceMesh = 64;
        const std::size_t end = tags.find(gc::kStructure, 1);
        const int flags = static_cast<int>(tags.integer(gc::kFlags, 1, end).value_or(0));
        if (flags & kPolyfaceMesh) return &kinds::kPolyfaceMesh;
        if (flags & kPolygonMesh) return &kinds::kPolygonMesh;
        if (flags & kPolyline3d) return &kinds::kPolyline3d;
        return &kinds::kPolyline2d;
    }
    auto at = std::ranges::lower_bound(kByType, dxfType, {}, &std::pair<std::string_view, const EntityKindOps*>::first);
    return at != kByType.end() && at->first == dxfType ? at->second : nullptr;
}

}  // namespace veltarn::db
