// veltarn check --classifier FILE [--report OUT.jsonl|OUT.csv]... [--from LIST] [--jobs N] DRAWING...
#pragma once

#include <string>
#include <vector>

namespace veltarn::app {

// Exit codes of veltarn check.
enum CheckExit : int { kCheckClean = 0, kCheckFindings = 1, kCheckUsage = 2, kCheckUnreadable = 3 };

struct CheckOptions {
    std::string classifier;
    std::vector<std::string> reports;
    std::vector<std::string> drawings;  // the arguments, then those of the lists, in order
    unsigned jobs = 0;                  // drawings checked at once; 0: as many as there are cores
};

struct ParsedCheckOptions {
    CheckOptions options;
    std::string error;  // non-empty on a usage error
};

// The arguments after "check". A --from list is read here: one drawing a line, blank lines and
// surrounding spaces ignored.
ParsedCheckOptions parseCheckOptions(const std::vector<std::string>& arguments);

std::string checkUsageText();

// The whole command: summary on standard output, messages on standard error; the exit code.
int runCheck(const std::vector<std::string>& arguments);

}  // namespace veltarn::app
