#include "cad/db/RecordCopier.h"

#include "cad/db/Dictionary.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/ObjectIdentity.h"
#include "cad/db/SymbolTables.h"
#include "cad/dxf/NumberText.h"

#include <unordered_map>

namespace veltarn::db {
namespace {

constexpr int kBlockAnonymous = 1;
constexpr int kStyleShapeFile = 1;

std::string_view tableOf(RecordKind kind) {
    switch (kind) {
        case RecordKind::Block: return "BLOCK_RECORD";
        case RecordKind::DimensionStyle: return "DIMSTYLE";
        case RecordKind::Layer: return "LAYER";
        case RecordKind::Linetype: return "LTYPE";
        case RecordKind::TextStyle: return "STYLE";
        default: return {};
    }
}

std::string_view dictionaryOf(RecordKind kind) {
    switch (kind) {
        case RecordKind::Layout: return "ACAD_LAYOUT";
        case RecordKind::MleaderStyle: return "ACAD_MLEADERSTYLE";
        case RecordKind::MlineStyle: return "ACAD_MLINESTYLE";
        default: return {};
    }
}

bool isPointer(int code) { return gc::isHandleReference(code); }

bool isLayoutBlock(std::string_view name) {
    return name.size() >= 12 && (sameName(name.substr(0, 12), "*Paper_Space") || sameName(name, "*Model_Space"));
}

class Copier {
public:
    Copier(Database& target, const Database& source) : to_(target), from_(source) {}

    // The target's object for a source object: kept, found by name, or copied.
    Result<Handle> object(Handle source) {
        if (auto it = map_.find(source); it != map_.end()) return it->second;
        if (!from_.exists(source)) return kNoHandle;
        std::string_view type = from_.typeName(source);
        Section section = from_.sectionOf(source);
        if (section == Section::Tables && type != "TABLE") return type == "BLOCK_RECORD" ? block(source) : record(source, type);
        if (section == Section::Objects) return namedObject(source);
        if (type == "BLOCK" && from_.isR12()) return block(source);
        return kNoHandle;  // an entity outside what is copied: the reference is dropped
    }

    Result<Handle> recordNamed(std::string_view table, std::string_view name) {
        if (Handle mine = to_.findRecord(table, name); mine != kNoHandle) return mine;
        if (table == "BLOCK_RECORD") {
            Handle theirs = from_.findBlock(name);
            return theirs == kNoHandle ? Result<Handle>(kNoHandle) : block(theirs);
        }
        Handle theirs = from_.findRecord(table, name);
        return theirs == kNoHandle ? Result<Handle>(kNoHandle) : record(theirs, table);
    }

    Result<Handle> namedEntryOf(std::string_view dictionary, std::string_view name) {
        Handle theirs = findEntry(from_, namedDictionary(from_, dictionary), name);
        return theirs == kNoHandle ? Result<Handle>(kNoHandle) : object(theirs);
    }

private:
    static Handle namedDictionary(const Database& db, std::string_view key) { return findEntry(db, db.namedObjectsDictionary(), key); }

    Result<Handle> record(Handle source, std::string_view table) {
        std::string name = recordName(from_, source);
        if (Handle mine = to_.findRecord(table, name); mine != kNoHandle) return map_[source] = mine;
        auto allocated = to_.allocateHandle();
        if (!allocated) return allocated.error();
        Handle handle = map_[source] = *allocated;
        TagList tags = detached(from_.tags(source));
        if (auto fixed = translate(tags); !fixed) return fixed.error();
        auto added = to_.addRecord(table, std::move(tags), handle);
        if (!added) return added.error();
        if (auto data = extensionDictionaryOf(source, handle); !data) return data.error();
        return handle;
    }

