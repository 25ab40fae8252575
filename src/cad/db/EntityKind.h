// The workbench's own entity kinds: a DXF type, split where its flags make another kind (a
// POLYLINE is a 2D or 3D polyline or a mesh, an INSERT a block reference or a multiple insert).
// Hosts map them to their own classes (see seam/EntityClassification.cpp); what each kind does
// lives in kinds/ (see kinds/EntityKindOps.h).
#pragma once

#include "cad/db/Database.h"

#include <cstdint>

namespace veltarn::db {

enum class EntityKind : std::uint8_t {
    Other,  // attributes, images, derived surfaces, unknown kinds...
    Line,
    Point,
    Circle,
    Arc,
    Ellipse,
    Xline,
    Ray,
    Face3d,
    Solid2d,
    Trace,
    Spline,
    Text,
    MText,
    Attribute,
    AttributeDefinition,
    LwPolyline,
    Polyline2d,
    Polyline3d,
    PolygonMesh,
    PolyfaceMesh,
    BlockReference,
    MultipleInsert,
    Hatch,
    Mline,
    Multileader,
    Wipeout,
    Mesh,
    Solid3d,
    MPolygon,
    Surface,
    Dimension,
    ArcDimension,
    LargeRadialDimension,
    Leader,
};

EntityKind entityKind(const TagList& tags);

bool isDimension(std::string_view dxfType);
// True for every entity: what lies in a block or in model or paper space (not BLOCK/ENDBLK).
bool isEntity(const Database& db, Handle handle);

}  // namespace veltarn::db
