// Files and programs in the tag layer's tests: the shared test support under the names these
// tests use.
#pragma once

#include <filesystem>
#include <set>
#include <string>

#include "ExternalTools.h"
#include "ScratchFiles.h"

namespace veltarn::dxf::test {

using testtools::quoted;
using testtools::readBytes;
using testtools::TempFolder;
using testtools::writeBytes;

struct ProgramRun {
    int exitCode = -1;
    std::string output;  // what it wrote to standard output
};

// Runs a shell command; what it writes to standard error goes where the command sends it.
inline ProgramRun runCommand(const std::string& command) {
    ProgramRun run;
    run.exitCode = testtools::runCommand(command, &run.output);
    return run;
}

// The names of the entries of `folder`, sorted: what a save left beside its target.
inline std::set<std::string> namesIn(const std::filesystem::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) names.insert(entry.path().filename().string());
    return names;
}

}  // namespace veltarn::dxf::test
