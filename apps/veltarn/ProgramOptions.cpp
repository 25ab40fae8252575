#include "ProgramOptions.h"

namespace veltarn::app {

ParsedOptions parseProgramOptions(const std::vector<std::string>& arguments) {
    ParsedOptions parsed;
    ProgramOptions& options = parsed.options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        auto valueOf = [&](const std::string& name) -> std::optional<std::string> {
            if (i + 1 >= arguments.size()) {
                parsed.error = name + " needs a value";
                return std::nullopt;
            }
            return arguments[++i];
        };
        if (argument == "--help" || argument == "-h") {
            options.help = true;
        } else if (argument == "--version") {
            options.version = true;
        } else if (argument == "--save-as") {
            auto value = valueOf(argument);
            if (!value) return parsed;
            options.saveAs = *value;
        } else if (argument.size() > 1 && argument[0] == '-') {
            parsed.error = "unknown option '" + argument + "'";
            return parsed;
        } else if (options.drawing) {
            parsed.error = "only one drawing may be given ('" + *options.drawing + "' and '" + argument + "')";
            return parsed;
        } else {
            options.drawing = argument;
        }
    }
    return parsed;
}

std::string usageText() {
    return "usage: veltarn [DRAWING] [--save-as OUT]\n"
           "\n"
           "Opens DRAWING (a DXF file, ASCII or binary, R12 to 2018) and, with --save-as,\n"
           "writes it to OUT in the version, encoding and form it was read in.\n"
           "\n"
           "options:\n"
           "  --save-as OUT   save the drawing to OUT when the run ends\n"
           "  --help          show this text\n"
           "  --version       show the program's version\n"
           "\n"
           "exit status: 0 on success, 1 on a file error, 2 on a usage error\n";
}

}  // namespace veltarn::app
