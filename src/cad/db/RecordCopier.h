// Copying named records from one drawing into another (resources brought in from a side drawing),
// with every reference they hold translated into the target: a layer brings its linetype, a block
// its entities and the blocks, layers and styles they use, a dimension style its text style and
// arrow blocks, a layout its paper space.
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::db {

enum class RecordKind : std::uint8_t { Block, DimensionStyle, Layer, Layout, Linetype, MleaderStyle, MlineStyle, TextStyle };

// The names of a kind's records in a drawing, in drawing order: blocks without anonymous and
// layout blocks, layouts without "Model", text styles without shape-file entries.
std::vector<std::string> recordNamesOf(const Database& db, RecordKind kind);

// Copies the records named `names` (any case) from `source` into `target` and returns the names
// copied. A record the target already has (same name, any case) is kept as it is and not copied;
// references to it from copied records lead to the target's own. Names the source lacks are
// skipped. Copies get new handles; the extension dictionaries of copied records and entities are
// copied with them (their xrecords' pointers translated). On failure nothing is
// left half copied: the target is as it was. Works inside the target's open command (the copy
// joins it) or opens one of its own.
Result<std::vector<std::string>> copyRecords(Database& target, const Database& source, RecordKind kind,
                                             const std::vector<std::string>& names);

}  // namespace veltarn::db
