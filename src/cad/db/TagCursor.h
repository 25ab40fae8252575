// Reads an object's tags one at a time without copying them: the read paths that run once per
// object (owner links, dictionaries, xrecords) would otherwise decode a whole TagList each time.
#pragma once

#include "cad/dxf/TagStream.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace veltarn::db {

class TagCursor {
public:
    TagCursor() = default;

    // Steps to the next tag; false after the last one (and for an object that could not be read).
    bool next();
    int code() const { return code_; }
    // The value as UTF-8 text, as TagList holds it; valid until the next step.
    std::string_view value() const { return value_; }

private:
    friend class Database;
    // The tags in bytes [begin, end) of a file.
    void overFile(const dxf::TagFile& file, std::uint32_t begin, std::uint32_t end);
    // An owned object's blob (TagList::encode's form).
    void overBlob(std::string_view blob);

    const dxf::TagFile* file_ = nullptr;
    dxf::TagStream stream_;
    std::string_view blob_;
    std::size_t at_ = 0;  // in the blob
    int code_ = 0;
    std::string_view value_;
    std::string scratch_;  // a value that had to be decoded
};

}  // namespace veltarn::db
