// veltarn check --classifier FILE [--report OUT.jsonl|OUT.csv|OUT.html]... [--from LIST] [--jobs N] [--shard K/N] DRAWING...
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
    unsigned shard = 0, shards = 0;     // --shard K/N; 0/0: every drawing, in the order named
};

// The drawings of share `shard` (1..shards) of `drawings`: sorted by their bytes, then every
// shards-th from index shard-1. The shares of 1..shards partition the sorted list.
std::vector<std::string> shardOf(std::vector<std::string> drawings, unsigned shard, unsigned shards);

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
