// Draw order: the SORTENTSTABLE of a block record, kept in the record's extension dictionary under
// ACAD_SORTENTS. It gives some entities a sort handle to be drawn by instead of their own handle;
// entities are drawn in ascending sort handle, the last on top.
#pragma once

#include "cad/db/Database.h"

#include <vector>

namespace veltarn::db {

// The block's draw-order table; kNoHandle when it has none (and in R12 drawings).
Handle findSortentsTable(const Database& db, Handle block);
// The table, created (with the record's extension dictionary when that is missing too) on request.
// Creating one converts an R12 drawing to 2018 first. Fails for an unknown block.
Result<Handle> sortentsTable(Database& db, Handle block, bool create);

// The block's entities in the order they are drawn, bottom first; equal sort handles keep file order.
std::vector<Handle> drawOrder(const Database& db, Handle block);

// Draws `entities` in the order given among themselves (the first at the bottom, the last on top)
// while every other entity keeps its place: the listed entities trade the sort handles they hold.
// Fails without a change when an entity is not in the block, is listed twice or the table cannot be
// made.
Result<void> setRelativeDrawOrder(Database& db, Handle block, const std::vector<Handle>& entities);

}  // namespace veltarn::db
