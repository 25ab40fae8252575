#include "cad/support/PatternFile.h"

#include <cmath>

namespace veltarn::support {
namespace {

constexpr std::size_t kFixedDescriptors = 5;  // angle, origin x and y, delta x and y

std::string headerName(std::string_view header, std::string* description = nullptr) {
    std::size_t comma = header.find(',');
    if (description && comma != std::string_view::npos) *description = std::string(trimBlanks(header.substr(comma + 1)));
    return std::string(trimBlanks(header.substr(1, comma == std::string_view::npos ? comma : comma - 1)));
}

std::string parseDescriptors(std::string_view line, PatternLine& out) {
    std::vector<std::string_view> items = splitItems(line);
    if (items.size() < kFixedDescriptors)
        return "a descriptor line needs angle, x-origin, y-origin, delta-x and delta-y";
    std::vector<double> numbers;
    for (std::string_view item : items) {
        auto number = parseNumber(item);
        if (!number || !std::isfinite(*number)) return "expected a number, found \"" + std::string(item) + "\"";
        numbers.push_back(*number);
    }
    out.angle = numbers[0];
    out.originX = numbers[1];
    out.originY = numbers[2];
    out.deltaX = numbers[3];
    out.deltaY = numbers[4];
    out.dashes.assign(numbers.begin() + kFixedDescriptors, numbers.end());
    return {};
}

}  // namespace

Result<std::vector<PatternDefinition>> parsePatterns(const SupportText& file) {
    std::vector<PatternDefinition> definitions;
    auto finishLast = [&] {
        if (definitions.empty()) return;
        PatternDefinition& last = definitions.back();
        if (last.lines.empty() && last.error.empty())
            last.error = file.errorAt(last.line, "pattern \"" + last.name + "\" has no descriptor line").message;
    };
    const auto& lines = file.lines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view line = stripComment(lines[i]);
        if (line.empty()) continue;
        if (line.front() == '*') {
            finishLast();
            PatternDefinition definition;
            definition.name = headerName(line, &definition.description);
            definition.text = std::string(line);
            definition.line = i;
            if (definition.name.empty()) definition.error = file.errorAt(i, "a pattern header without a name").message;
            definitions.push_back(std::move(definition));
            continue;
        }
        if (definitions.empty())
            return file.errorAt(i, "expected a pattern header \"*NAME,description\", found \"" + std::string(line) + "\"");
        PatternDefinition& current = definitions.back();
        current.text += "\n";
        current.text += line;
        PatternLine descriptors;
        std::string why = parseDescriptors(line, descriptors);
        if (!why.empty()) {
            if (current.error.empty()) current.error = file.errorAt(i, why).message;
        } else {
            current.lines.push_back(std::move(descriptors));
        }
    }
    finishLast();
    return definitions;
}

std::vector<std::string> patternNames(const SupportText& file) {
    std::vector<std::string> names;
    for (std::string_view line : file.lines()) {
        line = stripComment(line);
        if (!line.empty() && line.front() == '*') names.push_back(headerName(line));
    }
    return names;
}

}  // namespace veltarn::support
