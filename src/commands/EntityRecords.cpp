#include "commands/EntityRecords.h"

#include "data/ObjectDataTables.h"

namespace veltarn {

EntityRecords::EntityRecords(host::Database& db)
    : drawingHasData_(!findObjectDataDictionary(db).isNull()), cursor_(db) {}

const std::vector<ObjectDataRecord>& EntityRecords::read(host::ObjectId entity) {
    records_.clear();
    if (!drawingHasData_ || cursor_.open(entity) != kOdOk) return records_;
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
