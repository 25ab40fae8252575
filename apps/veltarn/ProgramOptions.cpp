#include "ProgramOptions.h"

namespace veltarn::app {

std::string unescapeCommandText(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == 'n' || text[i + 1] == '\\')) {
            out += text[i + 1] == 'n' ? '\n' : '\\';
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

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
        } else if (argument == "--script") {
            auto value = valueOf(argument);
            if (!value) return parsed;
            options.inputs.push_back({ProgramInput::Kind::kScript, *value});
        } else if (argument == "--command") {
            auto value = valueOf(argument);
            if (!value) return parsed;
            options.inputs.push_back({ProgramInput::Kind::kCommand, unescapeCommandText(*value)});
        } else if (argument == "--check-classifier") {
            auto value = valueOf(argument);
            if (!value) return parsed;
            if (options.checkClassifier) {
                parsed.error = "only one classifier may be checked";
                return parsed;
            }
            options.checkClassifier = *value;
        } else if (argument == "--audit") {
            options.audit = true;
        } else if (argument == "--recover") {
            options.recover = true;
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
    // A check runs no commands: scripts and command texts given with it would silently be ignored.
    if (options.checkClassifier && !options.inputs.empty())
        parsed.error = "--check-classifier runs no scripts or commands";
    // An audit reports on the file as it is: it runs nothing and changes nothing.
    else if (options.audit && !options.drawing)
        parsed.error = "--audit needs a drawing";
    else if (options.audit && (!options.inputs.empty() || options.saveAs || options.checkClassifier))
        parsed.error = "--audit runs no scripts, commands or classifier check and saves nothing";
    // A recovery is its own run: what it read is saved with --save-as, never over the damaged file.
    else if (options.recover && !options.drawing)
        parsed.error = "--recover needs a drawing";
    else if (options.recover && (!options.inputs.empty() || options.checkClassifier || options.audit))
        parsed.error = "--recover runs no scripts, commands, classifier check or audit";
    return parsed;
}

std::string usageText() {
    return "usage: veltarn [DRAWING] [--script FILE]... [--command TEXT]... [--save-as OUT]\n"
           "       veltarn [DRAWING] --check-classifier FILE [--save-as OUT]\n"
           "       veltarn DRAWING --audit\n"
           "       veltarn --recover DRAWING [--save-as OUT]\n"
           "       veltarn check --classifier FILE [--report OUT.jsonl|OUT.csv|OUT.html]... [--from LIST] [--jobs N]\n"
           "                     [--shard K/N] DRAWING...\n"
           "       veltarn report --merge OUT.jsonl|OUT.csv|OUT.html REPORT.jsonl...\n"
           "       veltarn export --classifier FILE [--tolerance T] DRAWING OUT.geojson|OUT.csv\n"
           "\n"
           "Opens DRAWING (a DXF file, ASCII or binary, R12 to 2018; a new drawing when none is\n"
           "given), runs the scripts and command texts in the order given, then, with --save-as,\n"
           "writes the drawing to OUT. Without scripts or commands it reads commands from standard\n"
           "input: with line editing and history at a terminal, else to the end of the input.\n"
           "\n"
           "veltarn export writes the objects of DRAWING that carry data of a class of FILE as GIS\n"
           "features (GeoJSON, or CSV with a WKT column): handle, type, layer, class, every record's\n"
           "fields as TABLE.FIELD, and the object's outline in drawing units, its curves broken into\n"
           "chords that stray at most T drawing units (default 0.01) from them.\n"
           "\n"
           "options:\n"
           "  --script FILE   run the command lines of FILE\n"
           "  --command TEXT  run TEXT as typed; the two characters \\n in it are a line end\n"
           "  --save-as OUT   save the drawing to OUT when the run ends\n"
           "  --check-classifier FILE\n"
           "                  read the classifier FILE against the drawing as loading it would\n"
           "                  (its tables checked, its resources brought in), print its messages\n"
           "                  and then \"N classes, N objects, N tables\"; exit status 1 when\n"
           "                  reading stopped on an error or FILE cannot be opened\n"
           "  --audit         check DRAWING's invariants (owners, handles, dictionaries, layers,\n"
           "                  draw order, blocks, classes, object data), print one line per finding\n"
           "                  and \"N errors found, N fixed\"; exit status 1 when there are findings.\n"
           "                  The file is not changed\n"
           "  --recover       read a damaged DRAWING as far as it can be read, print what was\n"
           "                  skipped and the audit's repairs, then \"N errors found, N fixed\";\n"
           "                  --save-as saves the recovered drawing. The file is not changed;\n"
           "                  exit status 1 when nothing could be read\n"
           "  --help          show this text\n"
           "  --version       show the program's version\n"
           "\n"
           "The transcript (prompts, answers, what commands print) goes to standard output, the\n"
           "program's own errors to standard error.\n"
           "exit status: 0 on success, 1 on a file error, a failed classifier check or audit findings,\n"
           "2 on a usage error\n";
}

}  // namespace veltarn::app
