#include "cad/db/TagArena.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <stdexcept>

namespace veltarn::db {

// Offsets are positions in one virtual space: chunk i covers [start, start + capacity). A blob
// larger than kChunk gets a chunk of its own size.
std::uint32_t TagArena::store(std::string_view bytes) {
    if (chunks_.empty() || chunks_.back().capacity - chunks_.back().used < bytes.size()) {
        std::size_t start = chunks_.empty() ? 0 : chunks_.back().start + chunks_.back().capacity;
        std::size_t capacity = std::max(kChunk, bytes.size());
        if (start + capacity > 0xFFFFFFFFull) throw std::length_error("the drawing's changed objects exceed 4 GiB");
        Chunk chunk;
        chunk.start = start;
        chunk.capacity = capacity;
        chunk.data.reset(new char[capacity]);  // not zeroed: a 16 MiB memset per chunk showed in bulk creation
        chunks_.push_back(std::move(chunk));
    }
    Chunk& chunk = chunks_.back();
    if (!bytes.empty()) std::memcpy(chunk.data.get() + chunk.used, bytes.data(), bytes.size());
    auto offset = static_cast<std::uint32_t>(chunk.start + chunk.used);
    chunk.used += bytes.size();
    return offset;
}

std::string_view TagArena::at(std::uint32_t offset, std::uint32_t size) const {
    auto it = std::upper_bound(chunks_.begin(), chunks_.end(), std::size_t{offset},
                               [](std::size_t value, const Chunk& chunk) { return value < chunk.start; });
    assert(it != chunks_.begin() && "arena offset out of range");
    const Chunk& chunk = *(it - 1);
    return std::string_view(chunk.data.get() + (offset - chunk.start), size);
}

std::size_t TagArena::memory() const {
    std::size_t total = 0;
    for (const Chunk& chunk : chunks_) total += chunk.used;
    return total;
}

}  // namespace veltarn::db
