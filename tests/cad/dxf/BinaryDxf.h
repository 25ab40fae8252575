// Binary DXF bytes built tag by tag: two-byte group codes, or one-byte ones as in R12.
#pragma once

#include "cad/dxf/TagFile.h"

#include <cstdint>
#include <cstring>
#include <string>

namespace veltarn::dxf::test {

class BinaryDxf {
public:
    explicit BinaryDxf(bool oneByteCodes = false) : oneByteCodes_(oneByteCodes), bytes_(kBinarySentinel) {}

    BinaryDxf& text(int code, std::string_view value) { return groupCode(code).append(value).append({"", 1}); }
    BinaryDxf& real(int code, double value) { return groupCode(code).number(value); }
    BinaryDxf& int16(int code, std::int16_t value) { return groupCode(code).number(value); }
    BinaryDxf& int32(int code, std::int32_t value) { return groupCode(code).number(value); }
    BinaryDxf& chunk(int code, std::string_view data) {
        return groupCode(code).append(std::string(1, static_cast<char>(data.size()))).append(data);
    }
    BinaryDxf& groupCode(int code) {
        if (oneByteCodes_ && code >= 0 && code < 255) return append(std::string(1, static_cast<char>(code)));
        if (oneByteCodes_) append("\xFF");  // a two-byte code follows
        return number(static_cast<std::int16_t>(code));
    }
    BinaryDxf& append(std::string_view raw) {
        bytes_.append(raw);
        return *this;
    }
    template <class T>
    BinaryDxf& number(T value) {
        char raw[sizeof value];
        std::memcpy(raw, &value, sizeof value);
        return append({raw, sizeof value});
    }
    const std::string& bytes() const { return bytes_; }

private:
    bool oneByteCodes_;
    std::string bytes_;
};

}  // namespace veltarn::dxf::test
