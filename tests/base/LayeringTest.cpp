// The module knows a CAD program only through the seam: no module source may include a header of
// the workbench (src/cad) or of Qt, whatever the libraries link. The link check is made when the
// build is configured; this one reads the sources.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace {

namespace fs = std::filesystem;

TEST(Layering, ModuleSourcesIncludeNoWorkbenchOrQtHeader) {
    const fs::path src = fs::path(VELTARN_SOURCE_DIR) / "src";
    const std::regex forbidden(R"(^\s*#\s*include\s*[<"](cad/|Q[A-Za-z]|qt))");
    int files = 0;
    for (const char* library : {"base", "host", "res", "data", "classifier", "module", "draw", "commands", "gridctrl", "gui", "app"}) {
        if (!fs::is_directory(src / library)) continue;
        for (const auto& entry : fs::recursive_directory_iterator(src / library)) {
            const fs::path& path = entry.path();
            // The Qt widgets of the palettes are the one place below src/gui that may use Qt.
            if (path.string().find("/gui/qt/") != std::string::npos) continue;
            if (path.extension() != ".h" && path.extension() != ".cpp") continue;
            ++files;
            std::ifstream in(path);
            std::string line;
            for (int number = 1; std::getline(in, line); ++number)
                EXPECT_FALSE(std::regex_search(line, forbidden)) << path.string() << ":" << number << ": " << line;
        }
    }
    EXPECT_GT(files, 50) << "the module's sources were not found under " << src;
}

}  // namespace
