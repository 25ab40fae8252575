// The checks of AUDIT, one pass over every live object, then the structures between them
// (dictionaries, blocks, object data). Repairs go through the database, so they are undoable.
#include "cad/audit/Auditor.h"

#include "cad/db/Dictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/NewDrawing.h"
#include "cad/db/SymbolTables.h"
#include "cad/db/Xrecord.h"
#include "cad/dxf/NumberText.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <unordered_map>

namespace veltarn::audit {
namespace {

using db::Handle;
using db::OpenStatus;
using db::TagList;
namespace gc = db::gc;

// The object-data layout: the named objects dictionary's entry of table definitions.
constexpr const char* kObjectDataDictionary = "ODEMUDATA";
// The group code of an object-data field's values: integer, real, character, point.
constexpr int kFieldCodes[] = {gc::kCount90, gc::kReal, gc::kText, gc::kX};

std::string trimmed(std::string_view text) { return std::string(dxf::trimSpaces(text)); }

// Where an application group ("102 {NAME" ... "102 }") begins and ends; npos when absent.
struct Group {
    std::size_t begin = TagList::npos, end = TagList::npos;  // the opening and closing 102
};

Group findGroup(const TagList& tags, std::string_view name) {
    // The object's own groups: an insert's attributes and a polyline's vertices have theirs.
    const std::size_t end = std::min(tags.find(gc::kStructure, 1), tags.size());
    for (std::size_t i = 1; i < end; ++i) {
        if (tags[i].code != gc::kControlString || dxf::trimSpaces(tags[i].value) != name) continue;
        for (std::size_t j = i + 1; j < end; ++j)
            if (tags[j].code == gc::kControlString)
                return {i, dxf::trimSpaces(tags[j].value) == db::kGroupEnd ? j : TagList::npos};
        return {i, TagList::npos};
    }
    return {};
}

// The index of the owner tag: the first 330 outside application groups; npos when none.
std::size_t ownerIndex(const TagList& tags) {
    bool inGroup = false;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        const int code = tags[i].code;
        if (code == gc::kControlString)
            inGroup = dxf::trimSpaces(tags[i].value) != db::kGroupEnd;
        else if (code == gc::kSoftPointer && !inGroup)
            return i;
    }
    return TagList::npos;
}

// The index of the extension-dictionary pointer (the 360 of the group); npos when none.
std::size_t extensionPointerIndex(const TagList& tags) {
    const Group group = findGroup(tags, db::kXdictionaryGroup);
    if (group.begin == TagList::npos || group.end == TagList::npos) return TagList::npos;
    return tags.find(gc::kHardOwner, group.begin, group.end);
}

Handle extensionPointer(const TagList& tags) {
    const std::size_t at = extensionPointerIndex(tags);
    return at == TagList::npos ? db::kNoHandle : db::parseHandle(tags[at].value).value_or(db::kNoHandle);
}

class Auditor {
public:
    Auditor(const db::Database& db, db::Database* writable) : db_(db), fix_(writable) {}

    std::vector<Finding> run() {
        loadRepairs();
        for (Handle handle : db_.liveHandles())
            checkObject(handle);
        checkDictionaries();
        checkBlockRecursion();
        checkObjectData();
        return std::move(findings_);
    }

private:
    void report(std::string code, Handle handle, std::string message, bool fixed) {
        findings_.push_back({std::move(code), std::move(message), handle, fixed});
    }

    std::string label(Handle handle) const {
        std::string type(db_.typeName(handle));
        return (type.empty() ? std::string("object") : type) + " " + db::formatHandle(handle);
    }

    bool live(Handle handle) const { return handle != db::kNoHandle && db_.exists(handle); }

    // Writes changed tags back; false (nothing changed) when the object cannot be opened.
    bool rewrite(Handle handle, const std::function<void(TagList&)>& change) {
        if (!fix_) return false;
        db::ObjectWriter writer = fix_->openForWrite(handle, /*evenIfLocked=*/true);
        if (!writer) return false;
        change(writer.tags());
        return true;
    }

