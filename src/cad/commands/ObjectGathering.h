// The objects a host command works on: the pick-first set when the command may take it, else the
// ones the user selects.
#pragma once

#include <optional>
#include <vector>

#include "host/Editor.h"

namespace veltarn::cad {

// The pick-first set when it holds anything, else an interactive selection. nullopt when the
// selection was cancelled or the input ended.
std::optional<std::vector<host::ObjectId>> gatherObjects(host::Editor& editor);

}  // namespace veltarn::cad
