#include "data/ObjectDataListing.h"

#include "data/ObjectData.h"

namespace veltarn {

std::vector<std::wstring> listObjectData(host::Database& db, host::ObjectId entity) {
    std::vector<std::wstring> lines;
    auto tables = db.openDictionary(findObjectDataDictionary(db), host::OpenMode::kRead);
    if (!tables) return lines;
    std::vector<host::DbDictionary::Entry> entries;
    {
        auto object = db.openObject(entity, host::OpenMode::kRead);
        if (!object) return lines;
        auto dictionary = db.openDictionary(object->extensionDictionary(), host::OpenMode::kRead);
        if (!dictionary) return lines;
        entries = dictionary->entries();
    }

    // The cursor reads one table per opening, so each table gets its own, filtered to it.
    ObjectData cursor(db);
    ObjectDataRecord record;
    for (const auto& [key, id] : entries) {
        if (!tables->has(key)) continue;  // another application's data
        for (int rc = cursor.open(entity, key); rc == kOdOk && !cursor.atEnd(); cursor.next()) {
            if (cursor.read(record) != kOdOk) break;
            lines.push_back(L"Object data table: " + record.table);
            for (const FieldValue& field : record.fields) {
                lines.push_back(L"    " + field.name() + L" (" + fieldTypeName(field.type()) + L"): " +
                                field.displayText());
            }
        }
    }
    return lines;
}

}  // namespace veltarn
