#include "cad/support/MlineStyleFile.h"

#include <charconv>
#include <cmath>

namespace veltarn::support {
namespace {

constexpr int kEnd = 0;
constexpr int kName = 2;
constexpr int kDescription = 3;
constexpr int kLinetype = 6;
constexpr int kOffset = 49;
constexpr int kStartAngle = 51;
constexpr int kEndAngle = 52;
constexpr int kColor = 62;
constexpr int kFlags = 70;
constexpr int kElementCount = 71;

bool isStyleStart(std::string_view line) {
    line = trimBlanks(line);
    if (line.size() != 7) return false;
    for (std::size_t i = 0; i < 7; ++i)
        if ((line[i] & ~0x20) != "MLSTYLE"[i]) return false;
    return true;
}

std::optional<int> parseInteger(std::string_view text) {
    text = trimBlanks(text);
    int value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

Result<std::vector<MlineStyleDefinition>> parseMlineStyles(const SupportText& file) {
    std::vector<MlineStyleDefinition> styles;
    const auto& lines = file.lines();
    bool open = false;  // a style is being read
    std::optional<int> declaredCount;
    std::size_t styleLine = 0;
    auto finish = [&]() -> Result<void> {
        if (!open) return {};
        open = false;
        const MlineStyleDefinition& style = styles.back();
        if (style.name.empty()) return file.errorAt(styleLine, "a multiline style without a name (code 2)");
        if (declaredCount && *declaredCount != static_cast<int>(style.elements.size()))
            return file.errorAt(styleLine, "multiline style \"" + style.name + "\" declares " + std::to_string(*declaredCount) +
                                               " elements and gives " + std::to_string(style.elements.size()));
        return {};
    };
    auto start = [&](std::size_t i) {
        styles.emplace_back();
        open = true;
        declaredCount.reset();
        styleLine = i;
    };

    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (trimBlanks(lines[i]).empty()) continue;
        if (isStyleStart(lines[i])) {
            if (auto done = finish(); !done) return done.error();
            start(i);
            continue;
        }
        auto code = parseInteger(lines[i]);
        if (!code) return file.errorAt(i, "expected a group code or \"MLSTYLE\", found \"" + std::string(trimBlanks(lines[i])) + "\"");
        std::string_view value = i + 1 < lines.size() ? lines[i + 1] : std::string_view();
        if (i + 1 >= lines.size() && *code != kEnd) return file.errorAt(i, "group code " + std::to_string(*code) + " without a value");
        std::size_t valueLine = ++i;
        if (*code == kEnd) {
            if (auto done = finish(); !done) return done.error();
            if (isStyleStart(value)) start(valueLine);
            continue;
        }
        if (!open) return file.errorAt(valueLine - 1, "group code " + std::to_string(*code) + " outside a multiline style");
        MlineStyleDefinition& style = styles.back();
        auto integer = [&]() -> Result<int> {
            auto number = parseInteger(value);
            if (!number) return file.errorAt(valueLine, "expected an integer, found \"" + std::string(trimBlanks(value)) + "\"");
            return *number;
        };
        auto real = [&]() -> Result<double> {
            auto number = parseNumber(value);
            if (!number || !std::isfinite(*number)) return file.errorAt(valueLine, "expected a number, found \"" + std::string(trimBlanks(value)) + "\"");
            return *number;
        };
        switch (*code) {
            case kName: style.name = std::string(trimBlanks(value)); break;
            case kDescription: style.description = std::string(value); break;
            case kFlags: { auto v = integer(); if (!v) return v.error(); style.flags = *v; break; }
            case kStartAngle: { auto v = real(); if (!v) return v.error(); style.startAngle = *v; break; }
            case kEndAngle: { auto v = real(); if (!v) return v.error(); style.endAngle = *v; break; }
            case kElementCount: { auto v = integer(); if (!v) return v.error(); declaredCount = *v; break; }
            case kOffset: { auto v = real(); if (!v) return v.error(); style.elements.push_back({*v}); break; }
            case kColor: {
                auto v = integer();
                if (!v) return v.error();
                // Before the first element it is the fill colour; after, the element's.
                (style.elements.empty() ? style.fillColor : style.elements.back().color) = *v;
                break;
            }
            case kLinetype:
                if (style.elements.empty()) return file.errorAt(valueLine, "a linetype (code 6) before the first element offset (code 49)");
                style.elements.back().linetype = std::string(trimBlanks(value));
                break;
            default: break;  // codes of later versions: ignored
        }
    }
    if (auto done = finish(); !done) return done.error();
    return styles;
}

}  // namespace veltarn::support
