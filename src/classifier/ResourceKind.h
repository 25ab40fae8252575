// The kinds of drawing resources a classifier brings in, as bits of one set per source file.
#pragma once

#include <cstdint>

namespace veltarn {

// The values are the bits the reader gathers per file; do not renumber.
enum class ResourceKind : std::uint32_t {
    Block = 1,
    DimensionStyle = 2,
    Layer = 4,
    Layout = 8,
    Linetype = 16,
    MleaderStyle = 32,
    MlineStyle = 64,
    Pattern = 128,
    TextStyle = 256,
};

using ResourceKinds = std::uint32_t;

constexpr ResourceKinds bit(ResourceKind kind) { return static_cast<ResourceKinds>(kind); }

}  // namespace veltarn
