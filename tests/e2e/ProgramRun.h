// What the program's end-to-end tests share: files, shell runs of the program, golden files.
#pragma once

#include <gtest/gtest.h>

#include "ExternalTools.h"
#include "ProgramRunner.h"
#include "ScratchFiles.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace veltarn::e2e {

namespace fs = std::filesystem;

inline const fs::path kProgram = testtools::veltarnProgram();

inline std::string readFile(const fs::path& path) { return testtools::readBytes(path); }
inline void writeFile(const fs::path& path, const std::string& bytes) { testtools::writeBytes(path, bytes); }
inline std::string quote(const std::string& text) { return testtools::quoted(text); }

struct ShellRun {
    int exitCode = -1;
    std::string out;
};

// A shell command line; its standard output (and standard error where it sends it there).
inline ShellRun runShell(const std::string& command) {
    ShellRun run;
    run.exitCode = testtools::runCommand(command, &run.out);
    return run;
}

inline void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    if (from.empty()) return;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

// VELTARN_UPDATE_GOLDEN=1 rewrites the golden files instead of comparing with them.
inline bool updating() {
    const char* value = std::getenv("VELTARN_UPDATE_GOLDEN");
    return value && std::string(value) == "1";
}

// Compares `actual` with the golden file, or rewrites it when updating.
inline void expectGolden(const fs::path& golden, const std::string& actual, const std::string& what) {
    if (updating()) {
        writeFile(golden, actual);
        return;
    }
    ASSERT_TRUE(fs::exists(golden)) << golden << " is missing; run with VELTARN_UPDATE_GOLDEN=1 to write it";
    const std::string expected = readFile(golden);
    EXPECT_EQ(actual, expected) << what << " differs from " << golden;
}

}  // namespace veltarn::e2e
