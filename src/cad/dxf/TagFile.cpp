#include "cad/dxf/TagFile.h"

#include "cad/dxf/NumberText.h"
#include "cad/dxf/SectionChecker.h"
#include "cad/dxf/TagScanners.h"
#include "cad/dxf/TagStream.h"
#include "base/RegularFile.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace veltarn::dxf {
namespace {

template <class T>
T readLittleEndian(const char* at) {
    T value;
    std::memcpy(&value, at, sizeof value);  // the platforms we build for are little-endian
    return value;
}

}  // namespace

Result<std::string> TagFile::readBytes(const std::filesystem::path& path) {
    FileBytes file = readRegularFile(path.string(), kMaxDrawingBytes);
    if (!file.ok()) return makeError(std::move(file.error));
    return std::move(file.bytes);
}

Result<TagFile> TagFile::load(const std::filesystem::path& path) {
    auto bytes = readBytes(path);
    if (!bytes) return bytes.error();
    return read(std::move(bytes).value(), path.string(), nullptr);
}

Result<TagFile> TagFile::load(const std::filesystem::path& path, TagSink& sink) {
    auto bytes = readBytes(path);
    if (!bytes) return bytes.error();
    return read(std::move(bytes).value(), path.string(), &sink);
}

Result<TagFile> TagFile::parse(std::string bytes, std::string name) { return read(std::move(bytes), std::move(name), nullptr); }

Result<TagFile> TagFile::parse(std::string bytes, std::string name, TagSink& sink) {
    return read(std::move(bytes), std::move(name), &sink);
}

Result<TagFile> TagFile::read(std::string bytes, std::string name, TagSink* sink) {
    TagFile file;
    file.name_ = std::move(name);
    if (bytes.size() >= 0xFFFFFFF0u) return makeError(file.name_ + ": the file is larger than 4 GiB, which DXF files here may not be");
    file.bytes_ = std::move(bytes);
    if (file.bytes_.empty()) return makeError(file.name_ + ": the file is empty, expected DXF tags");
    const bool binary = file.bytes_.compare(0, kBinarySentinel.size(), kBinarySentinel) == 0;
    file.form_ = binary ? FileForm::Binary : FileForm::Ascii;
    file.shortCodes_ = binary && BinaryTagScanner::usesOneByteCodes(file.bytes_);
    // The codec first, so that a sink reads every text as it will be read later.
    file.readHeaderFacts();

    // The tag vector is sized once: no growth, no copies of millions of tags.
    if (!sink) file.tags_.reserve(binary ? BinaryTagScanner::count(file) : AsciiTagScanner::capacityFor(file.bytes_));
    SectionChecker sections(file);
    std::size_t tags = 0;
    TagWindow window([&](std::span<const ScannedTag> scanned) {
        sections.take(scanned);
        if (sink) {
            sink->take(file, scanned);
        } else {
            for (const ScannedTag& tag : scanned) file.tags_.emplace_back(tag.value, tag.code);
        }
        tags += scanned.size();
        file.tagsEnd_ = scanned.back().end;
    });
    if (auto scanned = binary ? BinaryTagScanner::scan(file, window) : AsciiTagScanner::scan(file, window); !scanned) {
        window.flush();  // a sink gets every whole tag before the fault: RECOVER keeps them
        return scanned.error();
    }
    window.flush();
    if (tags == 0) return makeError(file.name_ + ": expected DXF tags, found none");
    if (auto checked = sections.finish(); !checked) return checked.error();
    return file;
}

// $ACADVER and $DWGCODEPAGE, from a header that is the first section (after comments). Read with a
// TagStream before the file is scanned: bytes that turn out not to be DXF fail the scan anyway.
void TagFile::readHeaderFacts() {
    TagStream tags(*this, 0, bytes_.size());
    auto isTag = [&](int wanted, std::string_view word) { return tags.code() == wanted && trimSpaces(tags.raw()) == word; };
    bool more = tags.next();
    while (more && tags.code() == code::kComment) more = tags.next();
    std::string codePage;
    if (more && isTag(code::kStructure, "SECTION") && tags.next() && isTag(code::kName, "HEADER") && tags.next()) {
        // Each tag and the one after it, to the first tag of code 0.
        int previousCode = tags.code();
        std::string_view previous = tags.raw();
        while (previousCode != code::kStructure && tags.next()) {
            // Only a text value names a version or code page: the bytes of a binary number do not,
            // and would name another one once the drawing is written as ASCII.
            if (previousCode == code::kVariableName && valueKindOf(tags.code()) == ValueKind::String) {
                if (trimSpaces(previous) == "$ACADVER")
                    version_ = std::string(trimSpaces(tags.raw()));
                else if (trimSpaces(previous) == "$DWGCODEPAGE")
                    codePage = std::string(trimSpaces(tags.raw()));
            }
            previousCode = tags.code();
            previous = tags.raw();
        }
    }
    codec_ = TextCodec::forFile(version_, codePage);
}

