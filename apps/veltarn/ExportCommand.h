// veltarn export --classifier FILE [--tolerance T] DRAWING OUT.geojson|OUT.csv: the classified
// objects of a drawing, with their class, data and outlines, as a GIS file.
#pragma once

#include <string>
#include <vector>

namespace veltarn::app {

// How far a chord of an arc, ellipse or spline may stray from the curve, in drawing units, unless
// --tolerance says otherwise.
inline constexpr double kDefaultExportTolerance = 0.01;

enum class ExportFormat { kGeoJson, kCsv };

struct ExportOptions {
    std::string classifier, drawing, out;
    ExportFormat format = ExportFormat::kGeoJson;
    double tolerance = kDefaultExportTolerance;
};

struct ParsedExportOptions {
    ExportOptions options;
    std::string error;  // non-empty on a usage error
};

// The arguments after "export".
ParsedExportOptions parseExportOptions(const std::vector<std::string>& arguments);

std::string exportUsageText();

// The whole command; the exit code as veltarn check's: 0 when OUT was written, 2 on a usage error,
// 3 when the drawing or the classifier cannot be read, or OUT cannot be written (it is then left
// as it was).
int runExport(const std::vector<std::string>& arguments);

}  // namespace veltarn::app
