// Taking records off one object: those of one class, or every record the classifier recognises.
#pragma once

#include "commands/ClassTests.h"

namespace veltarn {

// Removes `def`'s data from `entity`: when the object-data test of the class holds, the first
// record of each of its tables whose key holds the class's key value. True when it held.
bool removeClassData(ClassTests& tests, host::ObjectId entity, const ClassDef& def);

// Removes every record of `entity` that resolves to a class of the classifier whose tables agree
// with the drawing's; records of unknown tables, unknown keys or disagreeing classes stay.
// Returns the number removed.
int removeResolvedRecords(ClassTests& tests, host::ObjectId entity);

}  // namespace veltarn
