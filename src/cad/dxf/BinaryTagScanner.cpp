#include "cad/dxf/TagScanners.h"

#include "cad/dxf/NumberText.h"

#include <cstring>

namespace veltarn::dxf {
namespace {

std::size_t fixedWidthOf(ValueKind kind) {
    switch (kind) {
        case ValueKind::Real: return 8;
        case ValueKind::Int16: return 2;
        case ValueKind::Int32: return 4;
        case ValueKind::Int64: return 8;
        case ValueKind::Bool: return 1;
        default: return 0;
    }
}

// Walks the tags of a binary file, calling onTag(tag) for each, to "0 EOF" or the end. Sets
// `missingEof` when the file ended without it.
template <class OnTag>
Result<void> walkTags(const std::string& bytes, bool shortCodes, const std::string& name, bool& missingEof, OnTag onTag) {
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t size = bytes.size();
    std::size_t pos = kBinarySentinel.size();

    auto fail = [&](std::size_t at, const std::string& what) {
        return makeError(name + ":@" + std::to_string(at) + ": " + what);
    };

    while (pos < size) {
        const std::size_t tagPos = pos;
        int code = 0;
        if (shortCodes) {
            code = data[pos++];
            if (code == 255) {
                if (size - pos < 2) return fail(tagPos, "expected a two-byte group code after 255, found the end of the file");
                code = static_cast<std::int16_t>(data[pos] | data[pos + 1] << 8);
                pos += 2;
            }
        } else {
            if (size - pos < 2) return fail(tagPos, "expected a two-byte group code, found the end of the file");
            code = static_cast<std::int16_t>(data[pos] | data[pos + 1] << 8);
            pos += 2;
        }

        ValueKind kind = valueKindOf(code);
        std::size_t valuePos = pos, length = 0;
        if (kind == ValueKind::String) {
            const void* nul = std::memchr(data + pos, 0, size - pos);
            if (!nul)
                return fail(valuePos, "expected a zero byte ending the text of group code " + std::to_string(code) +
                                          ", found the end of the file");
            length = static_cast<std::size_t>(static_cast<const unsigned char*>(nul) - (data + pos));
            pos += length + 1;
        } else if (kind == ValueKind::Binary) {
            if (pos >= size)
                return fail(pos, "expected the length of the binary chunk of group code " + std::to_string(code) +
                                     ", found the end of the file");
            length = data[pos];
            valuePos = ++pos;
            if (size - pos < length)
                return fail(valuePos, "expected " + std::to_string(length) + " bytes of binary data for group code " +
                                          std::to_string(code) + ", found " + std::to_string(size - pos));
            pos += length;
        } else {
            length = fixedWidthOf(kind);
            if (size - pos < length)
                return fail(valuePos, "expected " + std::to_string(length) + " bytes for the value of group code " +
                                          std::to_string(code) + ", found " + std::to_string(size - pos));
            pos += length;
        }
        onTag(ScannedTag{static_cast<std::uint32_t>(tagPos), static_cast<std::uint32_t>(valuePos), static_cast<std::uint32_t>(length),
                         static_cast<std::uint32_t>(pos), static_cast<std::int16_t>(code)});
        if (code == 0 && trimSpaces(std::string_view(bytes.data() + valuePos, length)) == "EOF") return {};
    }
    missingEof = true;
    return {};
}

}  // namespace

bool BinaryTagScanner::usesOneByteCodes(std::string_view bytes) {
    // "0 SECTION" opens every file: a zero byte then 'S' means one-byte codes (R12), two zero
    // bytes mean two-byte codes.
    const std::size_t start = kBinarySentinel.size();
    return start + 1 < bytes.size() && bytes[start] == 0 && bytes[start + 1] != 0;
}

std::size_t BinaryTagScanner::count(const TagFile& file) {
    // Tags can be as short as two bytes, so no estimate from the size bounds a tag vector well.
    std::size_t count = 0;
    bool missingEof = false;
    auto counted = walkTags(file.bytes_, file.shortCodes_, file.name_, missingEof, [&](const ScannedTag&) { ++count; });
    return counted ? count : 0;
}

Result<void> BinaryTagScanner::scan(TagFile& file, TagWindow& out) {
    return walkTags(file.bytes_, file.shortCodes_, file.name_, file.missingEof_, [&](const ScannedTag& tag) { out.push(tag); });
}

}  // namespace veltarn::dxf
