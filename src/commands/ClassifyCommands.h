// Giving existing objects a class: by name, or automatically from their properties or their data.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void classifyCommand(CommandContext& context);      // VELTARN_CLASSIFY
void classifyAutoCommand(CommandContext& context);  // VELTARN_CLASSIFY_AUTO

}  // namespace veltarn
