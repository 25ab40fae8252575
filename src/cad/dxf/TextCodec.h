// The text encoding of one DXF file: UTF-8 from AC1021 on, the $DWGCODEPAGE before that. Values are
// decoded to UTF-8 when read (with the \U+XXXX and \M+nXXXX escapes resolved) and encoded back
// when written, so that everything above this layer sees UTF-8 only.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/Utf8.h"

namespace veltarn::dxf {

class TextCodec {
public:
    // UTF-8, the codec of every file from AC1021 (2007) on.
    TextCodec();

    // The codec a file of this $ACADVER and $DWGCODEPAGE is written in. An unknown code page
    // falls back to ANSI_1252, which is what DXF readers assume when the variable is missing.
    static TextCodec forFile(std::string_view acadVersion, std::string_view dwgCodePage);

    bool isUtf8() const { return codePage_.empty(); }
    // "ANSI_1252" and the like; empty for UTF-8.
    const std::string& codePage() const { return codePage_; }

    // True when `raw` must go through decode() to become UTF-8 (non-ASCII bytes in a code-page
    // file, or an escape); plain ASCII passes as it is.
    bool needsDecoding(std::string_view raw) const;

    // File bytes to UTF-8. Bytes that are invalid in the encoding become U+FFFD.
    std::string decode(std::string_view raw) const;

    // UTF-8 to file bytes. A character the code page cannot hold is written as \U+XXXX, and so are
    // a backslash that would otherwise start an escape and the ASCII characters in `escaped` (line
    // breaks, which an ASCII file cannot hold in a value): decode(encode(text)) is text.
    std::string encode(std::string_view utf8, std::string_view escaped = {}) const;

private:
    struct Converters;
    std::string codePage_;
    std::shared_ptr<Converters> converters_;
};

// True when `version` ($ACADVER, "AC1009" ... "AC1032") stores its texts as UTF-8.
bool versionIsUtf8(std::string_view acadVersion);

// Length of the well-formed UTF-8 sequence that `text` starts with; 0 when it starts with none
// (stray or missing continuation bytes, overlong forms, surrogates, past U+10FFFF, empty text).
std::size_t validUtf8Length(std::string_view text);

bool isValidUtf8(std::string_view text);

using veltarn::appendUtf8;

}  // namespace veltarn::dxf