    // A block with its entities; anonymous and layout blocks get a free name of their kind.
    Result<Handle> block(Handle source) {
        std::string name = from_.blockName(source);
        if (!name.empty() && name[0] != '*') {
            if (Handle mine = to_.findBlock(name); mine != kNoHandle) return map_[source] = mine;
        } else {
            std::string stem = isLayoutBlock(name) ? "*Paper_Space" : name.substr(0, std::min<std::size_t>(name.size(), 2));
            for (int n = 0;; ++n)
                if (to_.findBlock(stem + std::to_string(n)) == kNoHandle) {
                    name = stem + std::to_string(n);
                    break;
                }
        }
        TagList begin = from_.tags(from_.blockBegin(source));
        auto made = to_.addBlock(name, begin.point(gc::kX).value_or(Point3{}));
        if (!made) return made.error();
        map_[source] = *made;
        if (auto flags = begin.integer(gc::kFlags); flags && *flags != 0) {
            ObjectWriter writer = to_.openForWrite(to_.blockBegin(*made), true);
            writer.tags().setIntegerIn("AcDbBlockBegin", gc::kFlags, *flags & kBlockAnonymous);
        }
        // Handles first, so that entities pointing at each other are translated.
        std::vector<Handle> entities = from_.entitiesOf(source);
        std::vector<Handle> handles;
        if (auto left = to_.handlesLeft(entities.size()); !left) return left.error();
        for (Handle entity : entities) handles.push_back(map_[entity] = to_.allocateHandle().value());
        for (std::size_t i = 0; i < entities.size(); ++i) {
            TagList tags = detached(from_.tags(entities[i]));
            if (auto fixed = translate(tags); !fixed) return fixed.error();
            if (auto added = to_.appendEntity(*made, std::move(tags), handles[i]); !added) return added.error();
            if (auto data = extensionDictionaryOf(entities[i], handles[i]); !data) return data.error();
        }
        if (auto data = extensionDictionaryOf(source, *made); !data) return data.error();
        return *made;
    }

    // An entry of a named dictionary (a multiline or multileader style, a layout, a material...):
    // the target's entry of the same name, or a copy for the kinds that are copied.
    Result<Handle> namedObject(Handle source) {
        Handle owner = from_.ownerOf(source);
        std::string dictionary, key;
        for (const auto& entry : dictionaryEntries(from_, from_.namedObjectsDictionary()))
            if (entry.value == owner) dictionary = entry.key;
        for (const auto& entry : dictionaryEntries(from_, owner))
            if (entry.value == source) key = entry.key;
        if (dictionary.empty() || key.empty()) return kNoHandle;
        auto targetDictionary = ::veltarn::db::namedDictionary(to_, dictionary, false);
        if (!targetDictionary) return targetDictionary.error();
        if (Handle mine = findEntry(to_, *targetDictionary, key); mine != kNoHandle) return map_[source] = mine;
        if (dictionary != "ACAD_MLINESTYLE" && dictionary != "ACAD_MLEADERSTYLE" && dictionary != "ACAD_LAYOUT") return kNoHandle;
        auto allocated = to_.allocateHandle();
        if (!allocated) return allocated.error();
        Handle handle = map_[source] = *allocated;
        TagList tags = detached(from_.tags(source));
        if (auto fixed = translate(tags); !fixed) return fixed.error();
        if (dictionary == "ACAD_LAYOUT") tags.setIntegerIn("AcDbLayout", gc::kInt71, static_cast<std::int64_t>(layoutNames(to_).size()));
        auto added = to_.addObject(std::move(tags), handle);
        if (!added) return added.error();
        if (auto data = extensionDictionaryOf(source, handle); !data) return data.error();
        auto parent = ::veltarn::db::namedDictionary(to_, dictionary, true);
        if (!parent) return parent.error();
        if (auto set = setEntry(to_, *parent, key, handle); !set) return set.error();
        if (dictionary == "ACAD_LAYOUT") {
            // The layout's paper space block points back at it.
            TagList layout = to_.tags(handle);
            auto [from, end] = layout.subclass("AcDbLayout");
            Handle space = parseHandle(layout.text(gc::kLayoutBlockRecord, from, end).value_or("0")).value_or(kNoHandle);
            if (space != kNoHandle) {
                ObjectWriter writer = to_.openForWrite(space, true);
                writer.tags().setIn("AcDbBlockTableRecord", gc::kBlockRecordPointer, formatHandle(handle));
            }
        }
        return handle;
    }

