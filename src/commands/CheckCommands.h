// Commands that check the gathered objects: illegal values, and the types present.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void assertCommand(CommandContext& context);  // VELTARN_ASSERT
void typeCommand(CommandContext& context);    // VELTARN_TYPE

}  // namespace veltarn
