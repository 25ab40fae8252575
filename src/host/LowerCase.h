// Lower-casing of names and keywords: towlower, one character at a time, under a UTF-8 locale.
#pragma once

#include <string>
#include <string_view>

namespace veltarn::host {

// Each character through towlower of a UTF-8 C locale, whatever the process locale is, so "ÄB"
// gives "äb". Characters whose lower case is longer or context-dependent keep the one-to-one
// mapping towlower gives (no "ß" expansions), as the module compares names that way.
std::wstring toLower(std::wstring_view text);

// True when a and b are equal after toLower().
bool equalsIgnoringCase(std::wstring_view a, std::wstring_view b);

}  // namespace veltarn::host
