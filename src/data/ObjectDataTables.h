// The drawing-level half of the object-data store: the "ODEMUDATA" dictionary in the named objects
// dictionary, whose entries are table definitions (an xrecord of (1 name, typed value) pairs per
// field), and the process-wide cache of its id per database.
#pragma once

#include "data/ObjectDataRecord.h"
#include "host/Database.h"
#include "host/Documents.h"

#include <memory>
#include <string>
#include <vector>

namespace veltarn {

inline constexpr const wchar_t* kObjectDataDictionary = L"ODEMUDATA";

// Result codes of the store, shared with the record cursor.
inline constexpr int kOdOk = 0;
inline constexpr int kOdCannotRead = 3;       // extension dictionary or records xrecord unreadable
inline constexpr int kOdNoData = 11;          // no data, or the records xrecord cannot be written
inline constexpr int kOdCannotOpenEntity = 18;
inline constexpr int kOdTableExists = 20;

// The mode under which listTables() lists; any other mode lists nothing.
inline constexpr int kListTablesMode = 7;

// The id of "ODEMUDATA", created when the drawing has none. Creation locks the document of `db`
// for exclusive write (when `documents` knows it; side databases need no lock) and adds the
// dictionary to the named objects dictionary; the dictionary is never deleted afterwards. Null
// only when it can be neither found nor made (the named objects dictionary is opened elsewhere).
// In an R12 drawing the request converts the drawing to 2018. Ids are cached per database under
// one process-wide mutex; a cached id that no longer opens (its creation was undone) is looked up
// again.
host::ObjectId getObjectDataDictionary(host::Database& db, host::Documents* documents = nullptr);

// The same, opened in `mode`: the form the store itself uses.
std::unique_ptr<host::DbDictionary> openObjectDataDictionary(host::Database& db, host::OpenMode mode,
                                                             host::Documents* documents = nullptr);

// Looks "ODEMUDATA" up without creating it (for read-only callers); null when absent.
host::ObjectId findObjectDataDictionary(host::Database& db);

// Drops the cached id of `db`: to be called before a database is destroyed, so that a later
// database at the same address starts afresh.
void forgetObjectDataDictionary(const host::Database& db);

// Adds the definition of `table` with one (1 field name, value) pair per field of `record`, in
// order, each value under the code of its type (a value of type None as an empty text). Returns
// 20 when a definition of that name exists (it is never replaced), 11 when "ODEMUDATA" or the new
// entry cannot be written, else 0.
int createTableDefinition(host::Database& db, const std::wstring& table, const ObjectDataRecord& record,
                          host::Documents* documents = nullptr);

// Appends the table names of "ODEMUDATA", in dictionary order, to `tables` when the drawing has
// the dictionary and `mode` is kListTablesMode; otherwise leaves `tables` alone. Returns 0.
int listTables(host::Database& db, int mode, std::vector<std::wstring>& tables);

// The definition of `table` as a record: one value per (name, value) pair, named after the field
// and typed by the value's group code (None for other codes); an odd trailing element is ignored.
// False, with `definition` emptied, when the drawing has no such definition or it is no xrecord.
bool readTableDefinition(host::Database& db, const std::wstring& table, ObjectDataRecord& definition,
                         host::Documents* documents = nullptr);
// The same for the definition xrecord `id`, already looked up; the record's table is left empty.
bool readTableDefinition(host::Database& db, host::ObjectId id, ObjectDataRecord& definition);

}  // namespace veltarn
