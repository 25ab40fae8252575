// Numbers in the text forms DXF uses: parsing tolerant of the padding real files carry, and the
// shortest text that reads back to the same double for values the program writes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veltarn::dxf {

std::string_view trimSpaces(std::string_view text);

// Parses a whole (space-padded) decimal integer, or a real with a whole value ("1.0", as some
// writers store integers); nullopt when anything else is in the text or it is out of range.
std::optional<std::int64_t> parseInteger(std::string_view text);

// Parses a whole (space-padded) real: fixed or exponent form, as DXF writers produce.
std::optional<double> parseReal(std::string_view text);

// The shortest decimal text that parses back to exactly `value`.
std::string formatReal(double value);

// Upper-case hexadecimal of a byte string, as ASCII DXF stores binary chunks.
std::string toHex(std::string_view bytes);

// Bytes from hexadecimal text (either case); nullopt on an odd length or a non-hex character.
std::optional<std::string> fromHex(std::string_view hex);

}  // namespace veltarn::dxf
