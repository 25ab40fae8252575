// Handle -> slot lookup: a flat array for the dense handles drawings use, a hash map for the rare
// handle far above the rest.
#pragma once

#include "cad/db/Handle.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace veltarn::db {

class HandleIndex {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

    void set(Handle handle, std::uint32_t slot) {
        if (handle < dense_.size()) {
            dense_[handle] = slot;
        } else if (handle < denseLimit()) {
            dense_.resize(std::max<std::size_t>(handle + 1, dense_.size() + dense_.size() / 2), kNone);
            dense_[handle] = slot;
        } else {
            sparse_[handle] = slot;
        }
    }

    std::uint32_t get(Handle handle) const {
        if (handle < dense_.size()) return dense_[handle];
        if (sparse_.empty()) return kNone;
        auto it = sparse_.find(handle);
        return it == sparse_.end() ? kNone : it->second;
    }

    void reserve(std::size_t handles) { dense_.reserve(handles); }
    std::size_t memory() const { return dense_.capacity() * sizeof(std::uint32_t) + sparse_.size() * 32; }

private:
    // Dense while the array stays within a few entries per object held.
    std::size_t denseLimit() const { return (1u << 16) + 4 * dense_.size(); }

    std::vector<std::uint32_t> dense_;
    std::unordered_map<Handle, std::uint32_t> sparse_;
};

}  // namespace veltarn::db
