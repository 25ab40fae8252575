// Object ids: DXF handles, hexadecimal in the file, 64-bit numbers in memory.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltarn::db {

using Handle = std::uint64_t;
inline constexpr Handle kNoHandle = 0;  // "0" in a file means "no object" (the root's owner)
// The last handle a new object can get: $HANDSEED, at most 16 hexadecimal digits, must stay above
// every handle in use.
inline constexpr Handle kLastHandle = 0xFFFFFFFFFFFFFFFEull;

// The handle in `text` (hexadecimal, spaces around ignored); nullopt for anything else.
std::optional<Handle> parseHandle(std::string_view text);

// Upper-case hexadecimal without leading zeros, as DXF writes handles.
std::string formatHandle(Handle handle);

}  // namespace veltarn::db
