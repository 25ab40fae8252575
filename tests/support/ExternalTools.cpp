#include "ExternalTools.h"

#include <gtest/gtest.h>

#include "cad/audit/Auditor.h"
#include "cad/db/Database.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace veltarn::testtools {

namespace fs = std::filesystem;

fs::path toolsDir() { return fs::path(VELTARN_SOURCE_DIR) / "tests" / "tools"; }

int runCommand(const std::string& command, std::string* output) {
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return -1;
    std::array<char, 4096> buffer;
    std::string text;
    while (std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe)) text.append(buffer.data(), n);
    const int status = ::pclose(pipe);
    if (output) *output = std::move(text);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int runPython(const std::string& arguments, std::string* output) {
    return runCommand("/usr/bin/python3 " + arguments + " 2>&1", output);
}

std::string missingEzdxf() {
    static const std::string missing = [] {
        if (!fs::exists("/usr/bin/python3")) return std::string("/usr/bin/python3 is missing (Debian package python3)");
        if (runPython("-c 'import ezdxf'") != 0)
            return std::string("ezdxf is missing for /usr/bin/python3 (Debian package python3-ezdxf; "
                               "scripts/install-deps.sh test installs it)");
        return std::string();
    }();
    return missing;
}

std::string workbenchAudit(const fs::path& file) {
    auto loaded = db::Database::load(file);
    if (!loaded) return "the workbench cannot read it again: " + loaded.message();
    std::string found;
    for (const audit::Finding& finding : audit::auditDrawing(*loaded)) found += finding.code + ": " + finding.message + "\n";
    return found;
}

std::string audit(const fs::path& file) {
    std::string found = workbenchAudit(file);
    if (std::string missing = missingEzdxf(); !missing.empty()) return found + "cannot audit " + file.string() + ": " + missing;
    std::string output;
    const int code = runPython(quoted((toolsDir() / "audit_dxf.py").string()) + " " + quoted(file.string()), &output);
    if (code != 0) found += output.empty() ? "audit_dxf.py exit code " + std::to_string(code) : output;
    return found;
}

std::string quoted(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

fs::path madeOnce(const std::string& name, const std::string& script, const std::string& what) {
    const fs::path dir = fs::path(VELTARN_BINARY_DIR) / "test-scratch" / "generated";
    fs::create_directories(dir);
    const fs::path file = dir / name;
    if (fs::exists(file)) return file;
    if (std::string missing = missingEzdxf(); !missing.empty()) {
        ADD_FAILURE() << "cannot make " << name << ": " << missing;
        return {};
    }
    const fs::path partial = dir / (name + "." + std::to_string(::getpid()) + ".part");
    std::string output;
    if (runPython(script + " " + quoted(partial.string()), &output) != 0) {
        ADD_FAILURE() << what << " failed: " << output;
        return {};
    }
    fs::rename(partial, file);
    return file;
}

fs::path generated(const std::string& name, const std::string& arguments) {
    // The output path comes after the options, where the generator takes it as its second positional.
    return madeOnce(name, quoted((toolsDir() / "gen_dxf.py").string()) + " " + arguments, "gen_dxf.py " + arguments);
}

}  // namespace veltarn::testtools
