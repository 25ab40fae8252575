// The record cursor: reads, updates, appends and removes the object-data records of one entity.
//
// An entity's records live in its extension dictionary, one xrecord per table under the table's
// name, record after record with no separator: record i of a table of n fields is values i*n to
// (i+1)*n-1. Only entries whose key names a table of "ODEMUDATA" are records; other applications'
// entries are passed over and never touched.
//
// Reading every record of an entity's first table:
//     ObjectData cursor(db);
//     for (int rc = cursor.open(entity); rc == 0 && !cursor.atEnd(); cursor.next()) {
//         if (cursor.read(record) != 0) break;
//         ...
//     }
// and of its other tables, when the walk is at its end, after each nextTable() that holds.
#pragma once

#include "data/ObjectDataRecord.h"
#include "data/ObjectDataTables.h"
#include "host/Database.h"
#include "host/Documents.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace veltarn {

class ObjectData {
public:
    // `documents` is used only to lock the document when "ODEMUDATA" has to be created.
    explicit ObjectData(host::Database& db, host::Documents* documents = nullptr)
        : db_(db), documents_(documents) {}

    // Positions the cursor on the first record of the entity's first table, in the extension
    // dictionary's own order. With `filter`, the cursor then moves on to the entry whose key is
    // exactly `filter` (case-sensitive); when there is none it stands at the end: atEnd() is true
    // and read() gives 3. Returns 18 when the entity cannot be opened, 11 when it has no
    // extension dictionary or no entry naming a table, else 0.
    int open(host::ObjectId entity, std::optional<std::wstring> filter = std::nullopt);

    // Reads the current record: the table name, one value per field of the table's definition,
    // named after the field and typed by its group code (None for other codes). Values beyond
    // the end of a short records xrecord stay None. Sets atEnd() when no value follows the
    // record. Returns 3 when the extension dictionary, the definition or the records xrecord
    // cannot be read, else 0.
    int read(ObjectDataRecord& record);

    // Rewrites the current record in place. Each value keeps its stored group code and takes the
    // record's value converted to it: text, real (unchanged, fraction and all), integer, or a
    // point stored as X, Z, Z. Values of type None, and values under other codes, are left as
    // they were. Returns 11 when the records xrecord cannot be written, else 0; a conversion
    // that is not allowed throws 6 or 11 with nothing written. Needs a read() first.
    int update(const ObjectDataRecord& record);

    // Removes the current record. When it was the table's last, the table's entry goes from the
    // extension dictionary, the records xrecord is erased, and the extension dictionary is
    // released (the drawing deletes it when nothing else is left in it). Sets atEnd(). Returns
    // 3 when the definition cannot be read, 11 when the records xrecord cannot be written, else 0.
    int remove();

    // Moves to the next record of the same table.
    void next() { offset_ += fieldCount_; }
    // Moves to the first record of the entity's next entry that names a table, passing over other
    // applications' entries: a walk over every record of every table goes on here when atEnd().
    // False when there is no further table (nor with a filter, which names one table).
    bool nextTable();
    bool atEnd() const { return end_; }

    // Appends `record` to the entity's records of `record.table`, creating the extension dictionary
    // and the table's entry as needed. Value i is converted to the type of field i
    // (`fieldTypes[i]`; the value's own type where the list is shorter): integers from reals by
    // truncation; reals as whole numbers only, by the same truncation (2.75 is stored as 2.0:
    // drawings of earlier versions hold exactly that); text from any value by its text form;
    // points parsed from the value's text. A point into a number field throws 6, a value that is
    // no point text into a point field throws 11, and nothing is written then. Returns 18 when the
    // entity cannot be opened for write, 11 when the extension dictionary or the table's entry
    // cannot be written (an entry of that name that is no xrecord is left as it is), else 0.
    static int append(host::Database& db, host::ObjectId entity, const ObjectDataRecord& record,
                      std::span<const FieldType> fieldTypes = {});

private:
    // The field names of the definition `id`, read once per cursor: definitions are never
    // rewritten (a table is defined once), and reading one per record doubled the cost of a read.
    const std::vector<std::wstring>* fieldNames(host::ObjectId id);

    bool standsOnEntry() const { return position_ < entries_.size(); }
    const std::wstring& currentKey() const { return entries_[position_].first; }

    host::Database& db_;
    host::Documents* documents_;
    host::ObjectId entity_;
    host::ObjectId extensionDictionary_;
    std::vector<host::DbDictionary::Entry> entries_;  // the iteration over the dictionary
    std::size_t position_ = 0;
    host::ObjectId records_;
    // The records xrecord's chain, read by the first read() after open() and kept through the
    // walk (update() keeps it current); changes made other than through this cursor show after
    // the next open().
    host::ResultBuffer chain_;
    bool chainRead_ = false;
    host::ObjectId definition_;  // of the current entry's table, looked up when the cursor opens
    std::size_t offset_ = 0;
    std::int32_t fieldCount_ = 0;
    bool end_ = false;
    std::optional<std::wstring> filter_;
    struct Definition {
        host::ObjectId id;
        std::vector<std::wstring> names;
    };
    std::vector<Definition> definitions_;  // a few tables at most, most recent last
};

}  // namespace veltarn
