// Owned object blobs, appended to large chunks and never moved or freed while the drawing is
// open: an old version of an object stays valid, which is what undo restores.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn::db {

class TagArena {
public:
    static constexpr std::size_t kChunk = std::size_t{1} << 24;

    // Stores `bytes`; returns its offset. Fails (std::length_error) past 4 GiB in all.
    std::uint32_t store(std::string_view bytes);
    std::string_view at(std::uint32_t offset, std::uint32_t size) const;
    std::size_t memory() const;

private:
    struct Chunk {
        std::unique_ptr<char[]> data;
        std::size_t start = 0, used = 0, capacity = 0;
    };
    std::vector<Chunk> chunks_;
};

}  // namespace veltarn::db
