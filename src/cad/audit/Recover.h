// RECOVER: a damaged DXF drawing read as far as it can be, then audited with repairs.
//
// The strict loader refuses a damaged file whole. Recovery repairs the tag stream instead, in
// memory, into a new text that the strict loader then reads (the original file is never written):
//
//  * A line where a group code must be (`bad-group-code`): the object it lies in is dropped, and
//    reading goes on at the next `0` line followed by an object type.
//  * A number that is no number (`bad-number`): the object holding it is dropped (a header
//    variable: the variable; a section, table or block marker: that one tag).
//  * The file ends inside a tag, or between the tags of an object that may then lack some
//    (`truncated`): the object is dropped (a block or table header with its block or table).
//  * Tags outside any section (`stray-tags`): dropped.
//  * A section, table or block that is not closed (`section-not-closed`, `table-not-closed`,
//    `block-not-closed`): it is closed where the next one starts or the file ends.
//  * A polyline's vertices or an insert's attributes without their SEQEND (`sequence-not-closed`):
//    one is added.
//  * No `0 EOF` (`missing-eof`): one is added.
//  * Objects a dropped object owned (its extension dictionary and what is in it) are erased with it
//    (`owner-dropped`), as its own data.
//
// Each finding carries "file:line" (binary: "file:@offset") and what was done; all are fixed.
#pragma once

#include "cad/audit/Auditor.h"
#include "cad/db/Database.h"

#include <filesystem>
#include <string>
#include <vector>

namespace veltarn::audit {

struct Recovery {
    db::Database drawing;
    std::vector<Finding> skipped;  // what reading had to repair or leave out, in file order
    std::vector<Finding> audit;    // auditAndFix on the drawing read
};

// The repaired tag stream (same form as the file: ASCII text or binary) and what was skipped.
// Fails only when not one tag could be read.
struct RepairedText {
    std::string bytes;
    std::vector<Finding> skipped;
    std::vector<db::Handle> dropped;  // handles of the objects left out
};
Result<RepairedText> repairTagStream(std::string bytes, const std::string& name);

// Reads the file at `path` as far as it can, loads the repaired stream under the file's own name
// and audits it with repairs. Fails when nothing could be read.
Result<Recovery> recoverDrawing(const std::filesystem::path& path);
Result<Recovery> recoverBytes(std::string bytes, const std::string& name);

}  // namespace veltarn::audit
