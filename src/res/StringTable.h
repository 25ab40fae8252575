// The module's string table: messages, prompts and captions by id.
#pragma once

#include <string>

#include "res/StringId.h"

namespace veltarn {

// The text of `id`, exactly as the module prints it (printf formats and "\n" included). An id that
// holds no text (a value cast from an int outside the table) gives the empty string, never a crash.
const std::wstring& loadString(StringId id);

// The same by number, for callers that hold a raw id (scripts, the workbench's resource lookups).
const std::wstring& loadString(int id);

// True when `id` holds a text.
bool hasString(int id);

}  // namespace veltarn
