#include "commands/RecordRemoval.h"

#include <algorithm>
#include <string>
#include <vector>

#include "data/ObjectData.h"
#include "host/LowerCase.h"

namespace veltarn {
namespace {

// Where a record sits: the extension-dictionary entry of its table, and its place in it.
struct RecordPlace {
    std::wstring table;
    std::size_t index;
};

// The place of records[at] among the records of its table.
RecordPlace placeOf(const std::vector<ObjectDataRecord>& records, std::size_t at) {
    std::size_t index = 0;
    for (std::size_t i = 0; i < at; ++i)
        if (records[i].table == records[at].table) ++index;
    return {records[at].table, index};
}

bool removeAt(const ClassTests& tests, host::Database& db, host::ObjectId entity, const RecordPlace& place) {
    ObjectData cursor(db);
    cursor.useDirectory(&tests.tables());
    ObjectDataRecord record;
    if (cursor.open(entity, place.table) != kOdOk || cursor.atEnd() || cursor.read(record) != kOdOk) return false;
    for (std::size_t i = 0; i < place.index; ++i) {
        cursor.next();
        if (cursor.read(record) != kOdOk) return false;
    }
    return cursor.remove() == kOdOk;
}

// Removes the records at `places`, the later ones of a table first so that the earlier ones keep
// their places.
int removeAll(const ClassTests& tests, host::Database& db, host::ObjectId entity, std::vector<RecordPlace> places) {
    std::sort(places.begin(), places.end(), [](const RecordPlace& a, const RecordPlace& b) {
        return a.table != b.table ? a.table < b.table : a.index > b.index;
    });
    int removed = 0;
    for (const RecordPlace& place : places)
        if (removeAt(tests, db, entity, place)) ++removed;
    return removed;
}

}  // namespace

bool removeClassData(ClassTests& tests, host::ObjectId entity, const ClassDef& def) {
    const std::vector<ObjectDataRecord>& records = tests.records(entity);
    if (!tests.objectData().holds(records, def, ValueCheck::kOff)) return false;
    std::vector<RecordPlace> places;
    for (const TableDef& table : def.tables) {
        const FieldDef* key = nullptr;
        for (const FieldDef& field : table.fields)
            if (field.isKey() && !key) key = &field;
        if (!key) continue;
        const std::wstring wanted = classKeyValue(def, *key);
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (!host::equalsIgnoringCase(records[i].table, table.name)) continue;
            const FieldValue* value = findValue(records[i], key->name);
            if (value && host::equalsIgnoringCase(valueText(*value), wanted)) {
                places.push_back(placeOf(records, i));
                break;
            }
        }
    }
    removeAll(tests, tests.db(), entity, std::move(places));
    return true;
}

int removeResolvedRecords(ClassTests& tests, host::ObjectId entity) {
    const std::vector<ObjectDataRecord>& records = tests.records(entity);
    std::vector<RecordPlace> places;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ClassDef* def = tests.index().classOfRecord(records[i]);
        if (def && tests.meetsDrawingRequirements(*def)) places.push_back(placeOf(records, i));
    }
    if (places.empty()) return 0;
    return removeAll(tests, tests.db(), entity, std::move(places));
}

}  // namespace veltarn
