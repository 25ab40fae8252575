// Notifications of changes to a drawing's objects.
#pragma once

#include "host/ObjectId.h"

namespace veltarn::host {

class Database;

// Added with Database::addReactor() and removed with removeReactor(), in pairs. The drawing calls
// these on the main thread, right after the change, also for changes made by undo.
class DatabaseReactor {
public:
    virtual ~DatabaseReactor() = default;
    // An object was added to the drawing (an entity to a block, a record to a table, ...).
    virtual void objectAppended(Database& /*database*/, ObjectId /*id*/) {}
    // An object was erased (`erased` true) or brought back by undo (`erased` false).
    virtual void objectErased(Database& /*database*/, ObjectId /*id*/, bool /*erased*/) {}
    // An object that stays in the drawing changed: written and closed, or restored by undo or redo.
    virtual void objectModified(Database& /*database*/, ObjectId /*id*/) {}
};

}  // namespace veltarn::host
