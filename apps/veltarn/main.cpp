// The veltarn program: opens a drawing, runs what it is asked to, and saves.
#include "ProgramOptions.h"

#include "cad/dxf/TagFile.h"
#include "cad/dxf/TagWriter.h"

#include <cstdio>
#include <iostream>

using namespace veltarn;

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    app::ParsedOptions parsed = app::parseProgramOptions(arguments);
    if (!parsed.error.empty()) {
        std::cerr << "veltarn: " << parsed.error << "\n" << app::usageText();
        return app::kExitUsage;
    }
    const app::ProgramOptions& options = parsed.options;
    if (options.help) {
        std::cout << app::usageText();
        return app::kExitOk;
    }
    if (options.version) {
        std::cout << "veltarn " VELTARN_VERSION "\n";
        return app::kExitOk;
    }
    if (!options.drawing) {
        std::cerr << "veltarn: no drawing given\n" << app::usageText();
        return app::kExitUsage;
    }

    auto drawing = dxf::TagFile::load(*options.drawing);
    if (!drawing) {
        std::cerr << "veltarn: " << drawing.message() << "\n";
        return app::kExitFileError;
    }
    if (options.saveAs) {
        if (auto saved = dxf::saveUnchanged(*drawing, *options.saveAs); !saved) {
            std::cerr << "veltarn: " << saved.message() << "\n";
            return app::kExitFileError;
        }
    }
    return app::kExitOk;
}
