// The kinds the registry knows, one definition in each kind's file.
#pragma once

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

}  // namespace veltarn::db::kinds
