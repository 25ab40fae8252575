// DICTIONARY objects: ordered maps from a key to an object. Read from and written back into the
// dictionary's tags, so other data it carries (reactors, the default entry of a dictionary with
// default, the hard-owner and cloning flags) stays as it is.
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::db {

struct DictionaryEntry {
    std::string key;
    Handle value = kNoHandle;
    int code = 350;  // 350 soft owner, 360 hard owner
};

// Keys compare without regard to case, as CAD programs look them up.
class Dictionary {
public:
    explicit Dictionary(const TagList& tags);

    const std::vector<DictionaryEntry>& entries() const { return entries_; }
    Handle find(std::string_view key) const;
    bool hardOwner() const { return hardOwner_; }  // 280
    int cloning() const { return cloning_; }       // 281 duplicate-record cloning

private:
    std::vector<DictionaryEntry> entries_;
    bool hardOwner_ = false;
    int cloning_ = 1;
};

bool isDictionaryType(std::string_view type);

// The entries of a dictionary in its own order; empty when `dictionary` is not one.
std::vector<DictionaryEntry> dictionaryEntries(const Database& db, Handle dictionary);
Handle findEntry(const Database& db, Handle dictionary, std::string_view key);

// Adds `key` -> `value`, or points an existing key at `value`. Sets `value`'s owner to the
// dictionary. Fails when `dictionary` is not an open dictionary.
Result<void> setEntry(Database& db, Handle dictionary, std::string_view key, Handle value);
// Removes `key` from the dictionary without erasing its object; false when the key is absent.
Result<bool> removeEntry(Database& db, Handle dictionary, std::string_view key);
// Removes every entry that points at `value`.
void removeEntriesTo(Database& db, Handle dictionary, Handle value);

// Creates an empty dictionary owned by `owner` (kNoHandle for none); it is not yet anyone's entry.
Result<Handle> createDictionary(Database& db, Handle owner, bool hardOwner = false);
// The dictionary under `key` in `parent`, created (as a dictionary) when missing and `create`.
Result<Handle> childDictionary(Database& db, Handle parent, std::string_view key, bool create);
// An entry of the named objects dictionary ("ACAD_LAYOUT", "ODEMUDATA"...), created on request.
Result<Handle> namedDictionary(Database& db, std::string_view key, bool create);

}  // namespace veltarn::db
