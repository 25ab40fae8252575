// A report of what the gathered objects are and how well they are classified.
#pragma once

#include <string>

#include "module/CommandContext.h"

namespace veltarn {

void statCommand(CommandContext& context);  // VELTARN_STAT

}  // namespace veltarn
