// Multiline styles (MLINESTYLE objects of ACAD_MLINESTYLE) as the code that draws, writes and
// explodes multilines needs them: their elements and flags.
#pragma once

#include "cad/db/Database.h"

#include <optional>
#include <string>
#include <vector>

namespace veltarn::db {

struct MlineElement {
    double offset = 0;
    std::string color = "0";  // colour index text; 0 ByBlock (the multiline's own), 256 ByLayer
    std::string linetype = "BYBLOCK";
};

struct MlineStyleDefinition {
    Handle handle = kNoHandle;
    std::string name;
    int flags = 0;  // 1 fill, 2 miters, 16/32/64 start square/inner/round caps, 256/512/1024 end caps
    double startAngle = 90, endAngle = 90;  // of the end miters, degrees from the direction
    std::vector<MlineElement> elements;
};

// The MLINESTYLE object `style`; nullopt when it is not one.
std::optional<MlineStyleDefinition> readMlineStyle(const Database& db, Handle style);
// The style of an MLINE: its pointer (340), else its style name (2) in ACAD_MLINESTYLE.
std::optional<MlineStyleDefinition> mlineStyleOf(const Database& db, const TagList& mline);

}  // namespace veltarn::db
