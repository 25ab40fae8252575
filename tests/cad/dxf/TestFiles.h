// Whole files and programs for tests: read and write bytes, run a command and collect its output.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace veltarn::dxf::test {

inline std::string readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

inline void writeBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

struct ProgramRun {
    int exitCode = -1;
    std::string output;  // what the program wrote to its standard output
};

// Runs a shell command and collects its standard output.
inline ProgramRun runCommand(const std::string& command) {
    ProgramRun run;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) run.output.append(buffer, n);
    int status = ::pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

inline std::string quoteForShell(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

}  // namespace veltarn::dxf::test
