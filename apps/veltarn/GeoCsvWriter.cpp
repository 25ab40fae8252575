#include "GeoCsvWriter.h"

#include <unordered_map>

#include "TextFormats.h"

namespace veltarn::app {
namespace {

using namespace text_formats;

std::string position(const host::Point3d& p, bool withZ) {
    std::string out = number(p.x) + " " + number(p.y);
    if (withZ) out += " " + number(p.z);
    return out;
}

std::string positions(const std::vector<host::Point3d>& part, bool withZ, bool ring) {
    std::string out = "(";
    for (std::size_t i = 0; i < part.size(); ++i)
        out += (i ? ", " : "") + position(part[i], withZ);
    if (ring && !part.empty()) out += ", " + position(part.front(), withZ);
    return out + ")";
}

std::string wkt(const std::optional<host::EntityOutline>& outline) {
    if (!outline || outline->parts.empty()) return "";
    const bool withZ = hasZ(*outline);
    const std::string z = withZ ? " Z " : " ";
    const auto& parts = outline->parts;
    switch (outline->kind) {
        case host::EntityOutline::Kind::kPoint:
            return "POINT" + z + "(" + position(parts.front().front(), withZ) + ")";
        case host::EntityOutline::Kind::kLine: {
            if (parts.size() == 1) return "LINESTRING" + z + positions(parts.front(), withZ, false);
            std::string lines;
            for (std::size_t i = 0; i < parts.size(); ++i)
                lines += (i ? ", " : "") + positions(parts[i], withZ, false);
            return "MULTILINESTRING" + z + "(" + lines + ")";
        }
        case host::EntityOutline::Kind::kPolygon: {
            std::string rings;
            for (std::size_t i = 0; i < parts.size(); ++i)
                rings += (i ? ", " : "") + positions(parts[i], withZ, true);
            return "POLYGON" + z + "(" + rings + ")";
        }
    }
    return "";
}

std::string text(const ExportValue& v) {
    if (const auto* i = std::get_if<std::int64_t>(&v)) return std::to_string(*i);
    if (const auto* r = std::get_if<double>(&v)) return number(*r);
    if (const auto* s = std::get_if<std::string>(&v)) return *s;
    if (const auto* p = std::get_if<host::Point3d>(&v)) return number(p->x) + "," + number(p->y) + "," + number(p->z);
    return "";
}

}  // namespace

std::string geoCsv(const std::vector<ExportFeature>& features) {
    std::vector<std::string> columns;
    std::unordered_map<std::string, std::size_t> columnOf;
    for (const ExportFeature& f : features)
        for (const ExportProperty& p : f.properties)
            if (columnOf.emplace(p.name, columns.size()).second) columns.push_back(p.name);

    std::string out = "WKT,handle,type,layer,class";
    for (const std::string& column : columns)
        out += "," + csvField(column);
    out += "\r\n";
    std::vector<std::string> cells;
    for (const ExportFeature& f : features) {
        cells.assign(columns.size(), "");
        for (const ExportProperty& p : f.properties)
            cells[columnOf.at(p.name)] = text(p.value);
        out += csvField(wkt(f.geometry)) + "," + csvField(f.handle) + "," + csvField(f.type) + "," + csvField(f.layer) +
               "," + csvField(f.className);
        for (const std::string& cell : cells)
            out += "," + csvField(cell);
        out += "\r\n";
    }
    return out;
}

}  // namespace veltarn::app
