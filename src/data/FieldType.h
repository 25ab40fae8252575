// The four value types of object-data fields, with the codes stored in drawings and classifiers.
#pragma once

#include <cstdint>

namespace veltarn {

// The numeric codes are persistent: classifier files and reports use them.
enum class FieldType : std::uint32_t { None = 0, Integer = 1, Real = 2, Character = 3, Point = 4 };

// "Integer", "Real", "Character", "Point"; "Unknown" for None and for any code outside 1..4.
const wchar_t* fieldTypeName(FieldType type);

}  // namespace veltarn
