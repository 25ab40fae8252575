#include "SupportScratch.h"

#include "ExternalTools.h"
#include "ScratchFiles.h"

namespace veltarn::support::test {

std::filesystem::path scratchDir(const std::string& name) { return testtools::scratchDir("support", name); }

void writeFile(const std::filesystem::path& path, const std::string& text) { testtools::writeBytes(path, text); }

std::string readFile(const std::filesystem::path& path) { return testtools::readBytes(path); }

std::string runPython(const std::string& script, const std::filesystem::path& drawing) {
    const std::filesystem::path file = drawing.parent_path() / "check.py";
    writeFile(file, script);
    std::string output;
    const int code = testtools::runPython(testtools::quoted(file.string()) + " " + testtools::quoted(drawing.string()), &output);
    return code == 0 ? output : "exit " + std::to_string(code) + ": " + output;
}

bool haveEzdxf() { return testtools::missingEzdxf().empty(); }

}  // namespace veltarn::support::test
