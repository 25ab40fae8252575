// The one wild-card matcher: "*" any run of characters, "?" any one. File names match with their
// case, names of drawing records and support-file definitions without it.
#pragma once

#include <cwctype>
#include <string_view>

namespace veltarn {

enum class LetterCase { kSensitive, kIgnored };

namespace detail {

inline char foldCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
inline wchar_t foldCase(wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c))); }

}  // namespace detail

// True when `name` matches `pattern` whole. Linear in the input for each star tried again, never
// exponential: the last "*" seen takes one more character and the match resumes. Narrow text
// folds ASCII letters only (support files name their definitions in ASCII); wide text folds with
// towlower under the program's UTF-8 locale.
template <class Char>
bool wildcardMatch(std::basic_string_view<Char> pattern, std::basic_string_view<Char> name,
                   LetterCase letterCase = LetterCase::kIgnored) {
    auto same = [letterCase](Char a, Char b) {
        return letterCase == LetterCase::kSensitive ? a == b : detail::foldCase(a) == detail::foldCase(b);
    };
    const std::size_t none = std::basic_string_view<Char>::npos;
    std::size_t p = 0, n = 0, star = none, resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == Char('*')) {
            star = p++;
            resume = n;
        } else if (p < pattern.size() && (pattern[p] == Char('?') || same(pattern[p], name[n]))) {
            ++p;
            ++n;
        } else if (star != none) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == Char('*')) ++p;
    return p == pattern.size();
}

inline bool wildcardMatch(std::wstring_view pattern, std::wstring_view name, LetterCase letterCase = LetterCase::kIgnored) {
    return wildcardMatch<wchar_t>(pattern, name, letterCase);
}
inline bool wildcardMatch(std::string_view pattern, std::string_view name, LetterCase letterCase = LetterCase::kIgnored) {
    return wildcardMatch<char>(pattern, name, letterCase);
}

}  // namespace veltarn
