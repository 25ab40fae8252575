// The command line of the veltarn program.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace veltarn::app {

// One piece of the input, in the order given: a script file, or a command text.
struct ProgramInput {
    enum class Kind { kScript, kCommand };
    Kind kind;
    std::string value;  // the file's path, or the text with "\n" already turned into line ends
};

struct ProgramOptions {
    std::optional<std::string> drawing;  // the drawing to open; a new one when absent
    std::optional<std::string> saveAs;   // where to save when the run ends
    std::vector<ProgramInput> inputs;
    std::optional<std::string> checkClassifier;  // check this classifier file instead of running commands
    bool audit = false;  // check the drawing's invariants instead of running commands; nothing is saved
    bool recover = false;  // read a damaged drawing as far as it can be, audit it with repairs; --save-as saves it
    bool help = false;
    bool version = false;
};

// Exit codes of the program.
// --audit ends with kExitFindings when it found anything.
enum ExitCode : int { kExitOk = 0, kExitFileError = 1, kExitFindings = 1, kExitUsage = 2 };

struct ParsedOptions {
    ProgramOptions options;
    std::string error;  // non-empty on a usage error
};

ParsedOptions parseProgramOptions(const std::vector<std::string>& arguments);

// A command text as typed on the program's command line: the two characters "\n" are a line end
// and "\\" a backslash; any other backslash stays as it is.
std::string unescapeCommandText(const std::string& text);

std::string usageText();

}  // namespace veltarn::app
