#include "TestSupport.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <cstdio>
#include <sys/wait.h>

namespace veltarn::db::test {

std::filesystem::path scratchDir(const std::string& name) {
    auto dir = std::filesystem::path(VELTARN_BINARY_DIR) / "test-scratch" / "db" / name;
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

std::filesystem::path toolsDir() {
    auto dir = std::filesystem::path(VELTARN_SOURCE_DIR) / ".." / "shared" / "tools";
    return std::filesystem::exists(dir / "audit_dxf.py") ? dir : std::filesystem::path();
}

bool haveChecker() { return !toolsDir().empty() && std::filesystem::exists("/usr/bin/python3"); }

int runPython(const std::string& arguments, std::string* output) {
    std::string command = "/usr/bin/python3 " + arguments + " 2>&1";
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return -1;
    std::array<char, 4096> buffer;
    std::string text;
    while (std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe)) text.append(buffer.data(), n);
    int status = ::pclose(pipe);
    if (output) *output = text;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string audit(const std::filesystem::path& file) {
    std::string output;
    int code = runPython((toolsDir() / "audit_dxf.py").string() + " '" + file.string() + "'", &output);
    if (code == 0) return {};
    return output.empty() ? "auditor exit code " + std::to_string(code) : output;
}

namespace {

// Makes `name` once in the shared folder of made drawings with `command` (given the output path),
// through a part file of this process's own, so that tests running side by side never read one
// half written.
std::filesystem::path madeOnce(const std::string& name, const std::string& command, const std::string& what) {
    auto dir = std::filesystem::path(VELTARN_BINARY_DIR) / "test-scratch" / "db-generated";
    std::filesystem::create_directories(dir);
    auto file = dir / name;
    if (!std::filesystem::exists(file)) {
        std::string output;
        auto partial = dir / (name + "." + std::to_string(::getpid()) + ".part");
        int code = runPython(command + " '" + partial.string() + "'", &output);
        if (code != 0) {
            ADD_FAILURE() << what << " failed: " << output;
            return {};
        }
        std::filesystem::rename(partial, file);
    }
    return file;
}

}  // namespace

std::filesystem::path generated(const std::string& name, const std::string& arguments) {
    return madeOnce(name, (toolsDir() / "gen_dxf.py").string() + " " + arguments, "gen_dxf.py");
}

std::filesystem::path madeByScript(const std::string& script) {
    return madeOnce(script + ".dxf", std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/" + script, script);
}

std::string withoutSeed(const Database& db) {
    std::string text = db.toText().value();
    std::size_t at = text.find("$HANDSEED");
    if (at == std::string::npos) return text;
    std::size_t value = text.find("\n", text.find("\n", at) + 1);  // past the variable and the code lines
    return text.erase(value + 1, text.find("\n", value + 1) - value);
}

Database loadOrFail(const std::filesystem::path& file) {
    auto db = Database::load(file);
    if (!db) {
        ADD_FAILURE() << db.message();
        return Database::createNew();
    }
    return std::move(db).value();
}

Database parseOrFail(const std::string& text) {
    auto db = Database::parse(text, "test.dxf");
    if (!db) {
        ADD_FAILURE() << db.message();
        return Database::createNew();
    }
    return std::move(db).value();
}

}  // namespace veltarn::db::test
