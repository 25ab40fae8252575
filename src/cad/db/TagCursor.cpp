#include "cad/db/TagCursor.h"

#include "cad/db/TagList.h"

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
    return TagList::decodeTag(blob_, at_, code_, value_);
}

}  // namespace veltarn::db
