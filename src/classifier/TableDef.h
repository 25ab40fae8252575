// One object-data table of a class definition ("od_name" and its fields).
#pragma once

#include "classifier/FieldDef.h"

#include <string>
#include <vector>

namespace veltarn {

struct TableDef {
    // At most 25 characters, none of the refused name characters (checked by the reader).
    std::wstring name;
    std::vector<FieldDef> fields;

    // At least one field, exactly one key field, every other field valid.
    bool isWellFormed() const;

    // The field called `name` (without regard to case), or null.
    const FieldDef* findField(std::wstring_view name) const;

    // Same name (without regard to case) and the same fields in every detail.
    bool isIdenticalTo(const TableDef& other) const;

    // What a drawing stores of a table agrees: a table of another name always does; one of the
    // same name must have the same field names (without regard to case) in the same order with
    // the same types.
    bool isCompatibleWith(const TableDef& other) const;
};

}  // namespace veltarn
