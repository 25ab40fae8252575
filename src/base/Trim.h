// Trimming, with the character sets the classifier grammar names per column.
#pragma once

#include <string_view>

namespace veltarn {

inline constexpr std::wstring_view kBlanks = L" \t";              // leading side of most columns
inline constexpr std::wstring_view kBlanksAndLineEnds = L" \t\r\n";  // trailing side of most columns
inline constexpr std::wstring_view kSpaces = L" ";                  // leading side of field texts
inline constexpr std::wstring_view kSpacesAndLineEnds = L" \r\n";   // trailing side of field texts

inline std::wstring_view trim(std::wstring_view text, std::wstring_view leading = kBlanks,
                              std::wstring_view trailing = kBlanksAndLineEnds) {
    std::size_t first = text.find_first_not_of(leading);
    if (first == std::wstring_view::npos) return {};
    text.remove_prefix(first);
    std::size_t last = text.find_last_not_of(trailing);
    return last == std::wstring_view::npos ? std::wstring_view() : text.substr(0, last + 1);
}

}  // namespace veltarn
