// Listeners told about changes to a drawing: what the host seam relays to the module's database
// reactors (the draw command catches the entities that host commands append).
#pragma once

#include "cad/db/Handle.h"

namespace veltarn::db {

class Database;

// Called after the change, with the drawing in its new state; an observer may read the object
// but should not change the drawing from inside a notification.
class DatabaseObserver {
public:
    virtual ~DatabaseObserver() = default;
    // A new entity, table record or object (a new block: its record).
    virtual void objectAppended(const Database& db, Handle object) { (void)db, (void)object; }
    // Erased (`erased` true) or brought back (false), by an erase, an unerase, undo or redo.
    virtual void objectErased(const Database& db, Handle object, bool erased) { (void)db, (void)object, (void)erased; }
    // New tags for an object that stays in the drawing (written, or restored by undo or redo).
    virtual void objectModified(const Database& db, Handle object) { (void)db, (void)object; }
};

}  // namespace veltarn::db