    // What the reader and the database repair by themselves: reported as fixed, whatever the mode.
    void loadRepairs() {
        for (const db::DuplicateHandle& duplicate : db_.duplicateHandles())
            report("duplicate-handle", duplicate.renumbered,
                   duplicate.where + ": " + duplicate.type + " " + db::formatHandle(duplicate.handle) +
                       " has a handle an earlier object has; renumbered to " + db::formatHandle(duplicate.renumbered),
                   true);
        const Handle seed = db_.fileHandleSeed();
        if (seed != db::kNoHandle && seed < db_.fileMinimumSeed())
            report("handseed-too-low", db::kNoHandle,
                   "$HANDSEED " + db::formatHandle(seed) + " is not above the largest handle " +
                       db::formatHandle(db_.fileMinimumSeed() - 1) +
                       "; the drawing is saved with a seed above every handle",
                   true);
    }

    void checkObject(Handle handle) {
        TagList tags;
        if (db_.read(handle, tags) != OpenStatus::Ok || tags.empty()) return;
        const std::string type(dxf::trimSpaces(tags.type()));
        if (!db_.isR12()) {
            checkOwner(handle, tags);
            checkExtensionDictionary(handle, tags);
            if (type == "SORTENTSTABLE") checkSortents(handle, tags);
            // Objects only: ezdxf writes MULTILEADER entities without their entry, and a drawing
            // it made must audit clean; entities the database appends get theirs anyway.
            if (db_.sectionOf(handle) == db::Section::Objects && isClassType(type) &&
                classesChecked_.insert(type).second && !db_.hasClass(type)) {
                if (fix_) fix_->ensureClass(type);
                report("missing-class", handle,
                       label(handle) + ": the type has no CLASSES entry" + std::string(fix_ ? "; added" : ""),
                       fix_ && db_.hasClass(type));
            }
        }
        if (db_.blockOf(handle) != db::kNoHandle) checkLayer(handle, tags);
    }

    static bool isClassType(const std::string& type) {
        static const std::vector<std::string> kClassTypes = db::standardClassNames();
        return std::find(kClassTypes.begin(), kClassTypes.end(), type) != kClassTypes.end();
    }

    void checkOwner(Handle handle, const TagList& tags) {
        const std::size_t at = ownerIndex(tags);
        if (at == TagList::npos) return;
        const Handle owner = db::parseHandle(tags[at].value).value_or(db::kNoHandle);
        if (owner == db::kNoHandle) return;  // the root dictionary and the table heads
        const Handle block = db_.blockOf(handle);
        const bool missing = !live(owner);
        if (!missing && (block == db::kNoHandle || db_.typeName(owner) == "BLOCK_RECORD")) return;
        // An entity lies in a block: its record is the owner it must have.
        const bool repairable = block != db::kNoHandle && db_.typeName(block) == "BLOCK_RECORD";
        bool fixed = false;
        if (repairable)
            fixed = rewrite(handle, [&](TagList& t) {
                if (std::size_t i = ownerIndex(t); i != TagList::npos) t[i].value = db::formatHandle(block);
            });
        const std::string repair = fixed ? "; re-owned to BLOCK_RECORD " + db::formatHandle(block) : "";
        if (missing)
            report("missing-owner", handle,
                   label(handle) + ": its owner " + db::formatHandle(owner) + " does not exist" + repair, fixed);
        else
            report("entity-owner-not-block", handle,
                   label(handle) + ": owned by " + label(owner) + ", not by a block record" + repair, fixed);
    }

