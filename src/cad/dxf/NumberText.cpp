#include "cad/dxf/NumberText.h"

#include <charconv>
#include <cmath>

namespace veltarn::dxf {

std::string_view trimSpaces(std::string_view text) {
    auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    text = trimSpaces(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    std::int64_t value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec == std::errc() && end == text.data() + text.size() && !text.empty()) return value;
    // Some writers store integers as reals ("1.0"): a whole number in range is still an integer.
    if (ec == std::errc::result_out_of_range) return std::nullopt;
    auto real = parseReal(text);
    if (!real || std::trunc(*real) != *real || std::fabs(*real) >= 9.2e18) return std::nullopt;
    return static_cast<std::int64_t>(*real);
}

std::optional<double> parseReal(std::string_view text) {
    text = trimSpaces(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

std::string formatReal(double value) {
    if (std::isnan(value)) return "nan";
    char buffer[40];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    (void)ec;  // 40 characters hold any double in its shortest form
    return std::string(buffer, end);
}

std::string toHex(std::string_view bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (unsigned char c : bytes) {
        hex += kDigits[c >> 4];
        hex += kDigits[c & 15];
    }
    return hex;
}

std::optional<std::string> fromHex(std::string_view hex) {
    hex = trimSpaces(hex);
    if (hex.size() % 2 != 0) return std::nullopt;
    auto nibble = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        return -1;
    };
    std::string bytes;
    bytes.reserve(hex.size() / 2);
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        int high = nibble(hex[i]), low = nibble(hex[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

}  // namespace veltarn::dxf
