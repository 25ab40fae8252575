// Why an object fails the object-data test or the property test: what reports and an explain
// command print. The codes are stable: reports written today are read by scripts tomorrow.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace veltarn {

enum class FaultCode {
    // object-data test
    kNoRecord,         // the class's table has no record on the object
    kKeyMismatch,      // records of the table exist, none with the class's key value
    kClassHasNoTable,  // a class without tables never holds
    kUnknownName,      // the name is neither a class nor a class group
    kNoMemberHolds,    // a class group: no class of it or below it holds
    kMissingValue,     // the record is shorter than the table: the field has no value
    kWrongType,        // the stored type is not the field's type
    kConstChanged,     // a const field differs from its default
    kEmptyValue,       // a notempty or required field holds an empty text
    kNotInList,        // the value is none of the field's list
    kOutOfRange,       // the value lies outside the field's range
    // property test
    kWrongEntityType,  // the object's type is none of the class's types
    kWrongProperty,    // a graphic property disagrees with the class
};

// The code as reports write it: "no-record", "not-in-list", ...
std::wstring_view faultCodeName(FaultCode code);

struct Fault {
    FaultCode code;
    std::wstring table;     // the table concerned; empty for property faults
    std::wstring field;     // the field, or the property keyword ("layer", "color", ...)
    std::wstring found;     // the value found on the object, as text
    std::wstring expected;  // what the class asks, as text ("a, b, c", "1 .. 10", ...)
};

using Faults = std::vector<Fault>;

}  // namespace veltarn
