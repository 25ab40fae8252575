#include "cad/db/DrawOrder.h"

#include "cad/db/Dictionary.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace veltarn::db {
namespace {

constexpr std::string_view kSortentsKey = "ACAD_SORTENTS";
constexpr std::string_view kSortentsMarker = "AcDbSortentsTable";

using SortHandles = std::unordered_map<Handle, Handle>;  // entity -> the handle it is drawn by

SortHandles readTable(const Database& db, Handle table) {
    SortHandles out;
    TagList tags;
    if (table == kNoHandle || db.read(table, tags) != OpenStatus::Ok) return out;
    auto [from, to] = tags.subclass(kSortentsMarker);
    if (from == TagList::npos) return out;
    for (std::size_t i = from; i + 1 < to; ++i) {
        if (tags[i].code != gc::kSortEntity || tags[i + 1].code != gc::kSortHandle) continue;
        auto entity = parseHandle(tags[i].value), sort = parseHandle(tags[i + 1].value);
        if (entity && sort) out[*entity] = *sort;
        ++i;
    }
    return out;
}

Handle sortHandle(const SortHandles& table, Handle entity) {
    auto it = table.find(entity);
    return it == table.end() ? entity : it->second;
}

std::vector<Handle> ordered(const std::vector<Handle>& entities, const SortHandles& table) {
    std::vector<Handle> out = entities;
    std::stable_sort(out.begin(), out.end(), [&](Handle a, Handle b) { return sortHandle(table, a) < sortHandle(table, b); });
    return out;
}

}  // namespace

Handle findSortentsTable(const Database& db, Handle block) {
    if (db.typeName(block) != "BLOCK_RECORD") return kNoHandle;
    Handle found = findEntry(db, extensionDictionary(db, block), kSortentsKey);
    return db.exists(found) && db.typeName(found) == "SORTENTSTABLE" ? found : kNoHandle;
}

Result<Handle> sortentsTable(Database& db, Handle block, bool create) {
    if (db.isR12() && !create) return kNoHandle;
    if (auto converted = db.convertFromR12(); !converted) return converted.error();
    if (db.typeName(block) != "BLOCK_RECORD" || !db.exists(block)) return dxf::makeError("no block " + formatHandle(block));
    if (Handle found = findSortentsTable(db, block); found != kNoHandle || !create) return found;
    auto xdictionary = createExtensionDictionary(db, block);
    if (!xdictionary) return xdictionary.error();
    std::string owner = formatHandle(*xdictionary);
    TagList tags{{0, "SORTENTSTABLE"},  {gc::kControlString, kReactorsGroup}, {gc::kSoftPointer, owner},
                 {gc::kControlString, kGroupEnd}, {gc::kSoftPointer, owner}, {gc::kSubclass, std::string(kSortentsMarker)},
                 {gc::kSoftPointer, formatHandle(block)}};
    auto table = db.addObject(std::move(tags));
    if (!table) return table;
    if (auto set = setEntry(db, *xdictionary, kSortentsKey, *table); !set) return set.error();
    return *table;
}

std::vector<Handle> drawOrder(const Database& db, Handle block) {
    return ordered(db.entitiesOf(block), readTable(db, findSortentsTable(db, block)));
}

Result<void> setRelativeDrawOrder(Database& db, Handle block, const std::vector<Handle>& entities) {
    std::vector<Handle> members = db.entitiesOf(block);
    std::unordered_set<Handle> inBlock(members.begin(), members.end()), seen;
    for (Handle entity : entities) {
        if (!inBlock.count(entity)) return dxf::makeError("entity " + formatHandle(entity) + " is not in the block");
        if (!seen.insert(entity).second) return dxf::makeError("entity " + formatHandle(entity) + " is listed twice");
    }
    auto table = sortentsTable(db, block, true);
    if (!table) return table.error();
    SortHandles sort = readTable(db, *table);
    std::vector<Handle> keys;
    keys.reserve(entities.size());
    for (Handle entity : entities) keys.push_back(sortHandle(sort, entity));
    std::sort(keys.begin(), keys.end());
    for (std::size_t i = 0; i < entities.size(); ++i) sort[entities[i]] = keys[i];

    // The table is written whole, in draw order, with only the entities drawn out of their own
    // place; entries for entities no longer in the block are dropped.
    ObjectWriter writer = db.openForWrite(*table);
    if (!writer) return dxf::makeError("cannot open the draw-order table: " + std::string(describe(writer.status())));
    TagList& tags = writer.tags();
    auto [from, to] = tags.subclass(kSortentsMarker);
    if (from == TagList::npos) return dxf::makeError("the draw-order table " + formatHandle(*table) + " has no AcDbSortentsTable data");
    tags.removeAll(gc::kSortEntity, from, to);
    std::tie(from, to) = tags.subclass(kSortentsMarker);
    tags.removeAll(gc::kSortHandle, from, to);
    std::tie(from, to) = tags.subclass(kSortentsMarker);
    std::size_t at = from;
    while (at < to && tags[at].code < gc::kXdataApp) ++at;  // before any xdata
    for (Handle entity : ordered(members, sort)) {
        Handle key = sortHandle(sort, entity);
        if (key == entity) continue;
        tags.insert(at++, gc::kSortEntity, formatHandle(entity));
        tags.insert(at++, gc::kSortHandle, formatHandle(key));
    }
    return {};
}

}  // namespace veltarn::db
