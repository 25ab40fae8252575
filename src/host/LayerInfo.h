// The state of one layer, as the module's layer filter needs it.
#pragma once

#include <string>

#include "host/ObjectId.h"

namespace veltarn::host {

struct LayerInfo {
    ObjectId id;
    std::wstring name;
    bool off = false;
    bool frozen = false;
    bool locked = false;
    bool hidden = false;  // kept out of the user's layer lists (reconciled, internal layers)

    bool usable() const { return !off && !frozen && !locked && !hidden; }
};

}  // namespace veltarn::host
