// An entity's geometry as the seam hands it to the module for telling duplicates: read from its
// tags the same way for every kind, so that a kind the workbench keeps only as tags compares too.
#pragma once

#include <optional>

#include "cad/db/TagList.h"
#include "host/EntityShape.h"

namespace veltarn::seam {

// Points from codes 10-18 (with their Y and Z), numbers from 40-48, 50-58, standalone coordinates
// and the normal (210), and the texts 1-3 and flags 70-78 hashed; polylines give their vertices
// with bulges and widths instead of their point codes. Common properties, handles, owners, app
// groups and xdata are left out, of the entity and of what it carries (attributes). nullopt for
// tags that are no entity.
std::optional<host::EntityShape> entityShape(const db::TagList& tags);

}  // namespace veltarn::seam
