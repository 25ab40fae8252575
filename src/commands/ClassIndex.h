// Lookups the commands make over and over, prepared once per command from the loaded classifier:
// the class a record names, classes and class groups by name, and the tables by name.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "classifier/Classifier.h"
#include "data/ObjectDataRecord.h"

namespace veltarn {

class ClassIndex {
public:
    explicit ClassIndex(const Classifier& classifier);

    const Classifier& classifier() const { return classifier_; }

    // The object definition called `name` (any case); null when none is.
    const ClassDef* findClass(std::wstring_view name) const;
    // The first class group called `name` (any case), depth first from the root in file order.
    const ClassNode* findNode(std::wstring_view name) const;
    // The object definitions of `node` and of every group below it, depth first in file order,
    // each once; members the classifier does not define are left out.
    std::vector<const ClassDef*> classesBelow(const ClassNode& node) const;

    // The classifier's table called `name` (any case), as the first class that has it defines it.
    // Tables of one name agree in their fields' names and types, but each class may give them
    // their own attributes, lists and ranges: where a record's class is known, ask tableOf().
    // Null when no class has it.
    const TableDef* findTable(std::wstring_view name) const;
    // The definition of the record's table that applies to it: its class's, else the first.
    const TableDef* tableOf(const ObjectDataRecord& record) const;

    // The class a record names: its table looked up, then for each key field of that table in
    // the table's order, the record's value of that field taken as text and the class of that
    // table with that key value looked up. The first class found; null when none is.
    const ClassDef* classOfRecord(const ObjectDataRecord& record) const;

private:
    const Classifier& classifier_;
    std::unordered_map<std::wstring, const TableDef*> tables_;
    // lower-case table name, a NUL, lower-case key value
    std::unordered_map<std::wstring, const ClassDef*> byTableAndKey_;
};

// The value that the key field `key` of a table of `def` holds on objects of the class: the
// field's template with "$(obj_name)" replaced by the class's display name.
std::wstring classKeyValue(const ClassDef& def, const FieldDef& key);

// A record's value as text, for comparing keys; empty for a value of type None.
std::wstring valueText(const FieldValue& value);

// The record's value of the field called `name` (any case); null when the record has none.
const FieldValue* findValue(const ObjectDataRecord& record, std::wstring_view name);

}  // namespace veltarn
