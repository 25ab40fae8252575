#include "ExportCommand.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "CheckCommand.h"
#include "ClassifiedDrawing.h"
#include "ExportFeatures.h"
#include "GeoCsvWriter.h"
#include "GeoJsonWriter.h"
#include "TextFormats.h"
#include "base/TextFileWrite.h"

namespace veltarn::app {
namespace {

std::optional<ExportFormat> formatOf(const std::string& path) {
    if (text_formats::hasExtension(path, ".geojson")) return ExportFormat::kGeoJson;
    if (text_formats::hasExtension(path, ".csv")) return ExportFormat::kCsv;
    return std::nullopt;
}

// A positive, finite number written whole ("0.05", "1e-3"); nullopt for anything else.
std::optional<double> positiveNumber(const std::string& text) {
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) return std::nullopt;
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size() || !std::isfinite(value) || !(value > 0)) return std::nullopt;
    return value;
}

}  // namespace

std::string exportUsageText() {
    return "usage: veltarn export --classifier FILE [--tolerance T] DRAWING OUT.geojson|OUT.csv\n";
}

ParsedExportOptions parseExportOptions(const std::vector<std::string>& arguments) {
    ParsedExportOptions parsed;
    ExportOptions& options = parsed.options;
    std::vector<std::string> positional;
    bool toleranceGiven = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool takesValue = argument == "--classifier" || argument == "--tolerance";
        if (takesValue && i + 1 >= arguments.size()) {
            parsed.error = argument + " needs a value";
            return parsed;
        }
        if (argument == "--classifier") {
            if (!options.classifier.empty()) {
                parsed.error = "only one classifier may be given";
                return parsed;
            }
            options.classifier = arguments[++i];
        } else if (argument == "--tolerance") {
            const std::string& value = arguments[++i];
            const std::optional<double> tolerance = positiveNumber(value);
            if (!tolerance || toleranceGiven) {
                parsed.error = toleranceGiven ? "only one tolerance may be given"
                                              : "--tolerance needs a positive number of drawing units: '" + value + "'";
                return parsed;
            }
            options.tolerance = *tolerance;
            toleranceGiven = true;
        } else if (argument.size() > 1 && argument[0] == '-') {
            parsed.error = "unknown option '" + argument + "'";
            return parsed;
        } else {
            positional.push_back(argument);
        }
    }
    if (options.classifier.empty())
        parsed.error = "a classifier is needed: --classifier FILE";
    else if (positional.size() != 2)
        parsed.error = "one drawing and one file to write are needed";
    if (!parsed.error.empty()) return parsed;
    options.drawing = positional[0];
    options.out = positional[1];
    const std::optional<ExportFormat> format = formatOf(options.out);
    if (!format)
        parsed.error = options.out + ": the file to write ends in .geojson or .csv";
    else
        options.format = *format;
    return parsed;
}

int runExport(const std::vector<std::string>& arguments) {
    if (arguments.size() == 1 && (arguments[0] == "--help" || arguments[0] == "-h")) {
        std::cout << exportUsageText();
        return kCheckClean;
    }
    const ParsedExportOptions parsed = parseExportOptions(arguments);
    if (!parsed.error.empty()) {
        std::cerr << "veltarn export: " << parsed.error << "\n" << exportUsageText();
        return kCheckUsage;
    }
    const ExportOptions& options = parsed.options;
    auto fail = [](const std::string& message) {
        std::cerr << "veltarn export: " << message << "\n";
        return int{kCheckUnreadable};
    };
    if (const std::string problem = classifierFileProblem(options.classifier); !problem.empty()) return fail(problem);
    Result<ClassifiedDrawing> read = readClassifiedDrawing(options.drawing, options.classifier);
    if (!read) return fail(read.message());
    ClassifiedDrawing& drawing = read.value();
    // What the classifier's reader said (errors and warnings), as veltarn check reports it.
    for (const std::string& message : drawing.readerMessages())
        std::cerr << "veltarn export: " << options.classifier << ": " << message << "\n";
    if (drawing.classifierFailed)
        return fail(options.classifier + ": the classifier could not be read against " + options.drawing);

    const std::vector<ExportFeature> features = classifiedFeatures(drawing, options.tolerance);
    const std::string name = std::filesystem::path(options.drawing).stem().string();
    const std::string bytes = options.format == ExportFormat::kCsv ? geoCsv(features) : geoJson(features, name);
    if (const std::string error = writeTextFile(options.out, bytes); !error.empty()) return fail(error);
    const auto shapeless =
        std::count_if(features.begin(), features.end(), [](const ExportFeature& f) { return !f.geometry.has_value(); });
    std::cout << "exported " << features.size() << " classified objects to " << options.out;
    if (shapeless) std::cout << " (" << shapeless << " without geometry)";
    std::cout << "\n";
    return kCheckClean;
}

}  // namespace veltarn::app
