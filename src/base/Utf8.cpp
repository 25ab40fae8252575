#include "base/Utf8.h"

namespace veltarn {

namespace {
constexpr char32_t kReplacement = 0xFFFD;
}

std::wstring fromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        if (lead < 0x80) {
            out += static_cast<wchar_t>(lead);
            ++i;
            continue;
        }
        int length = 0;
        char32_t value = 0;
        char32_t minimum = 0;
        if (lead >= 0xC2 && lead <= 0xDF) { length = 2; value = lead & 0x1F; minimum = 0x80; }
        else if (lead >= 0xE0 && lead <= 0xEF) { length = 3; value = lead & 0x0F; minimum = 0x800; }
        else if (lead >= 0xF0 && lead <= 0xF4) { length = 4; value = lead & 0x07; minimum = 0x10000; }
        bool valid = length > 0 && i + length <= text.size();
        for (int k = 1; valid && k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) valid = false;
            else value = (value << 6) | (next & 0x3F);
        }
        if (valid && (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))) valid = false;
        if (!valid) {
            out += static_cast<wchar_t>(kReplacement);
            ++i;
            continue;
        }
        out += static_cast<wchar_t>(value);
        i += length;
    }
    return out;
}

void appendUtf8(std::string& out, char32_t c) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = kReplacement;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

std::string toUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (wchar_t wc : text) {
        if (static_cast<char32_t>(wc) < 0x80) out += static_cast<char>(wc);  // most text: no call
        else appendUtf8(out, static_cast<char32_t>(wc));
    }
    return out;
}

}  // namespace veltarn
