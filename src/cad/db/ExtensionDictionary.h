// Extension dictionaries: the dictionary an object carries in its `102 {ACAD_XDICTIONARY` group,
// owned by the object, where applications keep their data about it.
#pragma once

#include "cad/db/Database.h"
#include "cad/db/Xrecord.h"

namespace veltarn::db {

// The object's extension dictionary; kNoHandle when it has none (or it was erased).
Handle extensionDictionary(const Database& db, Handle object);
// Creates the extension dictionary, or returns the one the object has. Fails on an object that
// cannot be opened for write. An R12 drawing is converted to 2018 first.
Result<Handle> createExtensionDictionary(Database& db, Handle object);
// Makes `dictionary` (already owned by the object) the object's extension dictionary, replacing
// the group of one it had: for a dictionary copied whole from another drawing.
Result<void> attachExtensionDictionary(Database& db, Handle object, Handle dictionary);
// Releases the extension dictionary when it is empty: the dictionary is erased and the group
// removed. Returns false (and changes nothing) when it still holds entries or there is none.
bool releaseExtensionDictionary(Database& db, Handle object);

// Appends an entity that carries, from the start, an extension dictionary with one xrecord under
// `key`: the path for many new objects with their data, written once instead of edited three
// times. Returns the entity's handle.
Result<Handle> appendEntityWithXrecord(Database& db, Handle block, TagList entity, std::string_view key, const ResultBuffer& values);

// Erases an entity or object and cleans what refers to it: its entry in an owning dictionary,
// its extension dictionary with everything that dictionary owns, and (for a dictionary) the
// objects it owns. Entities on locked layers are erased too; the caller checks the layer.
OpenStatus eraseObject(Database& db, Handle object);

}  // namespace veltarn::db
