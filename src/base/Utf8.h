// UTF-8 at every edge, wide strings inside the module.
#pragma once

#include <string>
#include <string_view>

namespace veltarn {

// Decodes UTF-8. Each byte that does not start a valid sequence (a stray continuation byte, an
// overlong form, a surrogate, a value past U+10FFFF, a sequence cut short) gives U+FFFD, and
// decoding goes on with the next byte, so no input is lost silently or stops the decoder.
std::wstring fromUtf8(std::string_view text);

// Encodes as UTF-8; a surrogate or a value past U+10FFFF becomes U+FFFD.
std::string toUtf8(std::wstring_view text);

// Appends one code point as UTF-8; a surrogate or a value past U+10FFFF becomes U+FFFD.
void appendUtf8(std::string& out, char32_t codePoint);

}  // namespace veltarn
