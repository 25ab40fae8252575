// The objects a WorkbenchDatabase hands out: dictionaries, xrecords, entities and the rest, each an
// open of one handle that is released when the object is destroyed.
#pragma once

#include <memory>

#include "cad/seam/WorkbenchDatabase.h"

namespace veltarn::seam {

// The object of the right kind for `handle`, already counted as open in `mode` by the caller.
std::unique_ptr<host::DbObject> makeObject(WorkbenchDatabase& drawing, db::Handle handle, host::OpenMode mode);

}  // namespace veltarn::seam
