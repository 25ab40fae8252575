// Field values to and from the typed values of an xrecord chain.
#pragma once

#include "data/FieldValue.h"
#include "host/TypedValue.h"

namespace veltarn {

// The value stored under a record's group code: text (1), point (10), real (40) or integer (90).
// Any other code, or a value that does not match its code, gives type None. The name is kept.
void readStoredValue(const host::TypedValue& stored, FieldValue& value);

// The value as it is written under the code of its own type (None as an empty text).
host::TypedValue storedForm(const FieldValue& value);

}  // namespace veltarn
