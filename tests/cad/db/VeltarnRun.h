// Runs the veltarn program from a database test: its exit status and what it printed.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace veltarn::db::test {

struct VeltarnRun {
    int exitCode = -1;
    std::string out, err;
};

inline std::string shellQuoted(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

// build/bin/veltarn with `arguments`, reading no input; standard error goes through a file beside `errFile`.
inline VeltarnRun runVeltarn(const std::vector<std::string>& arguments, const std::filesystem::path& errFile) {
    std::string command = shellQuoted(VELTARN_BINARY_DIR "/bin/veltarn");
    for (const auto& argument : arguments) command += " " + shellQuoted(argument);
    command += " </dev/null 2>" + shellQuoted(errFile.string());
    VeltarnRun run;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) run.out.append(buffer, n);
    int status = ::pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::ostringstream err;
    err << std::ifstream(errFile, std::ios::binary).rdbuf();
    run.err = err.str();
    return run;
}

}  // namespace veltarn::db::test
