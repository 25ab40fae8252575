// Writes DXF tags in one form, version and encoding: runs of unchanged tags byte for byte from
// the file they were read from, new or changed values from their UTF-8 text.
#pragma once

#include "cad/dxf/OutputSink.h"
#include "cad/dxf/TagFile.h"

#include <optional>

namespace veltarn::dxf {

struct WriteFormat {
    FileForm form = FileForm::Ascii;
    std::string version = "AC1032";  // $ACADVER; decides one- or two-byte codes in binary R12
    TextCodec codec;                 // UTF-8 unless a code page applies
    std::string lineEnd = "\r\n";    // ASCII only
    // Binary only: one-byte group codes or two-byte ones; unset means as the version has them
    // (one byte up to R12). Set from the file read, whose bytes are what counts.
    std::optional<bool> oneByteGroupCodes;

    // The format `file` was read in, so that a drawing is saved as it came.
    static WriteFormat of(const TagFile& file);
};

class TagWriter {
public:
    TagWriter(OutputSink& sink, WriteFormat format);

    // The binary sentinel, when the form is binary. Call once before the first tag.
    void begin();

    // Tags [first, last) of `file`: copied as bytes when the file has this writer's format,
    // otherwise converted tag by tag.
    void copy(const TagFile& file, std::size_t first, std::size_t last);
    // The same for the tags in bytes [begin, end) of `file` (a TagStream's range).
    void copyBytes(const TagFile& file, std::size_t begin, std::size_t end);

    // One tag from its value text as ASCII DXF writes it (numbers in decimal, binary chunks in
    // hexadecimal, texts in UTF-8). A value that does not fit its group code is an error. In
    // ASCII DXF a line break inside a text is written as \U+000D or \U+000A, in binary DXF a zero
    // byte as \U+0000: each reads back as the same character.
    void write(int code, std::string_view text);
    void writeReal(int code, double value);
    void writeInteger(int code, std::int64_t value);
    // Raw bytes, such as the trailer of a file.
    void writeBytes(std::string_view bytes);

    // The first error met, if any.
    Result<void> status() const;
    const WriteFormat& format() const { return format_; }

private:
    bool sameFormatAs(const TagFile& file) const;
    void writeCode(int code);
    void fail(std::string message);

    OutputSink& sink_;
    WriteFormat format_;
    bool shortCodes_;
    std::string scratch_;
    std::string error_;
};

// Ends a copy of `file` in its own format: the bytes it held after "0 EOF", or the "0 EOF" it
// lacked (after a line end when its last value had none; blank lines at its end are dropped).
// Works after TagFile::releaseTags() too.
void writeEnding(const TagFile& file, TagWriter& writer);

// Writes `file` as it was read, adding "0 EOF" when the file lacked it.
void writeUnchanged(const TagFile& file, TagWriter& writer);

// Saves `file` unchanged to `target` (atomically).
Result<void> saveUnchanged(const TagFile& file, const std::filesystem::path& target);

}  // namespace veltarn::dxf
