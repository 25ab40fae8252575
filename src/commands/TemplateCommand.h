// Writing a starting classifier from the objects of a drawing.
#pragma once

#include "module/CommandContext.h"

namespace veltarn {

void templateCommand(CommandContext& context);  // VELTARN_TEMPLATE

// The object name the format gives the `number`-th object of `type` on `layer`: "%i", "%L", "%l",
// "%T" and "%t" replaced, in that order.
std::wstring templateObjectName(const std::wstring& format, int number, const std::wstring& type, const std::wstring& layer);

}  // namespace veltarn
