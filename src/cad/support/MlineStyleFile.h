// Multiline style files (".mln"): each style is "MLSTYLE" followed by group-code and value lines,
// as the MLINESTYLE object writes them in DXF (2 name, 70 flags, 3 description, 62 fill colour,
// 51 and 52 start and end angles, 71 element count, then per element 49 offset, 62 colour and
// 6 linetype), ended by a code 0 line pair or by the next "MLSTYLE".
#pragma once

#include "cad/support/SupportText.h"

#include <string>
#include <vector>

namespace veltarn::support {

struct MlineStyleElement {
    double offset = 0;
    int color = 256;  // ByLayer
    std::string linetype = "BYLAYER";
};

struct MlineStyleDefinition {
    std::string name;
    std::string description;
    int flags = 0;
    int fillColor = 256;
    double startAngle = 90, endAngle = 90;  // degrees
    std::vector<MlineStyleElement> elements;
};

// Every style of the file in file order. Fails with "file:line: why" on a malformed code or value,
// a style without a name, or an element count that disagrees with the elements given.
Result<std::vector<MlineStyleDefinition>> parseMlineStyles(const SupportText& file);

}  // namespace veltarn::support
