// The system variables a drawing keeps in its header ($CLAYER, $INSUNITS, $LUPREC...): the session
// takes them from the drawing it opens, so GETVAR shows the drawing's own settings, and gives them
// back to the drawing when it is saved.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cad/db/Database.h"
#include "cad/editor/SystemVariableTable.h"

namespace veltarn::seam {

struct HeaderVariable {
    std::wstring name;       // the system variable
    std::string_view entry;  // its header entry
    int code;                // the group code of the entry's value
};

// The variables kept in the header, in the header's usual order.
const std::vector<HeaderVariable>& headerVariables();

// Sets each variable the drawing's header holds with a value the variable accepts; the others keep
// their values. A colour is turned from the header's index (256 ByLayer, 0 ByBlock) into its name.
void readHeaderVariables(const db::Database& db, editor::SystemVariableTable& variables);

// Writes back into the header each variable whose value differs from what the header holds, so
// that a drawing whose settings nobody changed is saved byte for byte. A variable the header lacks
// is added only when it differs from its start value. Recorded for undo like any change. An entry
// the database refuses is skipped: a drawing without a header section is saved without one.
void writeHeaderVariables(db::Database& db, const editor::SystemVariableTable& variables);

}  // namespace veltarn::seam
