// One object-data record in memory, and the group codes that store its values in the drawing.
#pragma once

#include "data/FieldValue.h"

#include <string>
#include <vector>

namespace veltarn {

// Group codes of record values (and of the value half of each table-definition pair). A value
// under any other code is skipped by the reader and reads as type None.
inline constexpr int kCharacterCode = 1;  // also the field-name half of a definition pair
inline constexpr int kPointCode = 10;
inline constexpr int kRealCode = 40;
inline constexpr int kIntegerCode = 90;

// The group code that stores values of `type`; kCharacterCode for None and unknown types.
int groupCodeOf(FieldType type);

// The values of one record of a table, in the table's field order, each named after its field.
struct ObjectDataRecord {
    std::wstring table;
    std::vector<FieldValue> fields;

    void clear() {
        table.clear();
        fields.clear();
    }
};

}  // namespace veltarn