    void checkExtensionDictionary(Handle handle, const TagList& tags) {
        const std::size_t at = extensionPointerIndex(tags);
        if (at == TagList::npos) return;
        const Handle dictionary = db::parseHandle(tags[at].value).value_or(db::kNoHandle);
        if (!live(dictionary)) {
            const bool fixed = rewrite(handle, [&](TagList& t) {
                const Group g = findGroup(t, db::kXdictionaryGroup);
                if (g.begin != TagList::npos && g.end != TagList::npos) t.erase(g.begin, g.end - g.begin + 1);
            });
            report("missing-xdictionary", handle,
                   label(handle) + ": its extension dictionary " + trimmed(tags[at].value) + " does not exist" +
                       (fixed ? "; the pointer was removed" : ""),
                   fixed);
            return;
        }
        const Handle owner = db_.ownerOf(dictionary);
        if (owner == handle) return;
        // Two objects pointing at one dictionary: giving it to one would take it from the other.
        if (TagList ownerTags;
            live(owner) && db_.read(owner, ownerTags) == OpenStatus::Ok && extensionPointer(ownerTags) == dictionary) {
            report("xdictionary-owner", dictionary,
                   label(dictionary) + ": the extension dictionary of " + label(handle) + " is that of " +
                       label(owner) + " too, which owns it",
                   false);
            return;
        }
        const bool fixed = rewrite(dictionary, [&](TagList& t) {
            const std::string now = db::formatHandle(handle);
            // The reactor that names the old owner names the new one.
            const Group reactors = findGroup(t, db::kReactorsGroup);
            if (reactors.begin != TagList::npos && reactors.end != TagList::npos)
                for (std::size_t i = reactors.begin + 1; i < reactors.end; ++i)
                    if (t[i].code == gc::kSoftPointer && db::parseHandle(t[i].value) == owner) t[i].value = now;
            if (std::size_t i = ownerIndex(t); i != TagList::npos)
                t[i].value = now;
            else
                t.insert(2, gc::kSoftPointer, now);  // after the handle
        });
        report("xdictionary-owner", dictionary,
               label(dictionary) + ": the extension dictionary of " + label(handle) + " is owned by " +
                   (owner == db::kNoHandle ? std::string("nothing") : db::formatHandle(owner)) +
                   (fixed ? "; re-owned to " + db::formatHandle(handle) : ""),
               fixed);
    }

    void checkSortents(Handle table, const TagList& tags) {
        std::vector<std::string> missing;
        for (std::size_t i = 1; i < tags.size(); ++i)
            if (tags[i].code == gc::kSortEntity && !live(db::parseHandle(tags[i].value).value_or(db::kNoHandle)))
                missing.push_back(trimmed(tags[i].value));
        if (missing.empty()) return;
        const bool fixed = rewrite(table, [&](TagList& t) {
            for (std::size_t i = t.size(); i-- > 1;) {
                if (t[i].code != gc::kSortEntity || live(db::parseHandle(t[i].value).value_or(db::kNoHandle))) continue;
                // The entity and the sort handle that follows it go together.
                t.erase(i, i + 1 < t.size() && t[i + 1].code == gc::kSortHandle ? 2 : 1);
            }
        });
        for (const std::string& entity : missing)
            report("missing-sortents-entity", table,
                   label(table) + ": the draw order lists entity " + entity + ", which does not exist" +
                       (fixed ? "; the entry was removed" : ""),
                   fixed);
    }

    void checkLayer(Handle entity, const TagList& tags) {
        const std::optional<std::string_view> layer = tags.text(gc::kLayer);
        if (!layer) return;
        const std::string name = trimmed(*layer);
        if (name.empty()) return;
        // Looked up once per name: one finding per layer, whether or not the first one created it.
        const auto [known, first] = layers_.try_emplace(db::upperName(name), false);
        if (!first) return;
        known->second = db_.findRecord("LAYER", name) != db::kNoHandle;
        if (known->second) return;
        bool fixed = false;
        if (fix_) {
            db::Layer added;
            added.name = name;
            fixed = static_cast<bool>(db::writeLayer(*fix_, added));
        }
        report("missing-layer", entity,
               label(entity) + ": layer \"" + name + "\" is not defined" + (fixed ? "; the layer was created" : ""),
               fixed);
    }

