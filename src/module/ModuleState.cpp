#include "module/ModuleState.h"

namespace veltarn {

ModuleState& moduleState() {
    static ModuleState state;
    return state;
}

}  // namespace veltarn
