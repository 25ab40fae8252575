// The objects a WorkbenchDatabase hands out: dictionaries, xrecords, entities and the rest, each an
// open of one handle that is released when the object is destroyed.
#pragma once

#include <memory>

#include "cad/seam/WorkbenchDatabase.h"

namespace veltarn::seam {

// The object of the right kind for `handle`, already counted as open in `mode` by the caller.
// `handle` may be the stand-in of the named objects dictionary once the drawing holds the real one.
std::unique_ptr<host::DbObject> makeObject(WorkbenchDatabase& drawing, db::Handle handle, host::OpenMode mode);

// The stand-in of the named objects dictionary of an R12 drawing, opened for read (and counted so
// by the caller): empty until the drawing is converted, the real root dictionary afterwards.
std::unique_ptr<host::DbObject> makeRootStandIn(WorkbenchDatabase& drawing, db::Handle handle);

}  // namespace veltarn::seam
