#include "cad/seam/EntityClassification.h"

#include "cad/db/EntityKind.h"
#include "cad/db/GroupCodes.h"

namespace veltarn::seam {
namespace {

using host::EntityClass;

// DIMENSION's type in the low bits of group 70.
constexpr int kDimensionTypeMask = 0x0F;

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
    using db::EntityKind;
    switch (db::entityKind(tags)) {
        case EntityKind::Line:
            return EntityClass::kLine;
        case EntityKind::Point:
            return EntityClass::kPoint;
        case EntityKind::Circle:
            return EntityClass::kCircle;
        case EntityKind::Arc:
            return EntityClass::kArc;
        case EntityKind::Ellipse:
            return EntityClass::kEllipse;
        case EntityKind::Xline:
            return EntityClass::kXline;
        case EntityKind::Ray:
            return EntityClass::kRay;
        case EntityKind::Face3d:
            return EntityClass::kFace;
        case EntityKind::Spline:
            return EntityClass::kSpline;
        case EntityKind::Text:
            return EntityClass::kText;
        case EntityKind::MText:
            return EntityClass::kMText;
        case EntityKind::LwPolyline:
            return EntityClass::kPolyline;
        case EntityKind::Polyline2d:
            return EntityClass::kPolyline2d;
        case EntityKind::Polyline3d:
            return EntityClass::kPolyline3d;
        case EntityKind::PolyfaceMesh:
            return EntityClass::kPolyFaceMesh;
        case EntityKind::BlockReference:
            return EntityClass::kBlockReference;
        case EntityKind::MultipleInsert:
            return EntityClass::kMInsertBlock;
        case EntityKind::Hatch:
            return EntityClass::kHatch;
        case EntityKind::Mline:
            return EntityClass::kMline;
        case EntityKind::Multileader:
            return EntityClass::kMLeader;
        case EntityKind::Wipeout:
            return EntityClass::kWipeout;
        case EntityKind::Mesh:
            return EntityClass::kSubDMesh;
        case EntityKind::Solid3d:
            return EntityClass::kSolid3d;
        case EntityKind::MPolygon:
            return EntityClass::kMPolygon;
        case EntityKind::Surface:
            return EntityClass::kSurface;
        case EntityKind::Dimension:
            return dimensionClass(tags);
        case EntityKind::ArcDimension:
            return EntityClass::kDimensionArc;
        case EntityKind::LargeRadialDimension:
            return EntityClass::kDimensionRadialLarge;
        // The module tells no 2D solid, trace, attribute, polygon mesh or leader apart.
        case EntityKind::Solid2d:
        case EntityKind::Trace:
        case EntityKind::Attribute:
        case EntityKind::AttributeDefinition:
        case EntityKind::PolygonMesh:
        case EntityKind::Leader:
        case EntityKind::Other:
            return EntityClass::kOther;
    }
    return EntityClass::kOther;
}

}  // namespace veltarn::seam
