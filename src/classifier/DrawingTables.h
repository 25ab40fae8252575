// A classifier's table against the table definitions a drawing has registered ("ODEMUDATA").
#pragma once

#include "classifier/TableDef.h"
#include "data/ObjectDataRecord.h"
#include "host/Database.h"
#include "host/Documents.h"

namespace veltarn {

// The same field names (without regard to case) in the same order with the same types: what a
// drawing stores of a table, so records written for one fit the other.
bool agreesWithDefinition(const TableDef& table, const ObjectDataRecord& definition);

// Whether `table` agrees with the drawing's definition of the same name; true when the drawing
// has none. `documents` locks the drawing's document when the store has to create "ODEMUDATA".
bool matchesDrawingTable(host::Database& db, const TableDef& table, host::Documents* documents = nullptr);

}  // namespace veltarn
