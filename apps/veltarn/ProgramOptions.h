// The command line of the veltarn program.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace veltarn::app {

struct ProgramOptions {
    std::optional<std::string> drawing;  // the drawing to open; a new one when absent
    std::optional<std::string> saveAs;   // where to save when the run ends
    bool help = false;
    bool version = false;
};

// Exit codes of the program.
enum ExitCode : int { kExitOk = 0, kExitFileError = 1, kExitUsage = 2 };

struct ParsedOptions {
    ProgramOptions options;
    std::string error;  // non-empty on a usage error
};

ParsedOptions parseProgramOptions(const std::vector<std::string>& arguments);

std::string usageText();

}  // namespace veltarn::app
