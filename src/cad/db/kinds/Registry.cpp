// kindOf: from a DXF type (and the flags that make derived kinds) to the kind's operations.
#include "cad/db/kinds/Kinds.h"

#include <array>
#include <utility>

namespace veltarn::db {
namespace {

constexpr std::array<std::pair<std::string_view, const EntityKindOps*>, 22> kByType{{
    {"3DFACE", &kinds::kFace3d},
    {"ARC", &kinds::kArc},
    {"ARC_DIMENSION", &kinds::kArcDimension},
    {"ATTDEF", &kinds::kAttributeDefinition},
    {"ATTRIB", &kinds::kAttribute},
    {"CIRCLE", &kinds::kCircle},
    {"DIMENSION", &kinds::kDimension},
    {"ELLIPSE", &kinds::kEllipse},
    {"HATCH", &kinds::kHatch},
    {"LARGE_RADIAL_DIMENSION", &kinds::kLargeRadialDimension},
    {"LINE", &kinds::kLine},
    {"LWPOLYLINE", &kinds::kLwPolyline},
    {"MLINE", &kinds::kMline},
    {"MTEXT", &kinds::kMText},
    {"POINT", &kinds::kPoint},
    {"RAY", &kinds::kRay},
    {"SOLID", &kinds::kSolid2d},
    {"SPLINE", &kinds::kSpline},
    {"TEXT", &kinds::kText},
    {"TRACE", &kinds::kTrace},
    {"WIPEOUT", &kinds::kWipeout},
    {"XLINE", &kinds::kXline},
}};

}  // namespace

const EntityKindOps* kindOf(std::string_view dxfType, const TagList& tags) {
    (void)tags;  // POLYLINE and INSERT will pick their derived kinds by their flags
    for (const auto& [type, ops] : kByType)
        if (type == dxfType) return ops;
    return nullptr;
}

}  // namespace veltarn::db
