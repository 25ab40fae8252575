// The tag layer's name for the workbench's result type (base/Result.h).
#pragma once

#include "base/Result.h"

namespace veltarn::dxf {

using veltarn::Error;
using veltarn::makeError;
using veltarn::Result;

}  // namespace veltarn::dxf
