// The six selection commands: objects by class, by class group, by class with property and data
// tests, by their own stored classes, by empty values, and by whether they are classified.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void selectCommand(CommandContext& context);            // VELTARN_SEL
void selectClassCommand(CommandContext& context);       // VELTARN_SEL_CLASS
void selectExtendedCommand(CommandContext& context);    // VELTARN_SEL_EXT
void selectAllCommand(CommandContext& context);         // VELTARN_SEL_ALL
void selectNullCommand(CommandContext& context);        // VELTARN_SEL_NULL
void selectClassifiedCommand(CommandContext& context);  // VELTARN_SEL_CLASSIFIED

}  // namespace veltarn
