// The result of a prompt, a selection or a command run inside a command.
#pragma once

namespace veltarn::host {

// The numeric values are the module's result codes, so they can be printed and compared as such.
enum class PromptStatus : int {
    kNormal = 5100,   // an answer was given
    kNone = 5000,     // the empty answer where the prompt does not take one (Enter at a point prompt)
    kCancel = -5002,  // Esc, Ctrl+C, or the word Esc in a script
    kError = -5001,   // no answer possible (no input left, a bad call)
};

}  // namespace veltarn::host
