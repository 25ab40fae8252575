// The two scanners that fill a TagFile: one per form of DXF. Internal to the tag layer.
#pragma once

#include "cad/dxf/TagFile.h"
#include "cad/dxf/TagWindow.h"

namespace veltarn::dxf {

// Splits ASCII DXF into tags: a group-code line, then a value line, to "0 EOF" or the end.
class AsciiTagScanner {
public:
    // Room enough for the tags of these bytes, from one fast count of their lines.
    static std::size_t capacityFor(std::string_view bytes);
    static Result<void> scan(TagFile& file, TagWindow& out);
};

// Splits binary DXF into tags by the value kind of each group code.
class BinaryTagScanner {
public:
    // True when the group codes of these bytes take one byte (R12), from how "0 SECTION" starts.
    static bool usesOneByteCodes(std::string_view bytes);
    // The number of tags, from a walk that only counts them; 0 when the file does not scan.
    static std::size_t count(const TagFile& file);
    static Result<void> scan(TagFile& file, TagWindow& out);
};

// A value quoted for a message: at most 40 characters, control bytes shown as \xNN.
std::string quoteForMessage(std::string_view text);

// A value as text in `codec`: TagFile::textOf with a codec other than the file's.
std::string valueText(FileForm form, const TextCodec& codec, int code, std::string_view raw);

}  // namespace veltarn::dxf
