#include "cad/dxf/TagWriter.h"

#include "cad/dxf/NumberText.h"
#include "cad/dxf/TagStream.h"

#include <cstring>
#include <limits>

namespace veltarn::dxf {
namespace {

template <class T>
void appendLittleEndian(std::string& out, T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.append(bytes, sizeof value);
}

}  // namespace

WriteFormat WriteFormat::of(const TagFile& file) {
    WriteFormat format;
    format.form = file.form();
    format.version = file.version();
    format.codec = file.codec();
    format.lineEnd = std::string(file.lineEnd());
    if (file.form() == FileForm::Binary) format.oneByteGroupCodes = file.oneByteGroupCodes();
    return format;
}

TagWriter::TagWriter(OutputSink& sink, WriteFormat format)
    : sink_(sink),
      format_(std::move(format)),
      shortCodes_(format_.oneByteGroupCodes.value_or(format_.version <= std::string_view("AC1009"))) {}

void TagWriter::begin() {
    if (format_.form == FileForm::Binary) sink_.write(kBinarySentinel);
}

bool TagWriter::sameFormatAs(const TagFile& file) const {
    return file.form() == format_.form && file.codec().codePage() == format_.codec.codePage() &&
           (file.form() == FileForm::Ascii || file.oneByteGroupCodes() == shortCodes_);
}

void TagWriter::copy(const TagFile& file, std::size_t first, std::size_t last) {
    if (sameFormatAs(file)) {
        sink_.write(file.span(first, last));
        return;
    }
    for (std::size_t i = first; i < last; ++i) write(file.code(i), file.text(i));
}

void TagWriter::writeCode(int code) {
    scratch_.clear();
    if (format_.form == FileForm::Ascii) {
        char line[16];
        int length = std::snprintf(line, sizeof line, "%3d", code);
        scratch_.append(line, static_cast<std::size_t>(length));
        scratch_ += format_.lineEnd;
    } else if (shortCodes_ && code >= 0 && code < 255) {
        scratch_ += static_cast<char>(code);
    } else {
        if (shortCodes_) scratch_ += static_cast<char>(255);
        appendLittleEndian(scratch_, static_cast<std::int16_t>(code));
    }
}

void TagWriter::write(int code, std::string_view text) {
    writeCode(code);
    if (format_.form == FileForm::Ascii) {
        scratch_ += format_.codec.encode(text, "\r\n");
        scratch_ += format_.lineEnd;
        sink_.write(scratch_);
        return;
    }
    ValueKind kind = valueKindOf(code);
    auto badValue = [&] {
        fail("the value \"" + std::string(text) + "\" does not fit group code " + std::to_string(code));
    };
    switch (kind) {
        case ValueKind::String: {
            scratch_ += format_.codec.encode(text, std::string_view("\0", 1));  // a zero byte ends a text
            scratch_ += '\0';
            break;
        }
        case ValueKind::Real: {
            auto value = parseReal(text);
            if (!value) return badValue();
            appendLittleEndian(scratch_, *value);
            break;
        }
        case ValueKind::Binary: {
            auto bytes = fromHex(text);
            if (!bytes || bytes->size() > 255) return badValue();
            scratch_ += static_cast<char>(bytes->size());
            scratch_ += *bytes;
            break;
        }
        default: {
            auto value = parseInteger(text);
            if (!value) return badValue();
            if (kind == ValueKind::Int16) {
                if (*value < std::numeric_limits<std::int16_t>::min() || *value > std::numeric_limits<std::int16_t>::max()) return badValue();
                appendLittleEndian(scratch_, static_cast<std::int16_t>(*value));
            } else if (kind == ValueKind::Int32) {
                if (*value < std::numeric_limits<std::int32_t>::min() || *value > std::numeric_limits<std::int32_t>::max()) return badValue();
                appendLittleEndian(scratch_, static_cast<std::int32_t>(*value));
            } else if (kind == ValueKind::Int64) {
                appendLittleEndian(scratch_, *value);
            } else {
                if (*value < 0 || *value > 255) return badValue();
                scratch_ += static_cast<char>(*value);
            }
        }
    }
    sink_.write(scratch_);
}

void TagWriter::writeReal(int code, double value) { write(code, formatReal(value)); }

void TagWriter::writeInteger(int code, std::int64_t value) { write(code, std::to_string(value)); }

void TagWriter::writeBytes(std::string_view bytes) { sink_.write(bytes); }

void TagWriter::fail(std::string message) {
    if (error_.empty()) error_ = std::move(message);
}

Result<void> TagWriter::status() const {
    if (error_.empty()) return {};
    return makeError(error_);
}

void writeEnding(const TagFile& file, TagWriter& writer) {
    if (!file.missingEof()) {
        writer.writeBytes(file.trailer());
        return;
    }
    // The last value may end without a line end; blank lines after it were not read as tags.
    std::string_view copied = file.bytes().substr(0, file.bytes().size() - file.trailer().size());
    if (file.form() == FileForm::Ascii && !copied.empty() && copied.back() != '\n') writer.writeBytes(file.lineEnd());
    writer.write(code::kStructure, "EOF");
}

void writeUnchanged(const TagFile& file, TagWriter& writer) {
    writer.begin();
    writer.copy(file, 0, file.size());
    writeEnding(file, writer);
}

Result<void> saveUnchanged(const TagFile& file, const std::filesystem::path& target) {
    return saveAtomically(target, [&](OutputSink& sink) -> Result<void> {
        TagWriter writer(sink, WriteFormat::of(file));
        writeUnchanged(file, writer);
        return writer.status();
    });
}

void TagWriter::copyBytes(const TagFile& file, std::size_t begin, std::size_t end) {
    if (begin >= end) return;
    if (sameFormatAs(file)) {
        sink_.write(file.bytes().substr(begin, end - begin));
        return;
    }
    for (TagStream tags(file, begin, end); tags.next();) write(tags.code(), tags.text());
}

}  // namespace veltarn::dxf
