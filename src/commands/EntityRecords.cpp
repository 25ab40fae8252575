#include "commands/EntityRecords.h"

namespace veltarn {

EntityRecords::EntityRecords(host::Database& db) : db_(db), cursor_(db) {
    cursor_.useDirectory(&tables_);
    refreshTables();
}

void EntityRecords::refreshTables() { tables_.read(db_); }

const std::vector<ObjectDataRecord>& EntityRecords::read(host::ObjectId entity) {
    records_.clear();
    if (tables_.empty() || cursor_.open(entity) != kOdOk) return records_;
    ObjectDataRecord record;
    do {
        for (; !cursor_.atEnd(); cursor_.next()) {
            if (cursor_.read(record) != kOdOk) break;
            records_.push_back(record);
        }
    } while (cursor_.nextTable());
    return records_;
}

}  // namespace veltarn
