// Values crossing between the seam's types and the drawing database's: texts (wide and UTF-8),
// typed values of xrecords, colours and points.
#pragma once

#include <optional>
#include <string>

#include "cad/db/Color.h"
#include "cad/db/Xrecord.h"
#include "host/Color.h"
#include "host/Point3d.h"
#include "host/TypedValue.h"

namespace veltarn::seam {

std::wstring wide(std::string_view utf8);
std::string narrow(std::wstring_view text);

host::Point3d toHost(const db::Point3& p);
db::Point3 toDb(const host::Point3d& p);

host::Color toHost(const db::Color& color);
db::Color toDb(const host::Color& color);

// A stored value as the seam hands it out: integers of codes 160-169 are 64-bit, every other
// integer 32-bit; handles become ids and binary chunks bytes.
host::TypedValue toHost(const db::TypedValue& value);
// nullopt when the value does not fit what its group code stores (a text under an integer code).
std::optional<db::TypedValue> toDb(const host::TypedValue& value);

}  // namespace veltarn::seam
