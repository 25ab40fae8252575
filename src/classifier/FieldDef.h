// One field of an object-data table as the classifier defines it ("od_key" or "od_fld").
#pragma once

#include "data/FieldType.h"
#include "data/FieldValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn {

// Where a field's value comes from. The codes are persistent.
enum class ValueKind : std::uint32_t {
    None = 0,
    Key = 1,      // computed from a template ("$(obj_name)")
    List = 2,     // one of `values`
    Range = 3,    // between values[0] and values[1]
    Default = 4,  // a default only
};

// Attribute bits of a field.
inline constexpr std::uint32_t kAttributeConst = 1;
inline constexpr std::uint32_t kAttributeNotEmpty = 2;
inline constexpr std::uint32_t kAttributeRequired = 4;

struct FieldDef {
    std::wstring description;
    ValueKind kind = ValueKind::None;
    std::wstring name;
    std::uint32_t attributes = 0;
    FieldType type = FieldType::None;
    // The default (type None when there is none); for the key field the template text.
    FieldValue value;
    // The allowed values of a list, or minimum and maximum of a range, as written.
    std::vector<std::wstring> values;

    bool isKey() const { return kind == ValueKind::Key; }
    bool hasDefault() const { return value.type() != FieldType::None; }

    // A list field is valid when its default is one of its values (text without regard to case,
    // numbers and points by value); a range field when minimum <= default <= maximum (numbers by
    // value, text in lower-case order, points in each coordinate). Other kinds are always valid;
    // a list or range field of type None, or without a default, never is.
    bool isValid() const;

    bool operator==(const FieldDef& other) const;
};

// The attributes and type of an ATTRIBUTES column: words separated by spaces, any case, the last
// one "character", "integer" or "real", the ones before it "const", "notempty" or "required".
struct FieldAttributes {
    std::uint32_t attributes = 0;
    FieldType type = FieldType::None;
};

// (0, None) for an empty text or any other word.
FieldAttributes parseAttributes(std::wstring_view text);

// The key field of a table: character, kind key, the template "$(obj_name)", no attributes.
FieldDef makeKeyField(std::wstring name);

// `text` (a default, a list item, a range end as the classifier writes it) read as a value of
// `type` by the conversion rules of field values; nullopt for a point text that is not one.
std::optional<FieldValue> fieldValueOf(FieldType type, const std::wstring& text);

}  // namespace veltarn
