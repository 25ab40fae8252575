#include "cad/support/LinetypeFile.h"

#include <cmath>
#include <numbers>

namespace veltarn::support {
namespace {

// An angle as ".lin" files write it: degrees, or with a "d", "r" (radians) or "g" (grads) suffix.
std::optional<double> parseAngle(std::string_view text) {
    text = trimBlanks(text);
    double factor = 1;
    if (!text.empty()) {
        char unit = static_cast<char>(text.back() | 0x20);
        if (unit == 'd' || unit == 'r' || unit == 'g') {
            factor = unit == 'r' ? 180 / std::numbers::pi : unit == 'g' ? 0.9 : 1;
            text.remove_suffix(1);
        }
    }
    auto value = parseNumber(text);
    if (!value) return std::nullopt;
    return *value * factor;
}

// The inside of "[...]" into `element`; a message when it is malformed.
std::string parseShape(std::string_view inside, LinetypeElement& element) {
    std::vector<std::string_view> items = splitItems(inside);
    if (items.size() < 2 || items[0].empty() || items[1].empty()) return "a text or shape element needs a name and a style or shape file";
    if (items[0].front() == '"') {
        if (items[0].size() < 2 || items[0].back() != '"') return "unterminated text in a linetype element";
        element.shape = LinetypeShape::Text;
        element.text = std::string(items[0].substr(1, items[0].size() - 2));
    } else {
        element.shape = LinetypeShape::Shape;
        element.text = std::string(items[0]);
    }
    element.styleName = std::string(items[1]);
    for (std::size_t i = 2; i < items.size(); ++i) {
        std::string_view item = items[i];
        char key = item.size() >= 2 && item[1] == '=' ? static_cast<char>(item[0] & ~0x20) : 0;
        std::string_view text = item.substr(key ? 2 : 0);
        std::optional<double> value = key == 'R' || key == 'A' || key == 'U' ? parseAngle(text) : parseNumber(text);
        if (!value || !std::isfinite(*value)) key = 0;
        switch (key) {
            case 'S': element.scale = *value; break;
            case 'X': element.offsetX = *value; break;
            case 'Y': element.offsetY = *value; break;
            case 'R': element.rotation = *value; break;
            case 'A': element.rotation = *value; element.absoluteRotation = true; break;
            case 'U': element.rotation = *value; element.uprightRotation = true; break;
            default: return "unknown or malformed item \"" + std::string(item) + "\" in a linetype element";
        }
    }
    return {};
}

// The pattern line ("A,..."); a message when it is malformed.
std::string parsePattern(std::string_view line, std::vector<LinetypeElement>& elements) {
    std::vector<std::string_view> items = splitItems(line);
    if (items[0] != "A" && items[0] != "a") return "a pattern line starts with the alignment \"A\"";
    for (std::size_t i = 1; i < items.size(); ++i) {
        std::string_view item = items[i];
        if (item.empty() && i + 1 == items.size()) break;  // "A," of a solid line
        if (!item.empty() && item.front() == '[') {
            if (item.back() != ']') return "unterminated \"[\" in the pattern line";
            if (elements.empty()) return "a text or shape element must follow a dash";
            if (elements.back().shape != LinetypeShape::None) return "two text or shape elements on one dash";
            if (std::string why = parseShape(item.substr(1, item.size() - 2), elements.back()); !why.empty()) return why;
            continue;
        }
        auto length = parseNumber(item);
        if (!length || !std::isfinite(*length)) return "expected a dash length, found \"" + std::string(item) + "\"";
        elements.emplace_back().length = *length;
    }
    return {};
}

}  // namespace

double LinetypeDefinition::patternLength() const {
    double length = 0;
    for (const auto& element : elements) length += std::fabs(element.length);
    return length;
}

Result<std::vector<LinetypeDefinition>> parseLinetypes(const SupportText& file) {
    std::vector<LinetypeDefinition> definitions;
    bool patternRead = true;  // of the last definition; "A," gives no elements, so it is kept apart
    auto finishLast = [&] {
        if (patternRead) return;
        LinetypeDefinition& last = definitions.back();
        if (last.error.empty()) last.error = file.errorAt(last.line, "linetype \"" + last.name + "\" has no pattern line").message;
    };
    const auto& lines = file.lines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view line = stripComment(lines[i]);
        if (line.empty()) continue;
        if (line.front() != '*') {
            if (patternRead)
                return file.errorAt(i, "expected a linetype header \"*NAME,description\", found \"" + std::string(line) + "\"");
            patternRead = true;
            LinetypeDefinition& current = definitions.back();
            std::string why = parsePattern(line, current.elements);
            if (!why.empty() && current.error.empty()) current.error = file.errorAt(i, why).message;
            continue;
        }
        finishLast();
        LinetypeDefinition definition;
        std::size_t comma = line.find(',');
        definition.name = std::string(trimBlanks(line.substr(1, comma == std::string_view::npos ? comma : comma - 1)));
        if (comma != std::string_view::npos) definition.description = std::string(trimBlanks(line.substr(comma + 1)));
        definition.line = i;
        if (definition.name.empty()) definition.error = file.errorAt(i, "a linetype header without a name").message;
        definitions.push_back(std::move(definition));
        patternRead = false;
    }
    finishLast();
    return definitions;
}

}  // namespace veltarn::support