    void checkDictionaries() {
        if (db_.isR12()) return;
        std::vector<Handle> dictionaries;
        for (Handle handle : db_.liveHandles())
            if (db::isDictionaryType(db_.typeName(handle))) dictionaries.push_back(handle);
        for (Handle dictionary : dictionaries) {
            std::vector<Handle> missing;
            for (const db::DictionaryEntry& entry : db::dictionaryEntries(db_, dictionary)) {
                if (live(entry.value)) continue;
                missing.push_back(entry.value);
                report("missing-dictionary-entry", dictionary,
                       label(dictionary) + ": entry \"" + entry.key + "\" leads to " + db::formatHandle(entry.value) +
                           ", which does not exist" + (fix_ ? "; the entry was removed" : ""),
                       fix_ != nullptr);
            }
            if (fix_)
                for (Handle value : missing)
                    db::removeEntriesTo(*fix_, dictionary, value);
        }
        // Dictionaries that contain themselves, directly or through others: depth first, a
        // dictionary met again while its own entries are being walked closes a cycle.
        // Walked with a stack of its own: a damaged file may nest dictionaries very deep.
        enum class Mark : std::uint8_t { Open, Done };
        std::unordered_map<Handle, Mark> marks;
        struct Step {
            Handle dictionary;
            std::vector<db::DictionaryEntry> entries;
            std::size_t next = 0;
        };
        for (Handle start : dictionaries) {
            if (marks.count(start)) continue;
            std::vector<Step> stack;
            stack.push_back({start, db::dictionaryEntries(db_, start)});
            marks[start] = Mark::Open;
            while (!stack.empty()) {
                Step& step = stack.back();
                if (step.next == step.entries.size()) {
                    marks[step.dictionary] = Mark::Done;
                    stack.pop_back();
                    continue;
                }
                const db::DictionaryEntry entry = step.entries[step.next++];
                if (!live(entry.value) || !db::isDictionaryType(db_.typeName(entry.value))) continue;
                const auto mark = marks.find(entry.value);
                if (mark == marks.end()) {
                    marks[entry.value] = Mark::Open;
                    stack.push_back({entry.value, db::dictionaryEntries(db_, entry.value)});
                } else if (mark->second == Mark::Open) {
                    report("dictionary-cycle", step.dictionary,
                           label(step.dictionary) + ": entry \"" + entry.key + "\" leads back to " +
                               label(entry.value) + ", which contains it",
                           false);
                }
            }
        }
    }

    void checkBlockRecursion() {
        // The blocks each block inserts, by the INSERTs among its entities.
        std::map<Handle, std::vector<std::pair<Handle, Handle>>> inserts;  // block -> (INSERT, block inserted)
        for (Handle block : db_.blocks())
            for (Handle entity : db_.entitiesOf(block)) {
                if (db_.typeName(entity) != "INSERT") continue;
                TagList tags;
                if (db_.read(entity, tags) != OpenStatus::Ok) continue;
                const Handle inserted = db_.findBlock(trimmed(tags.text(gc::kName).value_or("")));
                if (inserted != db::kNoHandle) inserts[block].emplace_back(entity, inserted);
            }
        // Whether `from` leads to `target` through inserts (itself included); asked once per pair,
        // as model space may insert the same block many thousand times.
        std::map<std::pair<Handle, Handle>, bool> answers;
        auto walk = [&](Handle from, Handle target) {
            std::set<Handle> seen{from};
            std::vector<Handle> todo{from};
            while (!todo.empty()) {
                const Handle block = todo.back();
                todo.pop_back();
                if (block == target) return true;
                if (auto it = inserts.find(block); it != inserts.end())
                    for (const auto& [insert, inserted] : it->second)
                        if (seen.insert(inserted).second) todo.push_back(inserted);
            }
            return false;
        };
        auto reaches = [&](Handle from, Handle target) {
            const auto [answer, asked] = answers.try_emplace({from, target}, false);
            if (asked) answer->second = walk(from, target);
            return answer->second;
        };
        for (const auto& [block, list] : inserts)
            for (const auto& [insert, inserted] : list)
                if (reaches(inserted, block))
                    report("recursive-block", insert,
                           label(insert) + ": block \"" + db_.blockName(block) + "\" inserts " +
                               (inserted == block ? std::string("itself")
                                                  : "\"" + db_.blockName(inserted) + "\", which inserts it"),
                           false);
    }

