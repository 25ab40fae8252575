// UTF-8 at every edge, wide strings inside the module: the seam's names for base/Utf8.h.
#pragma once

#include "base/Utf8.h"

namespace veltarn::host {

using veltarn::fromUtf8;
using veltarn::toUtf8;

}  // namespace veltarn::host
