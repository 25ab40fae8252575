// Objects drawn one on top of the other: selecting the ones that can go, and erasing them.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

// Both ask "Tolerance<%g>: " (remembered, shared by the two), then gather objects as
// VELTARN_ASSERT does. Of each group of duplicates the one with data of a known class stays, else
// one with data, else the first in model space; an object's records go only with a twin that
// keeps the same ones.
void selectDuplicatesCommand(CommandContext& context);  // "Selected: %i"
void deleteDuplicatesCommand(CommandContext& context);  // "Completed: %i\n"

}  // namespace veltarn
