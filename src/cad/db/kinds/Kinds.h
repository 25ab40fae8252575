// The kinds the registry knows, one definition in each kind's file.
#pragma once

#include "cad/db/BlockPlacement.h"
#include "cad/db/kinds/EntityKindOps.h"

namespace veltarn::db::kinds {

extern const EntityKindOps kLine;
extern const EntityKindOps kCircle;
extern const EntityKindOps kArc;
extern const EntityKindOps kMline;
extern const EntityKindOps kLeader;
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

// Gives one block reference (its tags, with its ATTRIBs and SEQEND) one ATTRIB per non-constant
// definition of `definitions` (its block's ATTDEFs, in order; `base`: the block's base point): see
// synchronizeAttributes() in AttributeSync.h. The tags change only on success; returns the
// extension dictionaries of the attributes removed, for the caller to erase.
Result<std::vector<Handle>> synchronizeAttributes(Database& db, TagList& reference,
                                                  const std::vector<TagList>& definitions, const Point3& base);

}  // namespace veltarn::db::kinds
