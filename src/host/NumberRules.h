// The module's rules for reading numbers out of text: a leading number, 0 when there is none.
#pragma once

#include <string_view>

namespace veltarn::host {

// The leading decimal integer of `text`: white space skipped, an optional sign, then digits up to
// the first other character. 0 when no digit follows. Values beyond the 32-bit range give
// INT_MAX or INT_MIN.
int wtoi(std::wstring_view text);

// The leading real number of `text`, read as C's wcstod reads it in the "C" locale: white space
// skipped, an optional sign, digits with an optional "." and an optional exponent ("1.5e3"),
// or a hexadecimal form ("0x1p4"), "inf" or "nan". Stops at the first character that does not
// belong; 0 when there is no number. Overflow gives an infinity, underflow 0.
double wtof(std::wstring_view text);

}  // namespace veltarn::host
