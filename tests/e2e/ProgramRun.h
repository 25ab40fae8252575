// What the program's end-to-end tests share: files, shell runs of the program, golden files.
#pragma once

#include <sys/wait.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace veltarn::e2e {

namespace fs = std::filesystem;

inline const fs::path kProgram = fs::path(VELTARN_BINARY_DIR) / "bin/veltarn";

inline std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

inline void writeFile(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

inline std::string quote(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

struct ShellRun {
    int exitCode = -1;
    std::string out;
};

inline ShellRun runShell(const std::string& command) {
    ShellRun run;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) run.out.append(buffer, n);
    const int status = ::pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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