    // The data an application keeps about a copied object goes with it: its extension dictionary
    // with everything the dictionary owns.
    Result<void> extensionDictionaryOf(Handle source, Handle copy) {
        Handle theirs = extensionDictionary(from_, source);
        if (theirs == kNoHandle) return {};
        auto mine = ownedObject(theirs, copy);
        if (!mine) return mine.error();
        if (*mine == kNoHandle) return {};
        return attachExtensionDictionary(to_, copy, *mine);
    }

    // An object owned by `owner` (a dictionary with its entries, an xrecord...), copied whole.
    Result<Handle> ownedObject(Handle source, Handle owner) {
        if (auto it = map_.find(source); it != map_.end()) return it->second;
        if (!from_.exists(source)) return kNoHandle;
        auto allocated = to_.allocateHandle();
        if (!allocated) return allocated.error();
        Handle handle = map_[source] = *allocated;
        TagList tags = detached(from_.tags(source));
        if (isDictionaryType(tags.type())) {
            // Entries own their objects: those are copied under the new dictionary; an entry
            // whose object is gone is left out with its key.
            for (std::size_t i = 1; i < tags.size(); ++i) {
                if (tags[i].code != gc::kHardOwner && tags[i].code != gc::kSoftOwner) {
                    if (!isPointer(tags[i].code)) continue;
                    auto other = object(parseHandle(tags[i].value).value_or(kNoHandle));  // a default entry
                    if (!other) return other.error();
                    tags[i].value = formatHandle(*other);
                    continue;
                }
                auto child = ownedObject(parseHandle(tags[i].value).value_or(kNoHandle), handle);
                if (!child) return child.error();
                if (*child != kNoHandle) {
                    tags[i].value = formatHandle(*child);
                } else if (i > 1 && tags[i - 1].code == gc::kOtherName) {
                    tags.erase(--i, 2);
                    --i;
                }
            }
        } else if (auto fixed = translate(tags, true); !fixed) {
            return fixed.error();
        }
        setIdentity(tags, handle, gc::kHandle, owner, true);
        auto added = to_.addObject(std::move(tags), handle);
        if (!added) return added.error();
        if (auto data = extensionDictionaryOf(source, handle); !data) return data.error();
        return handle;
    }

    Result<void> ensure(std::string_view table, std::string_view name) {
        std::string_view trimmed = dxf::trimSpaces(name);
        if (trimmed.empty() || sameName(trimmed, "ByLayer") || sameName(trimmed, "ByBlock")) return {};
        auto found = recordNamed(table, trimmed);
        if (!found) return found.error();
        return {};
    }

    // Pointers lead to the target's objects (copying what they need); names of layers, linetypes,
    // styles and blocks are made to exist in the target. A pointer to what the target does not get
    // is dropped, or with `keepPlaces` (values of an xrecord, whose order means something) nulled.
    Result<void> translate(TagList& tags, bool keepPlaces = false) {
        for (std::size_t i = 1; i < tags.size(); ++i) {
            if (!isPointer(tags[i].code)) continue;
            Handle source = parseHandle(tags[i].value).value_or(kNoHandle);
            if (source == kNoHandle) continue;
            auto mine = object(source);
            if (!mine) return mine.error();
            if (*mine != kNoHandle || tags[i].code == gc::kXdataHandleRef || keepPlaces) {
                tags[i].value = formatHandle(*mine);
            } else {
                tags.erase(i--);  // what it pointed at is not in the target
            }
        }
        std::string type(tags.type());
        std::size_t end = tags.find(gc::kStructure, 1);
        for (std::size_t i = 1; i < tags.size(); ++i) {
            if (tags[i].code == gc::kStructure) {
                end = tags.find(gc::kStructure, i + 1);
                type = std::string(dxf::trimSpaces(tags[i].value));
                continue;
            }
            int code = tags[i].code;
            Result<void> done;
            if (type == "LAYER" || type == "MLINESTYLE") {
                if (code == gc::kLinetypeName) done = ensure("LTYPE", tags[i].value);
            } else if (type == "DIMSTYLE" || type == "LTYPE" || type == "STYLE" || type == "LAYOUT" || type == "MLEADERSTYLE") {
                // their references are pointers
            } else if (code == gc::kLayer) {
                done = ensure("LAYER", tags[i].value);
            } else if (code == gc::kLinetypeName) {
                done = ensure("LTYPE", tags[i].value);
            } else if (code == gc::kTextStyleName && (type == "TEXT" || type == "MTEXT" || type == "ATTDEF" || type == "ATTRIB")) {
                done = ensure("STYLE", tags[i].value);
            } else if (code == gc::kName && (type == "INSERT" || type == "DIMENSION")) {
                auto block = recordNamed("BLOCK_RECORD", dxf::trimSpaces(tags[i].value));
                if (!block) return block.error();
                // An anonymous block may have been given another name.
                if (*block != kNoHandle) tags[i].value = to_.blockName(*block);
            } else if (code == gc::kOtherName && type == "DIMENSION") {
                done = ensure("DIMSTYLE", tags[i].value);
            } else if (code == gc::kName && type == "MLINE") {
                auto style = namedEntryOf("ACAD_MLINESTYLE", dxf::trimSpaces(tags[i].value));
                if (!style) return style.error();
            }
            if (!done) return done;
            (void)end;
        }
        return {};
    }

