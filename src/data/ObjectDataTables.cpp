#include "data/ObjectDataTables.h"

#include "data/RecordValues.h"

#include <mutex>
#include <unordered_map>

namespace veltarn {

namespace {

using host::Database;
using host::DbDictionary;
using host::ObjectId;
using host::OpenMode;

// The ids of "ODEMUDATA" by database. Commands run on one thread, but the map is process-wide
// and the lock costs nothing next to opening an object.
std::mutex& cacheMutex() {
    static std::mutex mutex;
    return mutex;
}

std::unordered_map<const Database*, ObjectId>& cache() {
    static std::unordered_map<const Database*, ObjectId> ids;
    return ids;
}

ObjectId cachedId(const Database& db) {
    std::lock_guard<std::mutex> guard(cacheMutex());
    auto it = cache().find(&db);
    return it == cache().end() ? ObjectId{} : it->second;
}

void cacheId(const Database& db, ObjectId id) {
    std::lock_guard<std::mutex> guard(cacheMutex());
    cache()[&db] = id;
}

// Finds "ODEMUDATA" in the named objects dictionary, creating it when `create` is set.
ObjectId lookUp(Database& db, bool create, host::Documents* documents) {
    auto named = db.openDictionary(db.namedObjectsDictionary(), OpenMode::kRead);
    if (!named) return {};
    if (ObjectId id = named->find(kObjectDataDictionary)) return id;
    if (!create) return {};
    // Created under an exclusive-write lock of its own, so that commands that hold a shared lock,
    // or none, may still be the first to ask for it.
    host::DocumentLock lock;
    if (documents) {
        if (host::Document* document = documents->documentOf(db)) {
            lock = documents->lock(*document, host::LockMode::kExclusiveWrite);
        }
    }
    if (!named->upgradeOpen()) return {};
    ObjectId id = named->addDictionary(kObjectDataDictionary);
    named->downgradeOpen();
    return id;
}

// A cached id is trusted only when it still opens as a dictionary owned by the named objects
// dictionary: an undone creation, or a new database at a destroyed one's address, fails that.
bool isObjectDataDictionary(const Database& db, const DbDictionary& dictionary) {
    return dictionary.ownerId() == db.namedObjectsDictionary();
}

}  // namespace

std::unique_ptr<DbDictionary> openObjectDataDictionary(Database& db, OpenMode mode, host::Documents* documents) {
    if (ObjectId id = cachedId(db)) {
        auto dictionary = db.openDictionary(id, mode);
        if (dictionary && isObjectDataDictionary(db, *dictionary)) return dictionary;
    }
    ObjectId id = lookUp(db, true, documents);
    if (!id) return nullptr;
    cacheId(db, id);
    return db.openDictionary(id, mode);
}

ObjectId getObjectDataDictionary(Database& db, host::Documents* documents) {
    auto dictionary = openObjectDataDictionary(db, OpenMode::kRead, documents);
    return dictionary ? dictionary->id() : ObjectId{};
}

ObjectId findObjectDataDictionary(Database& db) {
    if (ObjectId id = cachedId(db)) {
        auto dictionary = db.openDictionary(id, OpenMode::kRead);
        if (dictionary && isObjectDataDictionary(db, *dictionary)) return id;
    }
    ObjectId id = lookUp(db, false, nullptr);
    if (id) cacheId(db, id);
    return id;
}

void forgetObjectDataDictionary(const Database& db) {
    std::lock_guard<std::mutex> guard(cacheMutex());
    cache().erase(&db);
}

int createTableDefinition(Database& db, const std::wstring& table, const ObjectDataRecord& record,
                          host::Documents* documents) {
    auto dictionary = openObjectDataDictionary(db, OpenMode::kWrite, documents);
    if (!dictionary) return kOdNoData;
    if (dictionary->has(table)) return kOdTableExists;
    host::ResultBuffer chain;
    chain.reserve(record.fields.size() * 2);
    for (const FieldValue& field : record.fields) {
        chain.emplace_back(kCharacterCode, field.name());
        chain.push_back(storedForm(field));
    }
    ObjectId id = dictionary->addXrecord(table);
    if (!id) return kOdNoData;
    auto definition = db.openXrecord(id, OpenMode::kWrite);
    if (!definition || !definition->setData(chain)) {
        // Leave no empty definition behind: it would make the table exist with no fields.
        if (definition) definition->erase();
        dictionary->remove(table);
        return kOdNoData;
    }
    return kOdOk;
}

int listTables(Database& db, int mode, std::vector<std::wstring>& tables) {
    if (mode != kListTablesMode) return kOdOk;
    ObjectId id = findObjectDataDictionary(db);
    if (!id) return kOdOk;
    auto dictionary = db.openDictionary(id, OpenMode::kRead);
    if (!dictionary) return kOdOk;
    for (auto& [key, value] : dictionary->entries()) tables.push_back(key);
    return kOdOk;
}

bool readTableDefinition(Database& db, const std::wstring& table, ObjectDataRecord& definition,
                         host::Documents* documents) {
    definition.clear();
    auto dictionary = openObjectDataDictionary(db, OpenMode::kRead, documents);
    if (!dictionary || !readTableDefinition(db, dictionary->find(table), definition)) return false;
    definition.table = table;
    return true;
}

bool readTableDefinition(Database& db, ObjectId id, ObjectDataRecord& definition) {
    definition.clear();
    auto xrecord = db.openXrecord(id, OpenMode::kRead);
    if (!xrecord) return false;
    host::ResultBuffer chain = xrecord->data();
    definition.fields.resize(chain.size() / 2);
    for (std::size_t i = 0; i < definition.fields.size(); ++i) {
        FieldValue& field = definition.fields[i];
        field.setName(chain[2 * i].text());
        readStoredValue(chain[2 * i + 1], field);
    }
    return true;
}

}  // namespace veltarn
