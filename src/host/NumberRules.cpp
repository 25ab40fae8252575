#include "host/NumberRules.h"

#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwctype>
#include <locale.h>
#include <string>

namespace veltarn::host {
namespace {

bool isBlank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

// The "C" locale, made once, so that a process locale with a decimal comma cannot change results.
locale_t cLocale() {
    static locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return locale;
}

}  // namespace

int wtoi(std::wstring_view text) {
    std::size_t i = 0;
    while (i < text.size() && isBlank(text[i])) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) negative = text[i++] == L'-';
    long long value = 0;
    for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i) {
        value = value * 10 + (text[i] - L'0');
        if (value > static_cast<long long>(INT_MAX) + 1) break;  // saturated; later digits change nothing
    }
    if (negative) value = -value;
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

double wtof(std::wstring_view text) {
    // strtod on an ASCII copy: every character outside ASCII ends a number anyway, so it becomes a
    // stop character; an embedded NUL ends the text as it would in C.
    std::string narrow;
    narrow.reserve(text.size());
    for (wchar_t c : text) {
        if (c == 0) break;
        narrow += (c > 0 && c < 128) ? static_cast<char>(c) : '\x01';
    }
    locale_t locale = cLocale();
    if (locale == static_cast<locale_t>(0)) return std::strtod(narrow.c_str(), nullptr);
    return strtod_l(narrow.c_str(), nullptr, locale);
}

}  // namespace veltarn::host
