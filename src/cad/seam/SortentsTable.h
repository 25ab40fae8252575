// Draw order within a block: the block's SORTENTSTABLE, which maps entities to the handles they
// are drawn by (an entity not in the table is drawn by its own handle, lowest first).
#pragma once

#include <vector>

#include "cad/db/Database.h"

namespace veltarn::seam {

// The entities of `block` in draw order, bottom first.
std::vector<db::Handle> drawOrder(const db::Database& db, db::Handle block);

// Puts `entities` (of `block`) in draw order among themselves, the first at the bottom: they
// exchange the places they held, so other entities keep theirs. Creates the table (in the block
// record's extension dictionary, under "ACAD_SORTENTS") when there is none. False, with nothing
// changed, for an R12 drawing, an unknown block, or an entity of another block.
bool orderAmongThemselves(db::Database& db, db::Handle block, const std::vector<db::Handle>& entities);

}  // namespace veltarn::seam