std::size_t TagFile::valueLength(const Tag& tag) const {
    const std::size_t offset = tag.offset();
    if (form_ == FileForm::Ascii) {
        const char* begin = bytes_.data() + offset;
        const void* end = std::memchr(begin, '\n', bytes_.size() - offset);
        std::size_t length = end ? static_cast<std::size_t>(static_cast<const char*>(end) - begin) : bytes_.size() - offset;
        if (length > 0 && begin[length - 1] == '\r') --length;
        return length;
    }
    switch (valueKindOf(tag.code)) {
        case ValueKind::Real: case ValueKind::Int64: return 8;
        case ValueKind::Int32: return 4;
        case ValueKind::Int16: return 2;
        case ValueKind::Bool: return 1;
        case ValueKind::Binary: return static_cast<unsigned char>(bytes_[offset - 1]);  // its length byte
        case ValueKind::String: break;
    }
    return std::strlen(bytes_.data() + offset);  // texts end at their zero byte
}

std::string_view TagFile::raw(std::size_t i) const {
    const Tag& tag = tags_[i];
    return std::string_view(bytes_.data() + tag.offset(), valueLength(tag));
}

bool TagFile::is(std::size_t i, int wantedCode, std::string_view word) const {
    return tags_[i].code == wantedCode && trimSpaces(raw(i)) == word;
}

std::string TagFile::text(std::size_t i) const { return textOf(tags_[i].code, raw(i)); }

std::optional<double> TagFile::real(std::size_t i) const {
    std::string_view value = raw(i);
    if (form_ == FileForm::Binary) {
        switch (valueKindOf(tags_[i].code)) {
            case ValueKind::Real: return readLittleEndian<double>(value.data());
            case ValueKind::String: case ValueKind::Binary: return parseReal(value);
            default: {
                auto integral = integer(i);
                return integral ? std::optional<double>(static_cast<double>(*integral)) : std::nullopt;
            }
        }
    }
    return parseReal(value);
}

std::optional<std::int64_t> TagFile::integer(std::size_t i) const { return integerOf(tags_[i].code, raw(i)); }

std::optional<std::int64_t> TagFile::integerOf(int tagCode, std::string_view value) const {
    if (form_ == FileForm::Binary) {
        switch (valueKindOf(tagCode)) {
            case ValueKind::Int16: return readLittleEndian<std::int16_t>(value.data());
            case ValueKind::Int32: return readLittleEndian<std::int32_t>(value.data());
            case ValueKind::Int64: return readLittleEndian<std::int64_t>(value.data());
            case ValueKind::Bool: return static_cast<unsigned char>(value[0]);
            case ValueKind::Real: return std::nullopt;
            default: break;
        }
    }
    return parseInteger(value);
}

std::size_t TagFile::tagStart(std::size_t i) const {
    // Tags follow each other without gaps, so a tag starts where the one before it ends. Walking
    // back from the value instead would guess wrong for a short code written in the long form.
    if (i > 0) return tagEnd(i - 1);
    return form_ == FileForm::Binary ? kBinarySentinel.size() : 0;  // an ASCII file's mark is kept with its first tag
}

std::size_t TagFile::tagEnd(std::size_t i) const {
    const Tag& tag = tags_[i];
    std::size_t end = tag.offset() + valueLength(tag);
    if (form_ == FileForm::Binary) return end + (valueKindOf(tag.code) == ValueKind::String ? 1 : 0);
    if (end < bytes_.size() && bytes_[end] == '\r') ++end;
    if (end < bytes_.size() && bytes_[end] == '\n') ++end;
    return end;
}

std::string_view TagFile::span(std::size_t first, std::size_t last) const {
    assert(last <= tags_.size() && "a span past the last tag");
    if (first >= last) return {};
    std::size_t begin = tagStart(first), end = tagEnd(last - 1);
    return std::string_view(bytes_).substr(begin, end - begin);
}

std::string_view TagFile::trailer() const { return std::string_view(bytes_).substr(tagsEnd_); }

std::size_t TagFile::lineOf(std::size_t i) const {
    std::size_t start = tagStart(i);
    return 1 + static_cast<std::size_t>(std::count(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(start), '\n'));
}

std::string TagFile::whereEnd() const {
    if (form_ == FileForm::Binary) return name_ + ":@" + std::to_string(bytes_.size());
    std::size_t lines = static_cast<std::size_t>(std::count(bytes_.begin(), bytes_.end(), '\n'));
    return name_ + ":" + std::to_string(lines + (bytes_.empty() || bytes_.back() != '\n' ? 1 : 0));
}

std::string TagFile::where(std::size_t i) const {
    if (form_ == FileForm::Binary) return name_ + ":@" + std::to_string(tagStart(i));
    return name_ + ":" + std::to_string(lineOf(i));
}

std::string TagFile::textOf(int tagCode, std::string_view value) const { return valueText(form_, codec_, tagCode, value); }

std::string valueText(FileForm form, const TextCodec& codec, int tagCode, std::string_view value) {
    if (form == FileForm::Binary) {
        switch (valueKindOf(tagCode)) {
            case ValueKind::String: break;
            case ValueKind::Real: return formatReal(readLittleEndian<double>(value.data()));
            case ValueKind::Int16: return std::to_string(readLittleEndian<std::int16_t>(value.data()));
            case ValueKind::Int32: return std::to_string(readLittleEndian<std::int32_t>(value.data()));
            case ValueKind::Int64: return std::to_string(readLittleEndian<std::int64_t>(value.data()));
            case ValueKind::Bool: return std::to_string(static_cast<unsigned char>(value[0]));
            case ValueKind::Binary: return toHex(value);
        }
    }
    return codec.needsDecoding(value) ? codec.decode(value) : std::string(value);
}

void TagFile::releaseTags() { std::vector<Tag>().swap(tags_); }

}  // namespace veltarn::dxf
