// The kinds the registry knows, one definition in each kind's file.
#pragma once

#include "cad/db/BlockPlacement.h"
#include "cad/db/kinds/EntityKindOps.h"

namespace veltarn::db::kinds {

extern const EntityKindOps kLine;
extern const EntityKindOps kCircle;
extern const EntityKindOps kArc;
extern const EntityKindOps kMline;
extern const EntityKindOps kPoint;
extern const EntityKindOps kXline;
extern const EntityKindOps kRay;
extern const EntityKindOps kFace3d;
extern const EntityKindOps kSolid2d;
extern const EntityKindOps kTrace;
extern const EntityKindOps kSpline;
extern const EntityKindOps kWipeout;
extern const EntityKindOps kEllipse;
extern const EntityKindOps kText;
extern const EntityKindOps kAttribute;
extern const EntityKindOps kAttributeDefinition;
extern const EntityKindOps kMText;
extern const EntityKindOps kHatch;
extern const EntityKindOps kLwPolyline;
extern const EntityKindOps kBlockReference;
extern const EntityKindOps kMultipleInsert;
extern const EntityKindOps kPolyline2d;
extern const EntityKindOps kPolyline3d;
extern const EntityKindOps kPolygonMesh;
extern const EntityKindOps kPolyfaceMesh;
extern const EntityKindOps kMultileader;
extern const EntityKindOps kMesh;
extern const EntityKindOps kSolid3d;
extern const EntityKindOps kSurface;
extern const EntityKindOps kMPolygon;
extern const EntityKindOps kDimension;
extern const EntityKindOps kArcDimension;
extern const EntityKindOps kLargeRadialDimension;

// TEXT, ATTRIB and ATTDEF placed under a block reference; a placed INSERT places its attributes
// with it.
void placeText(TagList& tags, std::size_t from, std::size_t to, const Placement& p);

}  // namespace veltarn::db::kinds
