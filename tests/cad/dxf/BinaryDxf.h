// Binary DXF bytes built tag by tag, for tests of the binary reader and writer.
#pragma once

#include "cad/dxf/TagFile.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace veltarn::dxf::test {

// Binary DXF bytes, tag by tag, with two-byte group codes unless asked for one-byte ones (R12).
class BinaryDxf {
public:
    explicit BinaryDxf(bool oneByteCodes = false) : oneByteCodes_(oneByteCodes) { bytes_ = std::string(kBinarySentinel); }

    BinaryDxf& text(int code, std::string_view value) {
        return groupCode(code).append(value).append(std::string_view("\0", 1));
    }
    BinaryDxf& real(int code, double value) { return groupCode(code).number(value); }
    BinaryDxf& int16(int code, std::int16_t value) { return groupCode(code).number(value); }
    BinaryDxf& int32(int code, std::int32_t value) { return groupCode(code).number(value); }
    BinaryDxf& chunk(int code, std::string_view data) {
        groupCode(code).bytes_ += static_cast<char>(data.size());
        return append(data);
    }
    BinaryDxf& groupCode(int code) {
        if (oneByteCodes_ && code >= 0 && code < 255) {
            bytes_ += static_cast<char>(code);
            return *this;
        }
        if (oneByteCodes_) bytes_ += '\xFF';
        return number(static_cast<std::int16_t>(code));
    }
    BinaryDxf& append(std::string_view raw) {
        bytes_.append(raw);
        return *this;
    }
    const std::string& bytes() const { return bytes_; }

private:
    template <class T>
    BinaryDxf& number(T value) {
        char raw[sizeof value];
        std::memcpy(raw, &value, sizeof value);
        bytes_.append(raw, sizeof value);
        return *this;
    }

    bool oneByteCodes_;
    std::string bytes_;
};

}  // namespace veltarn::dxf::test
