// The prompts the commands share: a class name, and the remembered 0/1 options.
#pragma once

#include <optional>
#include <string>

#include "host/Editor.h"
#include "res/StringId.h"

namespace veltarn {

// How long a typed class name may be: the selection commands read it into 132 characters with
// the terminating NUL, the others into 133, so names are cut at 131 and 132 characters.
inline constexpr std::size_t kSelectionNameLength = 131;
inline constexpr std::size_t kNameLength = 132;

// "Object: ", spaces allowed; nullopt on anything but a normal answer (the command then ends
// without a word).
std::optional<std::wstring> askClassName(host::Editor& editor, std::size_t maxLength);

// A 0/1 option: `prompt` formatted with the current value, one word read. Enter keeps the value;
// any other answer is read as an integer (text that is no number is 0) and clamped to 0 or 1.
// False on anything but a normal answer, with the value unchanged.
bool askYesNo(host::Editor& editor, StringId prompt, int& value);

}  // namespace veltarn
