// The text of a new, empty 2018 drawing: header, classes, the standard tables with their default
// records, model and paper space, the root dictionary with its standard entries, two layouts.
#pragma once

#include "cad/db/TagList.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn::db {

std::string newDrawingText();

// The CLASSES entry a new drawing has for `dxfName` ("MULTILEADER", "SORTENTSTABLE"...), as its
// tags from "0 CLASS" on; nullopt for a name that is no class of a new drawing.
std::optional<TagList> standardClass(std::string_view dxfName);
// The names of those entries.
std::vector<std::string> standardClassNames();

}  // namespace veltarn::db
