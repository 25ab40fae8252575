// The user's settings kept outside drawings: the support search path, and named values that the
// module keeps between sessions (the palettes' state, remembered answers).
#pragma once

#include <optional>
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

    // The value kept under `key`; nullopt when none is.
    virtual std::optional<std::wstring> setting(const std::wstring& key) const = 0;
    // Keeps `value` under `key` for this and later sessions; false when refused (an empty key, or
    // a key or value the settings cannot hold, such as one with a line end) or not written, in
    // which case the value is kept for this session only when it was not refused.
    virtual bool setSetting(const std::wstring& key, const std::wstring& value) = 0;
};

}  // namespace veltarn::host
