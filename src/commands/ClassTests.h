// What a command needs to test many objects against the loaded classifier, made once per run:
// the drawing, the lookups, the object-data test and the reader of each object's records.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

#include "commands/ClassIndex.h"
#include "commands/EntityRecords.h"
#include "commands/ObjectDataTest.h"
#include "commands/PropertyTest.h"
#include "host/Database.h"

namespace veltarn {

class ClassTests {
public:
    ClassTests(host::Database& db, const Classifier& classifier)
        : db_(db), index_(classifier), objectData_(index_), records_(db) {}

    host::Database& db() { return db_; }
    const ClassIndex& index() const { return index_; }
    ObjectDataTest& objectData() { return objectData_; }

    // Every record of `entity`; valid until the next call.
    const std::vector<ObjectDataRecord>& records(host::ObjectId entity) { return records_.read(entity); }
    // After a command defined new tables in the drawing.
    void refreshTables() { records_.refreshTables(); }
    const TableDirectory& tables() const { return records_.tables(); }

    // The property test of `entity` (opened here) against `def`; false when it cannot be opened.
    bool propertiesHold(host::ObjectId entity, const ClassDef& def) {
        std::unique_ptr<host::DbEntity> open = db_.openEntity(entity, host::OpenMode::kRead);
        return open && propertyTestHolds(*open, def);
    }

    // Among the classes of `records` that `eligible` accepts (all when it is empty), the one with
    // the greatest number; on equal numbers the first met. Numbers at or below -2147483647 are
    // never chosen: that is where the search starts. Null when none is.
    const ClassDef* highestClass(const std::vector<ObjectDataRecord>& records,
                                 const std::function<bool(const ClassDef&)>& eligible = {}) const {
        const ClassDef* chosen = nullptr;
        std::int64_t best = -2147483647;
        for (const ObjectDataRecord& record : records) {
            const ClassDef* def = index_.classOfRecord(record);
            if (def && (!eligible || eligible(*def)) && def->number > best) {
                best = def->number;
                chosen = def;
            }
        }
        return chosen;
    }

    // Whether the class's tables agree with the drawing's definitions of the same names (a table
    // the drawing does not define agrees): the declared requirements a record's class must meet
    // before the record counts as that class's. Asked once per class and run.
    bool meetsDrawingRequirements(const ClassDef& def);

private:
    host::Database& db_;
    ClassIndex index_;
    ObjectDataTest objectData_;
    EntityRecords records_;
    std::unordered_map<const ClassDef*, bool> requirements_;
};

}  // namespace veltarn
