// The user's settings kept outside drawings: the support search path.
#pragma once

#include <string>

namespace veltarn::host {

class Environment {
public:
    virtual ~Environment() = default;
    // The support search path: folders separated by ";", searched in order for support files
    // (pattern, linetype and shape files). Empty when none is set.
    virtual std::wstring supportPath() const = 0;
    // Replaces the support search path and keeps it for the next session; false when refused.
    virtual bool setSupportPath(const std::wstring& path) = 0;
};

}  // namespace veltarn::host
