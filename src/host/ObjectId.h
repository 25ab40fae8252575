// The identity of one object within one drawing: its handle.
#pragma once

#include <cstdint>
#include <functional>

namespace veltarn::host {

// A handle is unique within its drawing and stays the same across save and load. Handle 0 is the
// null id: what a failed look-up returns.
struct ObjectId {
    std::uint64_t handle = 0;

    constexpr bool isNull() const { return handle == 0; }
    constexpr explicit operator bool() const { return handle != 0; }
    friend constexpr bool operator==(ObjectId, ObjectId) = default;
    friend constexpr auto operator<=>(ObjectId, ObjectId) = default;
};

}  // namespace veltarn::host

template <>
struct std::hash<veltarn::host::ObjectId> {
    std::size_t operator()(veltarn::host::ObjectId id) const noexcept {
        return std::hash<std::uint64_t>()(id.handle);
    }
};
