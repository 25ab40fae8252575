#include "cad/dxf/TagFile.h"

#include "cad/dxf/NumberText.h"
#include "cad/dxf/TagScanners.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace veltarn::dxf {
namespace {

template <class T>
T readLittleEndian(const char* at) {
    T value;
    std::memcpy(&value, at, sizeof value);  // the platforms we build for are little-endian
    return value;
}

std::string describeTag(const TagFile& file, std::size_t i) {
    return std::to_string(file.code(i)) + " " + quoteForMessage(file.text(i));
}

}  // namespace

Result<TagFile> TagFile::load(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return makeError(path.string() + ": cannot open: " + std::strerror(errno));
    std::error_code ec;
    auto size = std::filesystem::file_size(path, ec);
    if (ec) return makeError(path.string() + ": cannot read: " + ec.message());
    if (size >= 0xFFFFFFF0u) return makeError(path.string() + ": the file is larger than 4 GiB, which DXF files here may not be");
    std::string bytes(static_cast<std::size_t>(size), '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    if (static_cast<std::uintmax_t>(in.gcount()) != size)
        return makeError(path.string() + ": cannot read: " + (in.bad() ? std::strerror(errno) : "the file changed while it was read"));
    return parse(std::move(bytes), path.string());
}

Result<TagFile> TagFile::parse(std::string bytes, std::string name) {
    TagFile file;
    file.name_ = std::move(name);
    if (bytes.size() >= 0xFFFFFFF0u) return makeError(file.name_ + ": the file is larger than 4 GiB, which DXF files here may not be");
    file.bytes_ = std::move(bytes);
    if (file.bytes_.empty()) return makeError(file.name_ + ": the file is empty, expected DXF tags");
    bool binary = file.bytes_.compare(0, kBinarySentinel.size(), kBinarySentinel) == 0;
    file.form_ = binary ? FileForm::Binary : FileForm::Ascii;
    if (auto scanned = binary ? BinaryTagScanner::scan(file) : AsciiTagScanner::scan(file); !scanned) return scanned.error();
    if (file.tags_.empty()) return makeError(file.name_ + ": expected DXF tags, found none");
    if (auto checked = file.checkSections(); !checked) return checked.error();
    if (auto facts = file.readHeaderFacts(); !facts) return facts.error();
    file.tagsEnd_ = file.tagEnd(file.tags_.size() - 1);
    return file;
}

Result<void> TagFile::checkSections() {
    const std::size_t n = tags_.size();
    std::size_t i = 0;
    bool afterSection = false;
    while (i < n) {
        if (is(i, code::kStructure, "EOF")) return {};
        // Writers put their name in a comment before the first section. Some (dxflib) end the header
        // early, write more variables and a second ENDSEC: stray tags between sections are kept.
        bool stray = afterSection && (code(i) != code::kStructure || is(i, code::kStructure, "ENDSEC"));
        if (code(i) == code::kComment || stray) {
            ++i;
            continue;
        }
        if (!is(i, code::kStructure, "SECTION"))
            return makeError(where(i) + ": expected 0 SECTION or 0 EOF, found " + describeTag(*this, i));
        if (i + 1 >= n)
            return makeError(whereEnd() + ": expected the section name (group code 2) after 0 SECTION, found the end of the file");
        if (code(i + 1) != code::kName)
            return makeError(where(i + 1) + ": expected the section name (group code 2) after 0 SECTION, found " +
                             describeTag(*this, i + 1));
        std::size_t j = i + 2;
        for (; j < n; ++j) {
            if (code(j) != code::kStructure) continue;
            if (is(j, code::kStructure, "ENDSEC")) break;
            if (is(j, code::kStructure, "SECTION") || is(j, code::kStructure, "EOF")) break;
        }
        if (j >= n || !is(j, code::kStructure, "ENDSEC")) {
            std::string expected = "expected 0 ENDSEC closing section " + quoteForMessage(text(i + 1)) + " (opened at " +
                                   (form_ == FileForm::Binary ? "@" + std::to_string(tagStart(i)) : "line " + std::to_string(lineOf(i))) +
                                   "), found ";
            if (j < n) return makeError(where(j) + ": " + expected + describeTag(*this, j));
            return makeError(whereEnd() + ": " + expected + "the end of the file");
        }
        i = j + 1;
        afterSection = true;
    }
    return {};
}

Result<void> TagFile::readHeaderFacts() {
    std::string codePage;
    std::size_t first = 0;
    while (first < size() && code(first) == code::kComment) ++first;
    if (first + 1 < size() && is(first, code::kStructure, "SECTION") && is(first + 1, code::kName, "HEADER")) {
        for (std::size_t i = first + 2; i + 1 < size() && code(i) != code::kStructure; ++i) {
            // Only a text value names a version or code page: the bytes of a binary number do not,
            // and would name another one once the drawing is written as ASCII.
            if (code(i) != code::kVariableName || valueKindOf(code(i + 1)) != ValueKind::String) continue;
            if (is(i, code::kVariableName, "$ACADVER"))
                version_ = std::string(trimSpaces(raw(i + 1)));
            else if (is(i, code::kVariableName, "$DWGCODEPAGE"))
                codePage = std::string(trimSpaces(raw(i + 1)));
        }
    }
    codec_ = TextCodec::forFile(version_, codePage);
    return {};
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

std::optional<std::int64_t> TagFile::integer(std::size_t i) const {
    std::string_view value = raw(i);
    if (form_ == FileForm::Binary) {
        switch (valueKindOf(tags_[i].code)) {
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

std::string TagFile::textOf(int tagCode, std::string_view value) const {
    if (form_ == FileForm::Binary) {
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
    return codec_.needsDecoding(value) ? codec_.decode(value) : std::string(value);
}

void TagFile::releaseTags() { std::vector<Tag>().swap(tags_); }

}  // namespace veltarn::dxf
