#include "cad/db/TagCursor.h"

#include <cstring>

namespace veltarn::db {

void TagCursor::overFile(const dxf::TagFile& file, std::uint32_t begin, std::uint32_t end) {
    file_ = &file;
    stream_ = dxf::TagStream(file, begin, end);
    blob_ = {};
}

void TagCursor::overBlob(std::string_view blob) {
    file_ = nullptr;
    blob_ = blob;
    at_ = 0;
    end_ = blob.size();
}

bool TagCursor::next() {
    if (file_) {
        if (!stream_.next()) return false;
        code_ = stream_.code();
        std::string_view raw = stream_.raw();
        // Plain text values are what text() would give; binary numbers and code-page text are not.
        bool plain = (file_->form() == dxf::FileForm::Ascii || dxf::valueKindOf(code_) == dxf::ValueKind::String) &&
                     !file_->codec().needsDecoding(raw);
        if (plain) {
            value_ = raw;
        } else {
            scratch_ = file_->textOf(code_, raw);
            value_ = scratch_;
        }
        return true;
    }
    if (at_ + 4 > end_) return false;
    std::int16_t code;
    std::uint16_t shortLength;
    std::memcpy(&code, blob_.data() + at_, 2);
    std::memcpy(&shortLength, blob_.data() + at_ + 2, 2);
    at_ += 4;
    std::size_t length = shortLength;
    if (shortLength == 0xFFFF) {
        std::uint32_t longLength;
        std::memcpy(&longLength, blob_.data() + at_, 4);
        length = longLength;
        at_ += 4;
    }
    code_ = code;
    value_ = blob_.substr(at_, length);
    at_ += length;
    return true;
}

}  // namespace veltarn::db
