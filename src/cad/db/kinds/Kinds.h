// The kinds the registry knows, one definition in each kind's file.
#pragma once

#include "cad/db/kinds/EntityKindOps.h"

namespace veltarn::db::kinds {

extern const EntityKindOps kLine;
extern const EntityKindOps kCircle;
extern const EntityKindOps kArc;
extern const EntityKindOps kMline;

}  // namespace veltarn::db::kinds
