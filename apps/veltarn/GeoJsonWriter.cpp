#include "GeoJsonWriter.h"

#include "TextFormats.h"

namespace veltarn::app {
namespace {

using namespace text_formats;

std::string jsonNumber(double value) {
    const std::string text = number(value);
    return text.empty() ? "null" : text;
}

std::string position(const host::Point3d& p, bool withZ) {
    std::string out = "[" + jsonNumber(p.x) + ", " + jsonNumber(p.y);
    if (withZ) out += ", " + jsonNumber(p.z);
    return out + "]";
}

// The points of a part; a ring is closed by its first point again, as RFC 7946 asks.
std::string positions(const std::vector<host::Point3d>& part, bool withZ, bool ring) {
    std::string out = "[";
    for (std::size_t i = 0; i < part.size(); ++i)
        out += (i ? ", " : "") + position(part[i], withZ);
    if (ring && !part.empty()) out += ", " + position(part.front(), withZ);
    return out + "]";
}

std::string geometry(const std::optional<host::EntityOutline>& outline) {
    if (!outline || outline->parts.empty()) return "null";
    const bool withZ = hasZ(*outline);
    const auto& parts = outline->parts;
    switch (outline->kind) {
        case host::EntityOutline::Kind::kPoint:
            return R"({"type": "Point", "coordinates": )" + position(parts.front().front(), withZ) + "}";
        case host::EntityOutline::Kind::kLine: {
            if (parts.size() == 1)
                return R"({"type": "LineString", "coordinates": )" + positions(parts.front(), withZ, false) + "}";
            std::string lines;
            for (std::size_t i = 0; i < parts.size(); ++i)
                lines += (i ? ", " : "") + positions(parts[i], withZ, false);
            return R"({"type": "MultiLineString", "coordinates": [)" + lines + "]}";
        }
        case host::EntityOutline::Kind::kPolygon: {
            std::string rings;
            for (std::size_t i = 0; i < parts.size(); ++i)
                rings += (i ? ", " : "") + positions(parts[i], withZ, true);
            return R"({"type": "Polygon", "coordinates": [)" + rings + "]}";
        }
    }
    return "null";
}

std::string value(const ExportValue& v) {
    if (const auto* i = std::get_if<std::int64_t>(&v)) return std::to_string(*i);
    if (const auto* r = std::get_if<double>(&v)) return jsonNumber(*r);
    if (const auto* s = std::get_if<std::string>(&v)) return jsonString(*s);
    if (const auto* p = std::get_if<host::Point3d>(&v)) return position(*p, true);
    return "null";
}

}  // namespace

std::string geoJson(const std::vector<ExportFeature>& features, const std::string& name) {
    std::string out = R"({"type": "FeatureCollection", "name": )" + jsonString(name) + ", \"features\": [\n";
    for (std::size_t i = 0; i < features.size(); ++i) {
        const ExportFeature& f = features[i];
        out += R"({"type": "Feature", "properties": {"handle": )" + jsonString(f.handle) +
               ", \"type\": " + jsonString(f.type) + ", \"layer\": " + jsonString(f.layer) +
               ", \"class\": " + jsonString(f.className);
        for (const ExportProperty& p : f.properties)
            out += ", " + jsonString(p.name) + ": " + value(p.value);
        out += "}, \"geometry\": " + geometry(f.geometry) + "}";
        out += i + 1 < features.size() ? ",\n" : "\n";
    }
    return out + "]}\n";
}

}  // namespace veltarn::app
