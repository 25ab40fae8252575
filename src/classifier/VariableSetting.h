// A host system variable that a classifier sets while its objects are drawn ("variable" lines).
#pragma once

#include "host/SystemVariables.h"

#include <string>

namespace veltarn {

struct VariableSetting {
    std::wstring name;
    host::VariableValue value;
};

}  // namespace veltarn
