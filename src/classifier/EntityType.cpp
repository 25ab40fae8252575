#include "classifier/EntityType.h"

namespace veltarn {

using host::EntityClass;

const std::array<std::wstring_view, 24> kEntityTypeNames{
    L"3DFace", L"3DPolyline", L"3DSolid", L"Arc",     L"BlockReference", L"Circle", L"Dimension", L"Ellipse",
    L"Hatch",  L"Line",       L"Mesh",    L"MLeader", L"Mline",          L"MPolygon", L"MText",   L"Point",
    L"PolyFaceMesh", L"Polyline", L"Ray", L"Spline",  L"Surface",        L"Text",   L"Wipeout",   L"Xline",
};

std::wstring_view entityTypeName(EntityClass entityClass) {
    if (host::isDimension(entityClass)) return L"Dimension";
    switch (entityClass) {
        case EntityClass::kFace: return L"3DFace";
        case EntityClass::kPolyline3d: return L"3DPolyline";
        case EntityClass::kSolid3d: return L"3DSolid";
        case EntityClass::kArc: return L"Arc";
        case EntityClass::kBlockReference: return L"BlockReference";
        case EntityClass::kCircle: return L"Circle";
        case EntityClass::kEllipse: return L"Ellipse";
        case EntityClass::kHatch: return L"Hatch";
        case EntityClass::kLine: return L"Line";
        case EntityClass::kSubDMesh: return L"Mesh";
        case EntityClass::kMLeader: return L"MLeader";
        case EntityClass::kMline: return L"Mline";
        case EntityClass::kMPolygon: return L"MPolygon";
        case EntityClass::kMText: return L"MText";
        case EntityClass::kPoint: return L"Point";
        case EntityClass::kPolyFaceMesh: return L"PolyFaceMesh";
        case EntityClass::kPolyline: return L"Polyline";
        case EntityClass::kRay: return L"Ray";
        case EntityClass::kSpline: return L"Spline";
        case EntityClass::kSurface: return L"Surface";
        case EntityClass::kText: return L"Text";
        case EntityClass::kWipeout: return L"Wipeout";
        case EntityClass::kXline: return L"Xline";
        default: return {};
    }
}

std::wstring entityTypeOf(const host::DbEntity& entity) { return std::wstring(entityTypeName(entity.entityClass())); }

}  // namespace veltarn
