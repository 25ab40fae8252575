// The about box: what the module is, its version and its disclaimer.
#pragma once

#include <string>

#include "module/CommandContext.h"

namespace veltarn {

void aboutCommand(CommandContext& context);  // VELTARN_ABOUT

// The about text with this build's version.
std::wstring aboutText();

}  // namespace veltarn
