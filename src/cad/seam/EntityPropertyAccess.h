// The seam's entity properties read from and written into an entity's tags, over the database's
// property functions. Angles cross in radians here and are stored in degrees.
#pragma once

#include <optional>

#include "cad/db/Database.h"
#include "host/EntityProperty.h"

namespace veltarn::seam {

// nullopt when the entity's kind has no such property, or it is set-only.
std::optional<host::PropertyValue> readProperty(const db::Database& db, const db::TagList& tags,
                                                host::EntityProperty property);

// False, with `tags` unchanged, when the kind has no such property, the value has the wrong type,
// or it names something the drawing lacks (a layer, linetype, style or block).
bool writeProperty(const db::Database& db, db::TagList& tags, host::EntityProperty property,
                   const host::PropertyValue& value);

}  // namespace veltarn::seam
