// Whether one stored value obeys its field's definition: the value rules of the value check.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "classifier/FieldDef.h"
#include "commands/Fault.h"
#include "data/FieldValue.h"

namespace veltarn {

// Relative tolerance of real comparisons (list members, range ends, const defaults): values
// written and read back through text differ in their last digits, which no user means.
inline constexpr double kRealTolerance = 1e-9;

// The fault of `value` (null: the record is too short to hold it) against `field`; nullopt when
// it is legal. The rules, in order:
//   - a missing value is illegal, and so is a stored type other than the field's;
//   - an empty text is illegal in a notempty or required field, and legal in any other (a value
//     not filled in yet), whatever list, range or const the field has;
//   - a const field must hold its default;
//   - a list field must hold one of its values (text without regard to case, numbers by value);
//   - a range field must lie between its minimum and maximum (text in lower-case order).
// `table` names the table in the fault.
//
// A field's list, range and default are read into values once per field and kept: a check of a
// million objects asks the same few fields again and again.
class FieldRules {
public:
    std::optional<Fault> fault(const std::wstring& table, const FieldDef& field, const FieldValue* value);

private:
    struct Compiled {
        std::optional<FieldValue> constant;   // const fields with a default
        std::vector<FieldValue> allowed;      // list fields; items that do not read are left out
        std::optional<FieldValue> low, high;  // range fields whose ends both read
    };
    const Compiled& compiled(const FieldDef& field);

    std::unordered_map<const FieldDef*, Compiled> compiled_;
};

}  // namespace veltarn
