#include "host/LowerCase.h"

#include <clocale>
#include <cwctype>
#include <locale.h>
#include <wctype.h>

namespace veltarn::host {
namespace {

// Made once and never changed: the process locale stays the program's business.
locale_t utf8Locale() {
    static locale_t locale = [] {
        for (const char* name : {"C.UTF-8", "C.utf8", "en_US.UTF-8"}) {
            if (locale_t made = newlocale(LC_CTYPE_MASK, name, static_cast<locale_t>(0))) return made;
        }
        return static_cast<locale_t>(0);
    }();
    return locale;
}

wchar_t lower(wchar_t c, locale_t locale) {
    if (c < 128) return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c + 32) : c;
    if (locale == static_cast<locale_t>(0)) return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), locale));
}

}  // namespace

std::wstring toLower(std::wstring_view text) {
    const locale_t locale = utf8Locale();
    std::wstring out(text);
    for (wchar_t& c : out) c = lower(c, locale);
    return out;
}

bool equalsIgnoringCase(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) return false;
    const locale_t locale = utf8Locale();
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lower(a[i], locale) != lower(b[i], locale)) return false;
    return true;
}

}  // namespace veltarn::host
