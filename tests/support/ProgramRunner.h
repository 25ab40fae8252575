// Runs the veltarn program from a test, as a user's script would: its exit status, standard output
// and standard error apart.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace veltarn::testtools {

// build/bin/veltarn of this build.
std::filesystem::path veltarnProgram();

struct ProgramRun {
    int exitCode = -1;  // -1 when the program did not exit by itself
    std::string out, err;
};

// The program with `arguments`, reading `input` (nothing when empty) on standard input, in the
// folder `workingDir` (the test's when empty).
ProgramRun runVeltarn(const std::vector<std::string>& arguments, const std::string& input = {},
                      const std::filesystem::path& workingDir = {});

}  // namespace veltarn::testtools
