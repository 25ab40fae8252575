// The two scanners that fill a TagFile: one per form of DXF. Internal to the tag layer.
#pragma once

#include "cad/dxf/TagFile.h"

namespace veltarn::dxf {

// Splits ASCII DXF into tags: a group-code line, then a value line, to "0 EOF" or the end.
class AsciiTagScanner {
public:
    static Result<void> scan(TagFile& file);
};

// Splits binary DXF into tags by the value kind of each group code.
class BinaryTagScanner {
public:
    static Result<void> scan(TagFile& file);
};

// A value quoted for a message: at most 40 characters, control bytes shown as \xNN.
std::string quoteForMessage(std::string_view text);

}  // namespace veltarn::dxf
