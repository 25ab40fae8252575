// The text of a new, empty 2018 drawing: header, classes, the standard tables with their default
// records, model and paper space, the root dictionary with its standard entries, two layouts.
#pragma once

#include <string>

namespace veltarn::db {

std::string newDrawingText();

}  // namespace veltarn::db
