// An ordered chain of typed values: the contents of an xrecord, a command's arguments.
#pragma once

#include <vector>

#include "host/TypedValue.h"

namespace veltarn::host {

// A plain vector: the chain's order is the stored order, and an empty chain is a valid xrecord.
using ResultBuffer = std::vector<TypedValue>;

}  // namespace veltarn::host
