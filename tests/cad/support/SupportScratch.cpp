#include "SupportScratch.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace veltarn::support::test {

std::filesystem::path scratchDir(const std::string& name) {
    std::filesystem::path dir = std::filesystem::path(VELTARN_BINARY_DIR) / "tests" / "support-scratch" / name;
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::string runPython(const std::string& script, const std::filesystem::path& drawing) {
    std::filesystem::path file = drawing.parent_path() / "check.py";
    writeFile(file, script);
    std::string command = "/usr/bin/python3 '" + file.string() + "' '" + drawing.string() + "' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return "exit -1: popen failed";
    std::string output;
    std::array<char, 4096> buffer;
    std::size_t n;
    while ((n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) output.append(buffer.data(), n);
    int status = pclose(pipe);
    return status == 0 ? output : "exit " + std::to_string(status) + ": " + output;
}

bool haveEzdxf() {
    static const bool have = std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0;
    return have;
}

}  // namespace veltarn::support::test
