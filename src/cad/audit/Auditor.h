// AUDIT: the drawing's invariants checked, and repaired where a repair loses nothing.
//
// The invariants, each with the code its finding carries (docs/audit.md lists them for users):
//
//  * Every object has a handle of its own. A handle the file gave twice was renumbered when the
//    drawing was read: `duplicate-handle`, always reported as fixed.
//  * $HANDSEED is above every handle. A lower one in the file: `handseed-too-low`, fixed (the
//    database saves a seed above every handle whatever the file said).
//  * An object's owner (its first 330 outside application groups) exists: `missing-owner`. An
//    entity gets its block record back as owner; other objects are only reported.
//  * An entity of a 2000+ drawing is owned by a block record: `entity-owner-not-block`; it gets the
//    record of the block it lies in.
//  * An extension-dictionary pointer (102 {ACAD_XDICTIONARY / 360) leads to an object that exists:
//    `missing-xdictionary`; the pointer's group is dropped (there is nothing it leads to).
//  * An extension dictionary is owned by the object that points at it: `xdictionary-owner`; it is
//    re-owned to that object, contents kept (unless its owner points at it too: reported only).
//  * An entity's layer is defined in the LAYER table: `missing-layer`; the layer is created.
//  * A dictionary's entries lead to objects that exist: `missing-dictionary-entry`; the entry is
//    dropped.
//  * A draw-order table (SORTENTSTABLE) lists entities that exist: `missing-sortents-entity`; the
//    entry is dropped.
//  * No block inserts itself, directly or through other blocks: `recursive-block`, reported only.
//  * Dictionaries form a tree: `dictionary-cycle`, reported only.
//  * An object whose type is a class has its CLASSES entry: `missing-class`; the entry is added.
//  * Object data: a table definition in ODEMUDATA is pairs of name and typed value
//    (`od-table-definition`); a records xrecord holds whole records (`od-record-length`) whose
//    values have the group codes of their fields (`od-value-type`). Reported only: deleting values
//    would lose the user's data.
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::audit {

struct Finding {
    std::string code;                   // stable, one of the codes above
    std::string message;                // for a person: "LINE 2A: layer \"Walls\" is not defined"
    db::Handle handle = db::kNoHandle;  // the object it is about; kNoHandle for the drawing as a whole
    bool fixed = false;
};

// The drawing's findings; nothing is changed.
std::vector<Finding> auditDrawing(const db::Database& db);
// The same, repairing what can be repaired safely. Changes are recorded in the database's undo
// journal when a command is open, so that the caller's command undoes them as one step.
std::vector<Finding> auditAndFix(db::Database& db);

// "N errors found, N fixed".
std::string summary(const std::vector<Finding>& findings);

}  // namespace veltarn::audit
