// Classifier text for one object definition: what the template export writes for each kind of
// object it finds in a drawing.
#pragma once

#include "classifier/ClassDef.h"
#include "host/SystemVariables.h"

#include <string>

namespace veltarn {

// The "obj_name", "obj_type", "obj_prop" and table lines of `def`, in the grammar the reader
// reads back. When `existing` (the classifier's definition of the same key) is given, its flag,
// number and icon path are used instead of the defaults: flag 1, the largest default number of
// the definition's types, and "Icons/" + first type + ".png". The icon path is also returned
// through `iconPath` (empty when the definition has no type). Reals get `decimals` digits.
std::wstring writeDefinition(const ClassDef& def, const ClassDef* existing, int decimals, std::wstring& iconPath);

// The drawing's linear-units precision (LUPREC), the number of decimals written for reals;
// 4, the host's own default, when the variable cannot be read.
int linearPrecision(const host::SystemVariables& variables);

// The priority a definition of this entity type gets when nothing else says: texts above points
// above blocks above lines and areas, hatches at the bottom. 7000 for unlisted types.
int defaultTypeNumber(std::wstring_view typeName);

}  // namespace veltarn