    void checkObjectData() {
        const Handle root = db_.namedObjectsDictionary();
        if (root == db::kNoHandle) return;
        const Handle tables = db::findEntry(db_, root, kObjectDataDictionary);
        if (!live(tables)) return;
        // Each well-formed table's field codes, by name as it was written.
        std::vector<std::pair<std::string, std::vector<int>>> definitions;
        for (const db::DictionaryEntry& entry : db::dictionaryEntries(db_, tables)) {
            if (db_.typeName(entry.value) != "XRECORD") continue;
            auto values = db::readXrecord(db_, entry.value);
            if (!values) continue;
            const db::ResultBuffer& definition = *values;
            std::string problem;
            std::vector<int> fields;
            if (definition.size() % 2 != 0)
                problem = "holds " + std::to_string(definition.size()) + " values, not name and type pairs";
            for (std::size_t i = 0; problem.empty() && i < definition.size(); i += 2) {
                const int code = definition[i + 1].code;
                if (definition[i].code != gc::kText)
                    problem = "value " + std::to_string(i + 1) + " has group code " +
                              std::to_string(definition[i].code) + ", not a field name (1)";
                else if (std::find(std::begin(kFieldCodes), std::end(kFieldCodes), code) == std::end(kFieldCodes))
                    problem = "field \"" + definition[i].text + "\" has group code " + std::to_string(code) +
                              ", not a field type (90, 40, 1, 10)";
                else
                    fields.push_back(code);
            }
            if (!problem.empty()) {
                report("od-table-definition", entry.value,
                       label(entry.value) + ": object-data table \"" + entry.key + "\" " + problem, false);
                continue;
            }
            if (!fields.empty()) definitions.emplace_back(entry.key, std::move(fields));
        }
        if (definitions.empty()) return;
        for (Handle object : db_.liveHandles()) {
            TagList tags;
            if (db_.blockOf(object) == db::kNoHandle || db_.read(object, tags) != OpenStatus::Ok) continue;
            const Handle extension = extensionPointer(tags);
            if (!live(extension)) continue;
            for (const db::DictionaryEntry& entry : db::dictionaryEntries(db_, extension)) {
                auto definition = std::find_if(definitions.begin(), definitions.end(),
                                               [&](const auto& d) { return db::sameName(d.first, entry.key); });
                if (definition == definitions.end() || db_.typeName(entry.value) != "XRECORD") continue;
                checkRecords(object, entry.value, definition->first, definition->second);
            }
        }
    }

    void checkRecords(Handle object, Handle xrecord, const std::string& table, const std::vector<int>& fields) {
        auto values = db::readXrecord(db_, xrecord);
        if (!values) return;
        const std::string where = label(object) + ": object data of table \"" + table + "\" (" + label(xrecord) + ")";
        if (values->size() % fields.size() != 0) {
            report("od-record-length", xrecord,
                   where + " holds " + std::to_string(values->size()) + " values, not a whole number of " +
                       std::to_string(fields.size()) + "-field records",
                   false);
            return;
        }
        for (std::size_t i = 0; i < values->size(); ++i) {
            const int expected = fields[i % fields.size()];
            if ((*values)[i].code == expected) continue;
            report("od-value-type", xrecord,
                   where + ": record " + std::to_string(i / fields.size() + 1) + " field " +
                       std::to_string(i % fields.size() + 1) + " has group code " + std::to_string((*values)[i].code) +
                       ", the table says " + std::to_string(expected),
                   false);
            return;  // one finding per xrecord: the rest usually follows from the first
        }
    }

    const db::Database& db_;
    db::Database* fix_;
    std::vector<Finding> findings_;
    std::set<std::string> classesChecked_;
    std::unordered_map<std::string, bool> layers_;  // upper-case name: defined when the audit met it
};

}  // namespace

std::vector<Finding> auditDrawing(const db::Database& db) { return Auditor(db, nullptr).run(); }

std::vector<Finding> auditAndFix(db::Database& db) { return Auditor(db, &db).run(); }

std::string summary(const std::vector<Finding>& findings) {
    const auto fixed = std::count_if(findings.begin(), findings.end(), [](const Finding& f) { return f.fixed; });
    return std::to_string(findings.size()) + " errors found, " + std::to_string(fixed) + " fixed";
}

}  // namespace veltarn::audit
