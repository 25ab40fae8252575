// The tags of a byte range of a TagFile, read one at a time: what keeps a drawing small once the
// file's tag vector is released (TagFile::releaseTags), or was never made. In a file that was read
// successfully, a range from one tag boundary to another gives the tags the scanner found (its
// rules are the scanners' own). Over other bytes it is safe: bytes that do not read as a tag end
// the stream.
#pragma once

#include "cad/dxf/TagFile.h"

#include <cstddef>
#include <string_view>

namespace veltarn::dxf {

class TagStream {
public:
    TagStream() = default;
    // Tags in bytes [begin, end) of `file`; an ASCII file's byte-order mark at 0 is skipped.
    TagStream(const TagFile& file, std::size_t begin, std::size_t end);

    // Steps to the next tag; false at the end of the range.
    bool next();
    int code() const { return code_; }
    // The value's bytes as TagFile::raw gives them.
    std::string_view raw() const { return raw_; }
    // The value as TagFile::text gives it.
    std::string text() const { return file_->textOf(code_, raw_); }
    // One past the current tag's last byte (its line end included).
    std::size_t position() const { return at_; }

private:
    bool nextAscii();
    bool nextBinary();

    const TagFile* file_ = nullptr;
    std::size_t at_ = 0, end_ = 0;
    int code_ = 0;
    std::string_view raw_;
};

}  // namespace veltarn::dxf
