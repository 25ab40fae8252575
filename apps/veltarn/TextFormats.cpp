#include "TextFormats.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace veltarn::app::text_formats {

std::string number(double value) {
    if (!std::isfinite(value)) return "";
    if (value == 0) return "0";  // and -0, which some readers take badly
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

std::string jsonString(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                    out += escaped;
                } else {
                    out += c;
                }
        }
    }
    return out + "\"";
}

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string out = "\"";
    for (const char c : text)
        out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

bool hasExtension(const std::string& path, std::string_view extension) {
    if (path.size() <= extension.size()) return false;
    const std::string_view end = std::string_view(path).substr(path.size() - extension.size());
    return std::equal(end.begin(), end.end(), extension.begin(), extension.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    });
}

bool hasZ(const host::EntityOutline& outline) {
    for (const auto& part : outline.parts)
        for (const host::Point3d& p : part)
            if (p.z != 0) return true;
    return false;
}

}  // namespace veltarn::app::text_formats
