// The text forms the check reports and the export writers share: numbers as the shortest text
// that reads back to the same double, JSON strings, RFC 4180 CSV fields.
#pragma once

#include <string>
#include <string_view>

#include "host/EntityOutline.h"

namespace veltarn::app::text_formats {

// The shortest decimal that reads back as `value` ("0.1", "1e+300"); empty for NaN and infinities,
// which neither JSON nor WKT can hold.
std::string number(double value);
// A JSON string: quotes, backslashes and control characters escaped, UTF-8 passed through.
std::string jsonString(const std::string& text);
// A CSV field, quoted with its quotes doubled when it holds a comma, a quote or a line end.
std::string csvField(const std::string& text);

// True when `path` ends in `extension` (".csv"), in any case, after a name of at least one letter.
bool hasExtension(const std::string& path, std::string_view extension);

// True when a point of the outline lies off the plane Z = 0: it is then written in 3D.
bool hasZ(const host::EntityOutline& outline);

}  // namespace veltarn::app::text_formats
