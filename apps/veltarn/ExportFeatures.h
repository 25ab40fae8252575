// veltarn export: the classified objects of a drawing as GIS features, with their class, their
// records' values and their outlines, ready for a writer (GeoJsonWriter, GeoCsvWriter).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ClassifiedDrawing.h"
#include "host/EntityOutline.h"

namespace veltarn::app {

// A record's value as a GIS attribute: null (a value of no type), an integer, a real, a text
// (UTF-8) or a point.
using ExportValue = std::variant<std::monostate, std::int64_t, double, std::string, host::Point3d>;

struct ExportProperty {
    std::string name;  // "TABLE.FIELD", "TABLE[2].FIELD" for the table's second record...
    ExportValue value;
};

struct ExportFeature {
    std::string handle, type, layer, className;   // type: the classifier's entity type name
    std::vector<ExportProperty> properties;       // the records' fields, record by record
    std::optional<host::EntityOutline> geometry;  // none when the object has no finite shape
};

// Every object of model space that carries at least one record of a class the classifier knows,
// in the drawing's order. Its class is that of its records; of several, the one of the highest
// number, as classifying takes it. Every record of the object is given, those of other tables too;
// a table's second and later records on one object are named TABLE[2], TABLE[3]...
// `tolerance`: how far a chord of a curve may stray from it, in drawing units.
std::vector<ExportFeature> classifiedFeatures(ClassifiedDrawing& drawing, double tolerance);

}  // namespace veltarn::app
