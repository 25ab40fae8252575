#include "cad/db/Dictionary.h"

#include "cad/db/GroupCodes.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {
namespace {

// The tags that hold entries: after the AcDbDictionary marker, up to the next marker.
std::pair<std::size_t, std::size_t> entryRange(const TagList& tags) {
    auto range = tags.subclass("AcDbDictionary");
    if (range.first == TagList::npos) return {tags.size(), tags.size()};
    return range;
}

bool isEntryValue(int code) { return code == gc::kSoftOwner || code == gc::kHardOwner; }

}  // namespace

bool isDictionaryType(std::string_view type) { return type == "DICTIONARY" || type == "ACDBDICTIONARYWDFLT"; }

Dictionary::Dictionary(const TagList& tags) {
    auto [from, to] = entryRange(tags);
    for (std::size_t i = from; i < to; ++i) {
        const TagValue& tag = tags[i];
        if (tag.code == gc::kHardOwnerFlag) hardOwner_ = dxf::parseInteger(tag.value).value_or(0) != 0;
        else if (tag.code == gc::kCloningFlag) cloning_ = static_cast<int>(dxf::parseInteger(tag.value).value_or(1));
        else if (tag.code == gc::kOtherName && i + 1 < to && isEntryValue(tags[i + 1].code)) {
            entries_.push_back({tag.value, parseHandle(tags[i + 1].value).value_or(kNoHandle), tags[i + 1].code});
            ++i;
        }
    }
}

Handle Dictionary::find(std::string_view key) const {
    for (const auto& entry : entries_)
        if (sameName(entry.key, key)) return entry.value;
    return kNoHandle;
}

// Calls `visit(key, value, code)` for each entry in dictionary order until it returns false, straight
// from the stored tags: looking up object data reads one dictionary per entity. Entries count
// between the AcDbDictionary marker and the next one (everywhere in an object without markers).
template <class Visit>
static void forEachEntry(const Database& db, Handle dictionary, Visit visit) {
    TagCursor cursor;
    if (!isDictionaryType(db.typeName(dictionary)) || db.read(dictionary, cursor) != OpenStatus::Ok || !cursor.next()) return;
    enum { Before, In, After } place = Before;
    std::vector<DictionaryEntry> unmarked;  // entries before any marker: they count only if none follows
    std::string key;
    bool keyed = false;
    while (cursor.next()) {
        int code = cursor.code();
        if (code == gc::kStructure) break;
        if (code == gc::kSubclass) {
            if (place == In) break;
            place = cursor.value() == "AcDbDictionary" ? In : After;
            unmarked.clear();
            keyed = false;
            continue;
        }
        if (place == After) continue;
        if (keyed && isEntryValue(code)) {
            keyed = false;
            Handle value = parseHandle(cursor.value()).value_or(kNoHandle);
            if (place == Before) unmarked.push_back({key, value, code});
            else if (!visit(std::string_view(key), value, code)) return;
            continue;
        }
        keyed = code == gc::kOtherName;
        if (keyed) key.assign(cursor.value());
    }
    if (place == Before)
        for (const DictionaryEntry& entry : unmarked)
            if (!visit(std::string_view(entry.key), entry.value, entry.code)) return;
}

std::vector<DictionaryEntry> dictionaryEntries(const Database& db, Handle dictionary) {
    std::vector<DictionaryEntry> out;
    forEachEntry(db, dictionary, [&](std::string_view key, Handle value, int code) {
        out.push_back({std::string(key), value, code});
        return true;
    });
    return out;
}

Handle findEntry(const Database& db, Handle dictionary, std::string_view key) {
    Handle found = kNoHandle;
    forEachEntry(db, dictionary, [&](std::string_view entry, Handle value, int) {
        if (!sameName(entry, key)) return true;
        found = value;
        return false;
    });
    return found;
}

static Error notADictionary(const Database& db, Handle handle) {
    return dxf::makeError("object " + formatHandle(handle) + " is not a dictionary that can be changed (" +
                          std::string(describe(db.status(handle))) + ")");
}

// Points the owner link (the 330 before the first subclass marker) of `object` at `owner`.
static void setOwner(Database& db, Handle object, Handle owner) {
    ObjectWriter writer = db.openForWrite(object, true);
    if (!writer) return;
    TagList& tags = writer.tags();
    std::size_t end = tags.find(gc::kSubclass);
    bool inGroup = false;
    for (std::size_t i = 1; i < std::min(end, tags.size()); ++i) {
        if (tags[i].code == gc::kControlString) inGroup = dxf::trimSpaces(tags[i].value) != kGroupEnd;
        else if (tags[i].code == gc::kSoftPointer && !inGroup) {
            tags[i].value = formatHandle(owner);
            return;
        }
    }
    tags.insert(end == TagList::npos ? tags.size() : end, gc::kSoftPointer, formatHandle(owner));
}

