// Rounding the real values of classified objects to a number of decimals.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void roundCommand(CommandContext& context);  // VELTARN_ROUND

}  // namespace veltarn
