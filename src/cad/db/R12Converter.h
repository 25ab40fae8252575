// Converting an R12 drawing to a 2018 one, for changes R12 cannot hold (dictionaries, xrecords,
// extension dictionaries, draw order).
#pragma once

#include "cad/db/Database.h"

namespace veltarn::db {

// A 2018 drawing with everything `r12` holds: its header (with the new version and handle seed),
// the classes, the standard tables with R12's records first and the default records it lacks, a
// block record per block, owners and subclass markers everywhere, the named objects dictionary with
// its standard entries and the layouts of model and paper space. Texts become UTF-8. Objects keep
// their handles, and a block's record takes the handle that named the block in R12, so block ids
// stay valid; what is new takes handles above the old seed. The form (ASCII or binary) and the
// name stay. Fails only if the result does not read back.
Result<Database> convertR12(const Database& r12);

}  // namespace veltarn::db
