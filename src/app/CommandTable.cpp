#include "app/CommandTable.h"

#include "host/LowerCase.h"

namespace veltarn {

int commandIndex(std::wstring_view name) {
    for (std::size_t i = 0; i < kCommandTable.size(); ++i)
        if (host::equalsIgnoringCase(kCommandTable[i].name, name)) return static_cast<int>(i);
    return -1;
}

}  // namespace veltarn
