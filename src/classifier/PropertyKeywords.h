// The "obj_prop" keywords: reading a property's value texts into a class's property set, and
// the same texts back out of it.
#pragma once

#include "classifier/ObjectProperties.h"

#include <string>
#include <string_view>
#include <vector>

namespace veltarn {

// Stores the value of the property `keyword` (any case) in `properties`. `value2`, when not
// empty, adds alternatives after `value`: split at ":" when it holds one, else at ",". Each
// value is trimmed and skipped when empty; "?" is kept as "ask when drawing". False, with the
// property unchanged, for an unknown keyword, a value that does not fit the keyword's syntax
// (not a number, a colour without three numbers in parentheses, a word outside the keyword's
// list) or no value at all. A successful line replaces what an earlier line gave.
bool parseProperty(ObjectProperties& properties, std::wstring_view keyword, std::wstring_view value,
                   std::wstring_view value2);

// Whether `keyword` (lower case) names a property that is present with "?" first.
bool isPropertyOpen(const ObjectProperties& properties, std::wstring_view keyword);

// Makes the property `keyword` (lower case) absent; an unknown keyword is ignored.
void clearProperty(ObjectProperties& properties, std::wstring_view keyword);

// The texts of the property `keyword` (lower case) in the forms parseProperty() reads: first
// value, then the alternatives; "?" for a value to be asked. Reals are written with `decimals`
// digits after the point. Empty when the property is absent or the keyword unknown; "explode"
// gives "1" when set.
std::vector<std::wstring> propertyTexts(const ObjectProperties& properties, std::wstring_view keyword,
                                        int decimals);

// A plain decimal: optional sign, digits, at most one point, at least one digit. The numeric
// values of the classifier must pass it before they are converted.
bool isNumberText(std::wstring_view text);

}  // namespace veltarn
