#include "cad/dxf/TagStream.h"

#include <cstring>

namespace veltarn::dxf {

TagStream::TagStream(const TagFile& file, std::size_t begin, std::size_t end) : file_(&file), at_(begin), end_(end) {
    std::string_view bytes = file.bytes();
    if (end_ > bytes.size()) end_ = bytes.size();
    if (file.form() == FileForm::Binary && at_ < kBinarySentinel.size()) at_ = kBinarySentinel.size();
    if (file.form() == FileForm::Ascii && at_ == 0 && bytes.substr(0, 3) == "\xEF\xBB\xBF") at_ = 3;
}

bool TagStream::next() {
    if (!file_ || at_ >= end_) return false;
    bool ok = file_->form() == FileForm::Ascii ? nextAscii() : nextBinary();
    if (!ok) at_ = end_;
    return ok;
}

// A group-code line, then a value line; the scanner accepted both, so only the shape is read here.
bool TagStream::nextAscii() {
    const char* data = file_->bytes().data();
    const char* p = data + at_;
    const char* end = data + end_;
    while (p < end && (*p == ' ' || *p == '\t')) ++p;
    bool negative = p < end && *p == '-';
    if (negative) ++p;
    int value = 0, digits = 0;
    for (; p < end && *p >= '0' && *p <= '9' && digits < 6; ++p, ++digits) value = value * 10 + (*p - '0');
    while (p < end && (*p == ' ' || *p == '\t' || *p == '\r')) ++p;
    if (digits == 0 || p >= end || *p != '\n') return false;
    code_ = negative ? -value : value;
    const char* valueBegin = p + 1;
    const void* lineEnd = std::memchr(valueBegin, '\n', static_cast<std::size_t>(end - valueBegin));
    const char* valueEnd = lineEnd ? static_cast<const char*>(lineEnd) : end;
    std::size_t length = static_cast<std::size_t>(valueEnd - valueBegin);
    if (length > 0 && valueBegin[length - 1] == '\r') --length;
    raw_ = std::string_view(valueBegin, length);
    at_ = static_cast<std::size_t>(valueEnd - data) + (lineEnd ? 1 : 0);
    return true;
}

bool TagStream::nextBinary() {
    const auto* data = reinterpret_cast<const unsigned char*>(file_->bytes().data());
    std::size_t pos = at_;
    int code = 0;
    if (file_->oneByteGroupCodes()) {
        code = data[pos++];
        if (code == 255) {
            if (end_ - pos < 2) return false;
            code = static_cast<std::int16_t>(data[pos] | data[pos + 1] << 8);
            pos += 2;
        }
    } else {
        if (end_ - pos < 2) return false;
        code = static_cast<std::int16_t>(data[pos] | data[pos + 1] << 8);
        pos += 2;
    }
    std::size_t length = 0, after = 0;
    switch (valueKindOf(code)) {
        case ValueKind::String: {
            const void* nul = std::memchr(data + pos, 0, end_ - pos);
            if (!nul) return false;
            length = static_cast<std::size_t>(static_cast<const unsigned char*>(nul) - (data + pos));
            after = 1;
            break;
        }
        case ValueKind::Binary:
            if (pos >= end_) return false;
            length = data[pos++];
            break;
        case ValueKind::Real: case ValueKind::Int64: length = 8; break;
        case ValueKind::Int32: length = 4; break;
        case ValueKind::Int16: length = 2; break;
        case ValueKind::Bool: length = 1; break;
    }
    if (end_ - pos < length + after) return false;
    code_ = code;
    raw_ = std::string_view(reinterpret_cast<const char*>(data + pos), length);
    at_ = pos + length + after;
    return true;
}

}  // namespace veltarn::dxf
