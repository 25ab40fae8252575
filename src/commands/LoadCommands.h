// Putting a classifier into use (load, reload) and taking object data off objects (remove).
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void loadCommand(CommandContext& context);       // VELTARN_LOAD
void reloadCommand(CommandContext& context);     // VELTARN_RELOAD
void removeCommand(CommandContext& context);     // VELTARN_REMOVE
void removeAllCommand(CommandContext& context);  // VELTARN_REMOVE_ALL

}  // namespace veltarn
