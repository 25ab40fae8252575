// What a module command runs with: the host's services and the module-wide state.
#pragma once

#include "host/Host.h"
#include "module/ModuleState.h"

namespace veltarn {

struct CommandContext {
    host::Host& host;
    ModuleState& state;
};

// A module command: it prompts, reads and writes through `context.host` only. The application
// object has already checked for a loaded classifier when the command's table entry needs one.
using ModuleCommand = void (*)(CommandContext& context);

}  // namespace veltarn
