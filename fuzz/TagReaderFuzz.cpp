// Fuzz target for the DXF tag reader. Besides crashes and hangs it checks the promises the
// drawing database builds on: a sink is handed the tags the scanner found, each with the bytes it
// covers (or gets the same error), a file that loads is written back byte for byte, a TagStream
// over it reads the tags the scanner found, every value decodes to valid UTF-8, and tags rewritten
// one by one (in the file's own form, or in the other form) read back as the same tags.
#include "cad/dxf/NumberText.h"
#include "cad/dxf/TagFile.h"
#include "cad/dxf/TagStream.h"
#include "cad/dxf/TagWriter.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace veltarn::dxf;

namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

// True when the tag's value is text in the file (every value of an ASCII file).
bool isStringKind(const TagFile& file, std::size_t i) {
    return file.form() == FileForm::Ascii || valueKindOf(file.code(i)) == ValueKind::String;
}

// True when the tags that the reader's structure depends on (section and table markers, header
// variables and their values) read the same raw and decoded, and hold no line breaks. Otherwise
// a rewrite resolves an escape such as "\U+0045OF", or writes a CR that the reader trims as
// "\U+000D", and the rewritten file may legitimately have another structure.
bool structureIsPlain(const TagFile& file) {
    for (std::size_t i = 0; i < file.size(); ++i) {
        int code = file.code(i);
        bool structural = code == code::kStructure || code == code::kName || code == code::kVariableName ||
                          (i > 0 && file.code(i - 1) == code::kVariableName);
        if (!structural || !isStringKind(file, i)) continue;
        if (file.text(i) != file.raw(i) || file.raw(i).find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
            return false;
    }
    return true;
}

// Writes every tag of `file` through TagWriter::write, decoding and encoding each value.
std::string rewrite(const TagFile& file, const WriteFormat& format, bool& ok) {
    StringSink sink;
    TagWriter writer(sink, format);
    writer.begin();
    for (std::size_t i = 0; i < file.size(); ++i) writer.write(file.code(i), file.text(i));
    ok = writer.status().ok();
    return sink.take();
}

struct CollectingSink : TagSink {
    std::vector<ScannedTag> tags;
    void take(const TagFile&, std::span<const ScannedTag> window) override { tags.insert(tags.end(), window.begin(), window.end()); }
};

// The same bytes read through a sink: the same verdict, and the scanner's tags without gaps.
void checkSink(const std::string& input, const Result<TagFile>& file) {
    CollectingSink sink;
    auto streamed = TagFile::parse(input, "fuzz.dxf", sink);
    require(streamed.ok() == file.ok(), "a sink changes whether a file reads");
    if (!file) {
        require(streamed.message() == file.message(), "a sink changes the error");
        return;
    }
    require(streamed->size() == 0 && streamed->trailer() == file->trailer(), "a sink's file holds tags or another trailer");
    require(sink.tags.size() == file->size(), "a sink takes another number of tags");
    std::size_t start = file->form() == FileForm::Binary ? kBinarySentinel.size() : 0;
    for (std::size_t i = 0; i < sink.tags.size(); ++i) {
        const ScannedTag& tag = sink.tags[i];
        require(tag.code == file->code(i) && input.compare(tag.value, tag.length, file->raw(i)) == 0, "a sink takes another tag");
        require(tag.start == start && std::string_view(input).substr(tag.start, tag.end - tag.start) == file->span(i, i + 1),
                "a sink's tag covers other bytes");
        start = tag.end;
    }
}

bool sameNumber(std::optional<double> a, std::optional<double> b) {
    if (!a || !b) return a.has_value() == b.has_value();
    return *a == *b || (std::isnan(*a) && std::isnan(*b));
}

void checkRewrite(const TagFile& file, WriteFormat format, bool sameForm) {
    bool written = false;
    std::string bytes = rewrite(file, format, written);
    if (!written) {
        // Only a value that cannot be stored in binary form may fail: never a rewrite in the same form.
        require(!sameForm, "a rewrite in the file's own form failed");
        return;
    }
    auto again = TagFile::parse(std::move(bytes), "rewritten.dxf");
    require(again.ok(), "a rewritten file does not load");
    require(again->size() == file.size(), "a rewritten file has another number of tags");
    require(again->codec().codePage() == file.codec().codePage(), "a rewritten file has another code page");
    for (std::size_t i = 0; i < file.size(); ++i) {
        require(again->code(i) == file.code(i), "a rewritten tag has another group code");
        // Across forms a number keeps its value, not its text ("1.50" becomes 1.5).
        ValueKind kind = valueKindOf(file.code(i));
        if (sameForm || kind == ValueKind::String)
            require(again->text(i) == file.text(i), "a rewritten tag has another value");
        else if (kind == ValueKind::Binary)
            require(fromHex(again->text(i)) == fromHex(file.text(i)), "a rewritten binary chunk has other bytes");
        else if (kind == ValueKind::Real)
            require(sameNumber(again->real(i), file.real(i)), "a rewritten real has another value");
        else
            require(again->integer(i) == file.integer(i), "a rewritten integer has another value");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    auto file = TagFile::parse(input, "fuzz.dxf");
    checkSink(input, file);
    if (!file) {
        require(!file.message().empty(), "an error without a message");
        return 0;
    }

    TagStream stream(*file, 0, input.size() - file->trailer().size());
    for (std::size_t i = 0; i < file->size(); ++i) {
        require(stream.next(), "a tag stream ends before the scanner's last tag");
        require(stream.code() == file->code(i) && stream.raw() == file->raw(i), "a tag stream reads another tag");
    }
    require(!stream.next(), "a tag stream reads past the scanner's last tag");

    bool hasComments = false;
    for (std::size_t i = 0; i < file->size(); ++i) {
        require(isValidUtf8(file->text(i)), "a value decodes to invalid UTF-8");
        (void)file->real(i);
        (void)file->integer(i);
        hasComments = hasComments || file->code(i) == code::kComment;
    }
    (void)file->where(file->size() - 1);

    StringSink unchanged;
    TagWriter writer(unchanged, WriteFormat::of(*file));
    writeUnchanged(*file, writer);
    require(writer.status().ok(), "an unchanged write failed");
    if (!file->missingEof()) {
        require(unchanged.text() == input, "an unchanged write differs from the file");
    } else {
        auto completed = TagFile::parse(unchanged.take(), "completed.dxf");
        require(completed.ok() && completed->size() == file->size() + 1 && !completed->missingEof(),
                "a file completed with 0 EOF does not load as one tag more");
    }

    if (!structureIsPlain(*file)) return 0;
    checkRewrite(*file, WriteFormat::of(*file), true);
    // Binary files hold no comments in practice, and a leading one hides the width of group codes.
    if (!hasComments) {
        WriteFormat other = WriteFormat::of(*file);
        other.form = file->form() == FileForm::Ascii ? FileForm::Binary : FileForm::Ascii;
        other.oneByteGroupCodes.reset();
        checkRewrite(*file, other, false);
    }
    return 0;
}
