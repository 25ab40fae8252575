// The object-data records of an entity as lines of text, for listing an entity to the user.
#pragma once

#include "host/Database.h"

#include <string>
#include <vector>

namespace veltarn {

// For each record of each table the entity has data for (extension-dictionary order), a line
// "Object data table: <table>" and then one line per field, "    <name> (<type>): <display text>".
// Empty when the entity has no records. Reads only: never creates "ODEMUDATA".
std::vector<std::wstring> listObjectData(host::Database& db, host::ObjectId entity);

}  // namespace veltarn
