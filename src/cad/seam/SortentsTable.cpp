#include "cad/seam/SortentsTable.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "cad/db/Dictionary.h"
#include "cad/db/DrawOrder.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"

namespace veltarn::seam {
namespace {

constexpr const char* kSortentsKey = "ACAD_SORTENTS";
constexpr const char* kSortentsMarker = "AcDbSortentsTable";

db::Handle sortentsTable(const db::Database& db, db::Handle block) {
    return db::findEntry(db, db::extensionDictionary(db, block), kSortentsKey);
}

// The sort handle of each entity the table names.
std::unordered_map<db::Handle, db::Handle> sortHandles(const db::Database& db, db::Handle table) {
    std::unordered_map<db::Handle, db::Handle> out;
    if (table == db::kNoHandle) return out;
    const db::TagList tags = db.tags(table);
    auto [from, to] = tags.subclass(kSortentsMarker);
    if (from == db::TagList::npos) return out;
    for (std::size_t i = from; i + 1 < std::min(to, tags.size()); ++i) {
        if (tags[i].code != db::gc::kSortEntity || tags[i + 1].code != db::gc::kSortHandle) continue;
        auto entity = db::parseHandle(tags[i].value);
        auto sort = db::parseHandle(tags[i + 1].value);
        if (entity && sort) out[*entity] = *sort;
    }
    return out;
}

}  // namespace

std::vector<db::Handle> drawOrder(const db::Database& db, db::Handle block) {
    const auto sorted = sortHandles(db, sortentsTable(db, block));
    std::vector<db::Handle> entities = db.entitiesOf(block);
    auto key = [&](db::Handle h) {
        auto it = sorted.find(h);
        return it == sorted.end() ? h : it->second;
    };
    std::stable_sort(entities.begin(), entities.end(), [&](db::Handle a, db::Handle b) { return key(a) < key(b); });
    return entities;
}

bool orderAmongThemselves(db::Database& db, db::Handle block, const std::vector<db::Handle>& entities) {
    if (db.findBlock(db.blockName(block)) != block) return false;
    std::vector<db::Handle> unique;
    std::unordered_set<db::Handle> seen;
    for (db::Handle h : entities) {
        if (db.blockOf(h) != block) return false;
        if (seen.insert(h).second) unique.push_back(h);
    }
    if (unique.size() < 2) return true;

    // Made on first use; an R12 drawing becomes a 2018 one here, as it cannot hold the table.
    auto made = db::sortentsTable(db, block, true);
    if (!made || *made == db::kNoHandle) return false;
    const db::Handle table = *made;

    auto sorted = sortHandles(db, table);
    auto key = [&](db::Handle h) {
        auto it = sorted.find(h);
        return it == sorted.end() ? h : it->second;
    };
    std::vector<db::Handle> places;
    for (db::Handle h : unique) places.push_back(key(h));
    std::sort(places.begin(), places.end());
    for (std::size_t i = 0; i < unique.size(); ++i) sorted[unique[i]] = places[i];

    // Rewritten in entity order so that the table is the same for the same order.
    std::map<db::Handle, db::Handle> ordered(sorted.begin(), sorted.end());
    db::ObjectWriter writer = db.openForWrite(table);
    if (!writer) return false;
    db::TagList& tags = writer.tags();
    auto [from, to] = tags.subclass(kSortentsMarker);
    if (from == db::TagList::npos) return false;
    std::size_t end = std::min(to, tags.size());
    for (std::size_t i = end; i-- > from + 1;)
        if (tags[i].code == db::gc::kSortEntity || tags[i].code == db::gc::kSortHandle) tags.erase(i);
    end = std::min(tags.subclass(kSortentsMarker).second, tags.size());
    for (auto [entity, sort] : ordered) {
        if (entity == sort) continue;  // drawn by its own handle anyway
        tags.insert(end++, db::gc::kSortEntity, db::formatHandle(entity));
        tags.insert(end++, db::gc::kSortHandle, db::formatHandle(sort));
    }
    writer.close();
    return true;
}

}  // namespace veltarn::seam
