// Entity property values as the command line shows them, shared so that LIST and CHPROP say the
// same thing for the same value.
#pragma once

#include <string>

#include "host/Color.h"

namespace veltarn::cad {

// "BYLAYER", "BYBLOCK", the index, or "R,G,B" for a true colour.
std::wstring colorText(const host::Color& color);

}  // namespace veltarn::cad
