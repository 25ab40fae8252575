#include "cad/db/ExtensionDictionary.h"

#include "cad/db/AttachedDataLayout.h"
#include "cad/db/Dictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/R12Entity.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {
namespace {

// The index of the `102 {ACAD_XDICTIONARY` tag, npos when there is none.
std::size_t xdictionaryGroup(const TagList& tags) {
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code == gc::kSubclass || tags[i].code == gc::kStructure) break;
        if (tags[i].code == gc::kControlString && dxf::trimSpaces(tags[i].value) == kXdictionaryGroup) return i;
    }
    return TagList::npos;
}

}  // namespace

// Read from the stored tags without copying them: object data looks this up once per entity.
Handle extensionDictionary(const Database& db, Handle object) {
    TagCursor cursor;
    if (db.read(object, cursor) != OpenStatus::Ok || !cursor.next()) return kNoHandle;
    bool inGroup = false;
    while (cursor.next()) {
        int code = cursor.code();
        if (code == gc::kSubclass || code == gc::kStructure) break;
        if (code == gc::kControlString) {
            inGroup = dxf::trimSpaces(cursor.value()) == kXdictionaryGroup;
        } else if (inGroup && code == gc::kHardOwner) {
            Handle dictionary = parseHandle(cursor.value()).value_or(kNoHandle);
            return db.exists(dictionary) ? dictionary : kNoHandle;
        }
    }
    return kNoHandle;
}

Result<Handle> createExtensionDictionary(Database& db, Handle object) {
    if (Handle existing = extensionDictionary(db, object); existing != kNoHandle) return existing;
    if (db.status(object) != OpenStatus::Ok)
        return dxf::makeError("cannot give object " + formatHandle(object) + " an extension dictionary: " + describe(db.status(object)));
    if (auto converted = db.convertFromR12(); !converted) return converted.error();
    auto dictionary = createDictionary(db, object, true);
    if (!dictionary) return dictionary.error();
    if (auto attached = attachExtensionDictionary(db, object, *dictionary); !attached) return attached.error();
    return *dictionary;
}

Result<void> attachExtensionDictionary(Database& db, Handle object, Handle dictionary) {
    ObjectWriter writer = db.openForWrite(object, true);
    if (!writer) return dxf::makeError("cannot give object " + formatHandle(object) + " an extension dictionary: " + describe(writer.status()));
    TagList& tags = writer.tags();
    // A stale group (pointing at an erased dictionary) is replaced.
    if (std::size_t old = xdictionaryGroup(tags); old != TagList::npos) {
        std::size_t close = tags.find(gc::kControlString, kGroupEnd, old + 1);
        tags.erase(old, (close == TagList::npos ? old : close) - old + 1);
    }
    // After the handle and after a reactors group, as CAD programs write it.
    std::size_t at = 1;
    if (at < tags.size() && (tags[at].code == gc::kHandle || tags[at].code == gc::kDimStyleHandle)) ++at;
    if (at < tags.size() && tags[at].code == gc::kControlString && dxf::trimSpaces(tags[at].value) == kReactorsGroup) {
        std::size_t close = tags.find(gc::kControlString, kGroupEnd, at + 1);
        if (close != TagList::npos) at = close + 1;
    }
    tags.insert(at, gc::kControlString, kXdictionaryGroup);
    tags.insert(at + 1, gc::kHardOwner, formatHandle(dictionary));
    tags.insert(at + 2, gc::kControlString, kGroupEnd);
    return {};
}

bool releaseExtensionDictionary(Database& db, Handle object) {
    Handle dictionary = extensionDictionary(db, object);
    if (dictionary == kNoHandle || !dictionaryEntries(db, dictionary).empty()) return false;
    ObjectWriter writer = db.openForWrite(object, true);
    if (!writer) return false;
    TagList& tags = writer.tags();
    std::size_t group = xdictionaryGroup(tags);
    std::size_t close = tags.find(gc::kControlString, kGroupEnd, group + 1);
    if (group == TagList::npos || close == TagList::npos) return false;
    tags.erase(group, close - group + 1);
    (void)db.erase(dictionary);
    return true;
}

