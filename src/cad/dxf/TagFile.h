// One DXF file in memory: its bytes in one buffer and its tags as slices of it. Nothing is copied
// or converted while reading; values are decoded when asked for, so loading runs near disk speed
// and an unchanged tag can be written back byte for byte.
#pragma once

#include "cad/dxf/GroupCode.h"
#include "cad/dxf/Result.h"
#include "cad/dxf/TextCodec.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn::dxf {

enum class FileForm : std::uint8_t { Ascii, Binary };

// The first bytes of every binary DXF file.
inline constexpr std::string_view kBinarySentinel{"AutoCAD Binary DXF\r\n\x1a\0", 22};

// A tag as a slice of the file buffer: 6 bytes, so that a drawing of millions of tags stays small.
// The value's length is not stored: it is measured again from the bytes (the line end, the zero
// byte of a binary text, the width of a binary number) when the value is read.
struct Tag {
    Tag(std::uint32_t valueOffset, std::int16_t groupCode)
        : offsetLow(static_cast<std::uint16_t>(valueOffset)), offsetHigh(static_cast<std::uint16_t>(valueOffset >> 16)), code(groupCode) {}
    std::uint32_t offset() const { return std::uint32_t{offsetHigh} << 16 | offsetLow; }  // first byte of the value

    std::uint16_t offsetLow, offsetHigh;  // split so that the struct needs no 4-byte alignment
    std::int16_t code;
};
static_assert(sizeof(Tag) == 6);

// A tag as the scanner reads it, with the bytes it covers: what a reader that keeps no tag vector
// is handed (see TagSink).
struct ScannedTag {
    std::uint32_t start;   // first byte of the group code (the first tag: of the file)
    std::uint32_t value;   // first byte of the value
    std::uint32_t length;  // bytes of the value, as TagFile::raw gives them
    std::uint32_t end;     // one past the value and its line end (binary: its zero byte)
    std::int16_t code;
};

class TagFile;

// Takes the tags of a file while it is scanned, in file order, a few thousand at a time: a reader
// that builds its own index needs no vector of every tag (six bytes a tag: near half the size of
// a file again).
class TagSink {
public:
    // `file` has its bytes, form, version and codec already; the views stay valid while it lives.
    // Its address is not the one the loaded file will have: keep no pointer to it.
    virtual void take(const TagFile& file, std::span<const ScannedTag> tags) = 0;

protected:
    ~TagSink() = default;
};

class TagFile {
public:
    // Reads and checks a file. Fails with "<name>:<line>: <what was expected>" (a byte offset,
    // "@<offset>", for binary files) on anything that is not a well-formed DXF tag stream.
    static Result<TagFile> load(const std::filesystem::path& path);
    // The same for bytes already in memory; `name` is used in messages.
    static Result<TagFile> parse(std::string bytes, std::string name);
    // The same, handing each tag to `sink` as it is read instead of keeping it: the file holds no
    // tags (size() is 0). The checks and messages are those above; when reading fails, the sink
    // may have taken the tags before the fault, or all of them (a section left open).
    static Result<TagFile> load(const std::filesystem::path& path, TagSink& sink);
    static Result<TagFile> parse(std::string bytes, std::string name, TagSink& sink);

    std::size_t size() const { return tags_.size(); }
    const std::vector<Tag>& tags() const { return tags_; }
    int code(std::size_t i) const { return tags_[i].code; }

    // The value's bytes as stored: an ASCII line without its line end, or binary value bytes.
    std::string_view raw(std::size_t i) const;
    // The value as UTF-8 text in the form ASCII DXF writes it: binary numbers formatted, binary
    // chunks in hexadecimal, code-page text decoded and escapes resolved.
    std::string text(std::size_t i) const;
    // True when the value, with surrounding spaces ignored, is `word` (structure tests).
    bool is(std::size_t i, int code, std::string_view word) const;
    std::optional<double> real(std::size_t i) const;
    std::optional<std::int64_t> integer(std::size_t i) const;

    FileForm form() const { return form_; }
    // $ACADVER of the header ("AC1009" when the header has none, as in minimal R12 files).
    const std::string& version() const { return version_; }
    const TextCodec& codec() const { return codec_; }
    // "\r\n" or "\n": what the file used, for tags written anew into it.
    std::string_view lineEnd() const { return crlf_ ? "\r\n" : "\n"; }
    // Binary files only: true when group codes take one byte (R12 and older; 255 announces a
    // two-byte code), false when they take two.
    bool oneByteGroupCodes() const { return shortCodes_; }
    // True when the file ended without "0 EOF".
    bool missingEof() const { return missingEof_; }
    const std::string& name() const { return name_; }
    std::string_view bytes() const { return bytes_; }

    // Where tag i starts, for messages: "name:line" (ASCII) or "name:@offset" (binary).
    std::string where(std::size_t i) const;
    // 1-based line of tag i's group code (ASCII files).
    std::size_t lineOf(std::size_t i) const;

    // The bytes of tags [first, last) exactly as the file holds them, line ends included.
    std::string_view span(std::size_t first, std::size_t last) const;
    // Bytes after the final tag (after "0 EOF": some writers pad files); written back unchanged.
    // Kept after releaseTags().
    std::string_view trailer() const;

    // text(i) and integer(i) for a tag given by its code and raw value (a TagStream's, a sink's).
    std::string textOf(int code, std::string_view raw) const;
    std::optional<std::int64_t> integerOf(int code, std::string_view raw) const;
    // Frees the tag vector once a reader has taken what it needs from it: the bytes, form, version
    // and codec stay; size() is 0 from then on, so tags are read with a TagStream.
    void releaseTags();

private:
    friend class AsciiTagScanner;
    friend class BinaryTagScanner;
    friend class SectionChecker;

    static Result<std::string> readBytes(const std::filesystem::path& path);
    // Scans and checks the bytes; each tag goes to `sink`, or to the tag vector when it is null.
    static Result<TagFile> read(std::string bytes, std::string name, TagSink* sink);

    std::size_t valueLength(const Tag& tag) const;
    std::string whereEnd() const;  // the last line (ASCII) or the size (binary), for messages
    std::size_t tagStart(std::size_t i) const;  // first byte of the group code (tag 0: of the file)
    std::size_t tagEnd(std::size_t i) const;    // one past the value and its line end
    void readHeaderFacts();

    std::string name_;
    std::string bytes_;
    std::vector<Tag> tags_;
    std::string version_ = "AC1009";
    TextCodec codec_;
    FileForm form_ = FileForm::Ascii;
    bool crlf_ = false;
    bool shortCodes_ = false;  // binary R12: one-byte group codes
    bool missingEof_ = false;
    std::size_t tagsEnd_ = 0;  // one past the final tag
};

}  // namespace veltarn::dxf