Result<void> setEntry(Database& db, Handle dictionary, std::string_view key, Handle value) {
    if (key.empty()) return dxf::makeError("a dictionary key may not be empty");
    if (!isDictionaryType(db.typeName(dictionary))) return notADictionary(db, dictionary);
    {
        ObjectWriter writer = db.openForWrite(dictionary);
        if (!writer) return notADictionary(db, dictionary);
        TagList& tags = writer.tags();
        Dictionary parsed(tags);
        auto [from, to] = entryRange(tags);
        if (from == tags.size()) {  // no subclass marker yet: a bare dictionary
            tags.add(gc::kSubclass, "AcDbDictionary");
            from = to = tags.size();
        }
        bool replaced = false;
        for (std::size_t i = from; i + 1 < to; ++i) {
            if (tags[i].code == gc::kOtherName && isEntryValue(tags[i + 1].code) && sameName(tags[i].value, key)) {
                tags[i + 1].value = formatHandle(value);
                replaced = true;
                break;
            }
        }
        if (!replaced) {
            int code = parsed.hardOwner() ? gc::kHardOwner : gc::kSoftOwner;
            if (!parsed.entries().empty()) code = parsed.entries().back().code;
            tags.insert(to, gc::kOtherName, std::string(key));
            tags.insert(to + 1, code, formatHandle(value));
        }
    }
    if (db.status(value) == OpenStatus::Ok) setOwner(db, value, dictionary);
    return {};
}

Result<bool> removeEntry(Database& db, Handle dictionary, std::string_view key) {
    if (!isDictionaryType(db.typeName(dictionary))) return notADictionary(db, dictionary);
    ObjectWriter writer = db.openForWrite(dictionary);
    if (!writer) return notADictionary(db, dictionary);
    TagList& tags = writer.tags();
    auto [from, to] = entryRange(tags);
    for (std::size_t i = from; i + 1 < to; ++i) {
        if (tags[i].code == gc::kOtherName && isEntryValue(tags[i + 1].code) && sameName(tags[i].value, key)) {
            tags.erase(i, 2);
            return true;
        }
    }
    return false;
}

void removeEntriesTo(Database& db, Handle dictionary, Handle value) {
    if (!isDictionaryType(db.typeName(dictionary))) return;
    ObjectWriter writer = db.openForWrite(dictionary);
    if (!writer) return;
    TagList& tags = writer.tags();
    auto [from, to] = entryRange(tags);
    for (std::size_t i = from; i + 1 < to;) {
        if (tags[i].code == gc::kOtherName && isEntryValue(tags[i + 1].code) && parseHandle(tags[i + 1].value) == value) {
            tags.erase(i, 2);
            to -= 2;
        } else {
            ++i;
        }
    }
}

Result<Handle> createDictionary(Database& db, Handle owner, bool hardOwner) {
    TagList tags{{0, "DICTIONARY"}, {gc::kSoftPointer, formatHandle(owner)}, {gc::kSubclass, "AcDbDictionary"}};
    if (hardOwner) tags.add(gc::kHardOwnerFlag, "1");
    tags.add(gc::kCloningFlag, "1");
    return db.addObject(std::move(tags));
}

Result<Handle> childDictionary(Database& db, Handle parent, std::string_view key, bool create) {
    Handle found = findEntry(db, parent, key);
    if (found != kNoHandle && db.exists(found)) return found;
    if (!create) return kNoHandle;
    auto made = createDictionary(db, parent);
    if (!made) return made.error();
    if (auto set = setEntry(db, parent, key, *made); !set) return set.error();
    return *made;
}

Result<Handle> namedDictionary(Database& db, std::string_view key, bool create) {
    if (db.isR12() && create)
        if (auto converted = db.convertFromR12(); !converted) return converted.error();
    Handle root = db.namedObjectsDictionary();
    if (root == kNoHandle) {
        if (!create) return kNoHandle;
        return dxf::makeError(db.name() + ": the drawing has no named objects dictionary");
    }
    return childDictionary(db, root, key, create);
}

}  // namespace veltarn::db
