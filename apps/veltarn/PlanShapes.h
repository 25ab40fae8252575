// An object as the plan of the HTML report draws it.
#pragma once

#include <optional>

#include "DrawingPlan.h"
#include "host/DbEntity.h"

namespace veltarn::app {

// Its outline in plan terms; nullopt for an object without finite geometry.
std::optional<PlanShape> planShapeOf(const host::DbEntity& entity);

}  // namespace veltarn::app
