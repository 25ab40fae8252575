// The system variables a drawing keeps in its header ($CLAYER, $INSUNITS, $LUPREC...): the session
// takes them from the drawing it opens, so GETVAR shows the drawing's own settings.
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
};

// The variables kept in the header, in the header's usual order.
const std::vector<HeaderVariable>& headerVariables();

// Sets each variable the drawing's header holds with a value the variable accepts; the others keep
// their values. A colour is turned from the header's index (256 ByLayer, 0 ByBlock) into its name.
void readHeaderVariables(const db::Database& db, editor::SystemVariableTable& variables);

}  // namespace veltarn::seam
