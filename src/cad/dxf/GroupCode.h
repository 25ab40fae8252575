// Group codes: the kind of value each code carries, and names for the codes the workbench reads.
#pragma once

#include <cstdint>

namespace veltarn::dxf {

// How a group code's value is stored in binary DXF; ASCII DXF stores every kind as a line of text.
enum class ValueKind : std::uint8_t { String, Real, Int16, Int32, Int64, Bool, Binary };

constexpr ValueKind valueKindOf(int code) {
    if (code >= 10 && code <= 59) return ValueKind::Real;
    if (code >= 60 && code <= 79) return ValueKind::Int16;
    if (code >= 90 && code <= 99) return ValueKind::Int32;
    if (code >= 110 && code <= 149) return ValueKind::Real;
    if (code >= 160 && code <= 169) return ValueKind::Int64;
    if (code >= 170 && code <= 179) return ValueKind::Int16;
    if (code >= 210 && code <= 239) return ValueKind::Real;
    if (code >= 270 && code <= 289) return ValueKind::Int16;
    if (code >= 290 && code <= 299) return ValueKind::Bool;
    if (code >= 310 && code <= 319) return ValueKind::Binary;
    if (code >= 370 && code <= 389) return ValueKind::Int16;
    if (code >= 400 && code <= 409) return ValueKind::Int16;
    if (code >= 420 && code <= 429) return ValueKind::Int32;
    if (code >= 440 && code <= 459) return ValueKind::Int32;
    if (code >= 460 && code <= 469) return ValueKind::Real;
    if (code == 1004) return ValueKind::Binary;
    if (code >= 1010 && code <= 1059) return ValueKind::Real;
    if (code >= 1060 && code <= 1070) return ValueKind::Int16;
    if (code == 1071) return ValueKind::Int32;
    return ValueKind::String;
}

constexpr bool isNumericKind(ValueKind kind) {
    return kind != ValueKind::String && kind != ValueKind::Binary;
}

// Codes with a fixed meaning that the structure of a file depends on.
namespace code {
constexpr int kStructure = 0;      // SECTION, ENDSEC, EOF, entity and object type names
constexpr int kName = 2;           // section name, block name, table name
constexpr int kHandle = 5;         // handle of most objects
constexpr int kVariableName = 9;   // $NAME of a header variable
constexpr int kDimStyleHandle = 105;  // DIMSTYLE records carry their handle here
constexpr int kSubclass = 100;
constexpr int kControlString = 102;  // "{ACAD_XDICTIONARY", "}" and other application groups
constexpr int kComment = 999;
constexpr int kSoftPointer = 330;
constexpr int kHardPointer = 340;
constexpr int kSoftOwner = 350;
constexpr int kHardOwner = 360;
}  // namespace code

}  // namespace veltarn::dxf
