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

private:
    // A drawing without "ODEMUDATA" holds no records; the cursor would create the dictionary, and
    // reading must never change the drawing.
    bool drawingHasData_;
    ObjectData cursor_;
    std::vector<ObjectDataRecord> records_;
};

}  // namespace veltarn
