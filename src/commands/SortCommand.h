// Ordering the drawing by class priority: objects of higher priority drawn over lower ones.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void sortCommand(CommandContext& context);  // VELTARN_SORT

}  // namespace veltarn
