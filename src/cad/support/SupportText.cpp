#include "cad/support/SupportText.h"

#include <cctype>
#include <charconv>

#include "base/RegularFile.h"

#include "base/Wildcard.h"

namespace veltarn::support {
Result<SupportText> SupportText::load(const std::filesystem::path& path) {
    FileBytes file = readRegularFile(path.string(), kMaxSupportFileBytes);
    if (!file.ok()) return dxf::makeError(std::move(file.error));
    return SupportText(std::move(file.bytes), path.string());
}

SupportText::SupportText(std::string text, std::string name) : text_(std::move(text)), name_(std::move(name)) {
    std::string_view rest = text_;
    if (rest.substr(0, 3) == "\xEF\xBB\xBF") rest.remove_prefix(3);
    while (!rest.empty()) {
        std::size_t end = rest.find_first_of("\r\n");
        lines_.push_back(rest.substr(0, end));
        if (end == std::string_view::npos) break;
        std::size_t next = end + 1;
        if (rest[end] == '\r' && next < rest.size() && rest[next] == '\n') ++next;
        rest.remove_prefix(next);
    }
}

Error SupportText::errorAt(std::size_t lineIndex, const std::string& message) const {
    return dxf::makeError(name_ + ":" + std::to_string(lineIndex + 1) + ": " + message);
}

std::string_view trimBlanks(std::string_view text) {
    std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return {};
    std::size_t end = text.find_last_not_of(" \t");
    return text.substr(begin, end - begin + 1);
}

std::string_view stripComment(std::string_view line) { return trimBlanks(line.substr(0, line.find(';'))); }

std::vector<std::string_view> splitItems(std::string_view text) {
    std::vector<std::string_view> items;
    int depth = 0;
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '"') quoted = !quoted;
        else if (quoted) continue;
        else if (c == '[') ++depth;
        else if (c == ']' && depth > 0) --depth;
        else if (c == ',' && depth == 0) {
            items.push_back(trimBlanks(text.substr(start, i - start)));
            start = i + 1;
        }
    }
    items.push_back(trimBlanks(text.substr(start)));
    return items;
}

std::optional<double> parseNumber(std::string_view text) {
    text = trimBlanks(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    if (text.empty() || text.front() == '+') return std::nullopt;
    // from_chars takes "-.5" but not ".5" after a sign in every library; spell the zero out.
    std::string spelled;
    bool negative = text.front() == '-';
    std::string_view digits = negative ? text.substr(1) : text;
    if (!digits.empty() && digits.front() == '.') {
        spelled = std::string(negative ? "-0" : "0") + std::string(digits);
        text = spelled;
    }
    double value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

bool matchesName(std::string_view pattern, std::string_view name) { return wildcardMatch(pattern, name); }

}  // namespace veltarn::support
