// Table records copied from one drawing into another: layers with their linetypes, linetypes,
// text styles, dimension styles.
#pragma once

#include <string_view>
#include <vector>

#include "cad/db/Database.h"

namespace veltarn::seam {

// Copies the records `handles` of `source`'s `table` ("LAYER", "LTYPE", "STYLE", "DIMSTYLE") into
// `target`; a layer brings its linetype when `target` lacks it. Records whose name `target` has
// already are left as they are there. Pointers to other objects of `source` are not carried over.
// Returns the handles of the records made; fails, with nothing copied, when a handle is not a
// record of that table.
dxf::Result<std::vector<db::Handle>> copyTableRecords(const db::Database& source, db::Database& target,
                                                      std::string_view table, const std::vector<db::Handle>& handles);

}  // namespace veltarn::seam
