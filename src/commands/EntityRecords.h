// The object-data records of one entity after another, read once each, for commands that test
// every gathered object.
#pragma once

#include <vector>

#include "data/ObjectData.h"
#include "data/ObjectDataRecord.h"
#include "host/Database.h"

namespace veltarn {

class EntityRecords {
public:
    explicit EntityRecords(host::Database& db);

    // Every record of `entity`, table by table in the extension dictionary's order; empty when it
    // has none or they cannot be read. Valid until the next call.
    const std::vector<ObjectDataRecord>& read(host::ObjectId entity);

    // Reads the drawing's tables again: to be called after a command defined new ones.
    void refreshTables();
    // The drawing's tables as last read, for other cursors of the same command.
    const TableDirectory& tables() const { return tables_; }

private:
    host::Database& db_;
    // Without tables the drawing holds no records (and the cursor would create "ODEMUDATA", while
    // reading must never change the drawing).
    TableDirectory tables_;
    ObjectData cursor_;
    std::vector<ObjectDataRecord> records_;
};

}  // namespace veltarn
