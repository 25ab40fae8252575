// Giving classified objects back the graphic properties their class prescribes.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void restoreCommand(CommandContext& context);  // VELTARN_RESTORE

}  // namespace veltarn