Result<Handle> appendEntityWithXrecord(Database& db, Handle block, TagList entity, std::string_view key, const ResultBuffer& values) {
    if (db.isR12()) {
        if (auto converted = db.convertFromR12(); !converted) return converted.error();
        // Built for the R12 drawing: the entity gets the owner and markers it needs now.
        if (!entity.hasMarkers()) {
            entity = modernEntity(entity, kNoHandle, kNoHandle, [](Handle) { return kNoHandle; });
            entity.erase(1, 2);  // handle and owner: appending sets them
        }
    }
    if (entity.empty() || entity[0].code != gc::kStructure) return dxf::makeError("an entity must start with its type (group code 0)");
    // A plain new entity takes the bulk path; one with sub-entities, groups or in paper space the general one.
    bool plain = entity.find(gc::kStructure, 1) == TagList::npos && entity.find(gc::kHandle) == TagList::npos &&
                 entity.find(gc::kControlString) == TagList::npos && block != db.paperSpace();
    if (plain) {
        TagList chain;
        if (auto made = appendValues(chain, values); !made) return made.error();
        return db.appendEntityWithData(block, entity, key, chain);
    }
    TagList chain;
    if (auto made = appendValues(chain, values); !made) return made.error();
    if (auto left = db.handlesLeft(3); !left) return left.error();
    const Handle handle = db.allocateHandle().value(), dictionary = db.allocateHandle().value(), record = db.allocateHandle().value();
    const std::string entityId = formatHandle(handle), dictionaryId = formatHandle(dictionary), recordId = formatHandle(record);
    auto into = [](TagList& tags) { return [&tags](int code, std::string_view value) { tags.add(code, std::string(value)); }; };

    std::size_t at = entity.size() > 1 && entity[1].code == gc::kHandle ? 2 : 1;
    emitXdictionaryPointer([&](int code, std::string_view value) { entity.insert(at++, code, std::string(value)); }, dictionaryId);
    auto added = db.appendEntity(block, std::move(entity), handle);
    if (!added) return added;
    TagList dict;
    emitDataDictionary(into(dict), dictionaryId, entityId, key, recordId);
    if (auto made = db.addObject(std::move(dict), dictionary); !made) return made.error();
    TagList xrecord;
    emitDataXrecordHead(into(xrecord), recordId, dictionaryId);
    for (const TagValue& value : chain) xrecord.add(value.code, value.value);
    if (auto made = db.addObject(std::move(xrecord), record); !made) return made.error();
    return handle;
}

static void eraseOwned(Database& db, Handle object, int depth) {
    if (depth > 64 || db.status(object) != OpenStatus::Ok) return;  // guards against ownership cycles in damaged files
    if (Handle xdictionary = extensionDictionary(db, object); xdictionary != kNoHandle) eraseOwned(db, xdictionary, depth + 1);
    if (isDictionaryType(db.typeName(object))) {
        for (const auto& entry : dictionaryEntries(db, object))
            if (db.ownerOf(entry.value) == object) eraseOwned(db, entry.value, depth + 1);
    }
    (void)db.erase(object);
}

OpenStatus eraseObject(Database& db, Handle object) {
    OpenStatus status = db.status(object);
    if (status != OpenStatus::Ok) return status;
    Handle owner = db.ownerOf(object);
    if (owner != kNoHandle && isDictionaryType(db.typeName(owner))) removeEntriesTo(db, owner, object);
    if (owner != kNoHandle && extensionDictionary(db, owner) == object) {
        // The owner's group must not point at an erased dictionary.
        ObjectWriter writer = db.openForWrite(owner, true);
        TagList& tags = writer.tags();
        std::size_t group = xdictionaryGroup(tags);
        std::size_t close = group == TagList::npos ? TagList::npos : tags.find(gc::kControlString, kGroupEnd, group + 1);
        if (close != TagList::npos) tags.erase(group, close - group + 1);
    }
    eraseOwned(db, object, 0);
    return OpenStatus::Ok;
}

}  // namespace veltarn::db
