// The exact class of an entity, as far as the module tells entities apart.
#pragma once

namespace veltarn::host {

// Exact classes, not families: a polyline of the old 2D kind is kPolyline2d, not kPolyline, and
// a block reference with rows and columns is kMInsertBlock, not kBlockReference. Every kind of
// dimension is its own value; isDimension() groups them.
enum class EntityClass {
    kOther,  // anything the module does not tell apart (attribute definitions, images, ...)
    kFace,           // 3DFACE
    kPolyline3d,     // POLYLINE flagged 3D
    kSolid3d,        // 3DSOLID
    kArc,
    kBlockReference,  // INSERT
    kMInsertBlock,    // INSERT with rows or columns
    kCircle,
    kDimensionAligned,
    kDimensionRotated,  // linear
    kDimensionAngular2Line,
    kDimensionAngular3Point,
    kDimensionArc,
    kDimensionDiametric,
    kDimensionRadial,
    kDimensionRadialLarge,  // jogged
    kDimensionOrdinate,
    kEllipse,
    kHatch,
    kLine,
    kSubDMesh,       // MESH
    kMLeader,        // MULTILEADER
    kMline,
    kMPolygon,
    kMText,
    kPoint,
    kPolyFaceMesh,   // POLYLINE flagged as a polyface mesh
    kPolyline,       // LWPOLYLINE
    kPolyline2d,     // POLYLINE of the old 2D kind
    kRay,
    kSpline,
    kSurface,        // a plain SURFACE, not one of the derived surfaces
    kText,
    kWipeout,
    kXline,
};

constexpr bool isDimension(EntityClass c) {
    return c >= EntityClass::kDimensionAligned && c <= EntityClass::kDimensionOrdinate;
}

}  // namespace veltarn::host