    Database& to_;
    const Database& from_;
    std::unordered_map<Handle, Handle> map_;
};

}  // namespace

std::vector<std::string> recordNamesOf(const Database& db, RecordKind kind) {
    std::vector<std::string> out;
    if (kind == RecordKind::Block) {
        for (Handle block : db.blocks()) {
            std::string name = db.blockName(block);
            if (!name.empty() && name[0] != '*' && !isLayoutBlock(name) && name[0] != '$') out.push_back(name);
        }
        return out;
    }
    if (kind == RecordKind::Layout) {
        for (std::string& name : layoutNames(db))
            if (!sameName(name, "Model")) out.push_back(std::move(name));
        return out;
    }
    if (std::string_view dictionary = dictionaryOf(kind); !dictionary.empty()) return namedEntries(db, dictionary);
    for (Handle record : db.records(tableOf(kind))) {
        if (kind == RecordKind::TextStyle && (db.tags(record).integer(gc::kFlags).value_or(0) & kStyleShapeFile)) continue;
        std::string name = recordName(db, record);
        if (!name.empty()) out.push_back(std::move(name));
    }
    return out;
}

Result<std::vector<std::string>> copyRecords(Database& target, const Database& source, RecordKind kind, const std::vector<std::string>& names) {
    if (&target == &source) return dxf::makeError("cannot copy records of a drawing into itself");
    // Records of a 2000+ drawing carry what R12 cannot hold (owners, subclass markers, objects):
    // an R12 target becomes a 2018 drawing first.
    if (target.isR12() && !source.isR12())
        if (auto converted = target.convertFromR12(); !converted) return converted.error();
    if (!target.isR12() && source.isR12())
        return dxf::makeError(source.name() + ": records of an R12 drawing cannot be copied into a 2000 or later drawing");
    // The copy runs as (part of) a command so that a failure can be rolled back whole.
    target.beginCommand("COPY RECORDS");
    std::size_t mark = target.changeMark();
    std::vector<std::string> copied;
    Copier copier(target, source);
    Result<void> outcome;
    for (const std::string& name : recordNamesOf(source, kind)) {
        bool wanted = false;
        for (const std::string& n : names) wanted = wanted || sameName(n, name);
        if (!wanted) continue;
        bool present = kind == RecordKind::Block ? target.findBlock(name) != kNoHandle
                       : kind == RecordKind::Layout ? !sameName(name, "Model") && layoutBlock(target, name) != kNoHandle
                       : !dictionaryOf(kind).empty() ? namedEntry(target, dictionaryOf(kind), name) != kNoHandle
                       : target.findRecord(tableOf(kind), name) != kNoHandle;
        if (present) continue;
        auto made = !dictionaryOf(kind).empty() ? copier.namedEntryOf(dictionaryOf(kind), name) : copier.recordNamed(tableOf(kind), name);
        if (!made) {
            outcome = made.error();
            break;
        }
        if (*made != kNoHandle) copied.push_back(name);
    }
    if (!outcome) {
        if (target.journal().recording()) target.rollBack(mark);
        target.endCommand();
        return outcome.error();
    }
    target.endCommand();
    return copied;
}

}  // namespace veltarn::db
