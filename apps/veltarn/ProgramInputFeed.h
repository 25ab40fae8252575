// The program's input as the command line reads it: the scripts and command texts given on the
// program's command line, standard input to its end, or lines typed at a terminal.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ProgramOptions.h"
#include "cad/dxf/Result.h"

namespace veltarn::app {

using LineSource = std::function<std::optional<std::wstring>()>;

// Lines, and which script the last line handed out came from (its identity as SCRIPT knows it,
// empty for a command text), so that a script cannot start itself.
struct ScriptFeed {
    LineSource lines;
    std::function<std::wstring()> script;
};

// The scripts (read whole now, a byte-order mark dropped) and command texts in the order given,
// one line at a time. Fails naming the first script that cannot be read: one that is no regular
// file ("is a directory", "is a FIFO", "is a device") or larger than host::kMaxTextFileBytes.
dxf::Result<ScriptFeed> feedOfInputs(const std::vector<ProgramInput>& inputs);

// Standard input, one line at a time, to its end.
LineSource feedOfStandardInput();

// Lines typed at a terminal with line editing and history. `takePrompt` gives the prompt the
// command line has printed last and not ended with a line end, which the line editor shows
// itself. Plain line reading when the program was built without a line editor.
LineSource feedOfTerminal(std::function<std::string()> takePrompt);

}  // namespace veltarn::app
