// One typed object-data value (integer, real, text or point) with its conversions and text forms.
// Conversions that cannot be made throw a plain int: callers catch it and report an invalid value.
#pragma once

#include "data/FieldType.h"
#include "host/Point3d.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace veltarn {

// Codes thrown (as int) by the conversions below.
inline constexpr int kConversionNotAllowed = 6;
inline constexpr int kMalformedPointText = 11;

using FieldPoint = host::Point3d;

class FieldValue {
public:
    FieldValue() = default;
    explicit FieldValue(std::wstring name) : name_(std::move(name)) {}

    static FieldValue fromInteger(std::int32_t value);
    static FieldValue fromReal(double value);
    static FieldValue fromText(std::wstring text);
    static FieldValue fromPoint(FieldPoint point);

    // The field name, as the table definition gives it; assignments never change it.
    const std::wstring& name() const { return name_; }
    void setName(std::wstring name) { name_ = std::move(name); }

    FieldType type() const { return type_; }

    // Store a value and its type as they are, without conversion (reading a record does this).
    void setInteger(std::int32_t value);
    void setReal(double value);
    void setText(std::wstring text);
    void setPoint(FieldPoint point);
    // Back to type None; the name stays.
    void clear();

    // Raw members, meaningful for the matching type only. The real doubles as a point's X, and the
    // text caches the last text form asked of a non-text value.
    std::int32_t integerValue() const { return integer_; }
    double realValue() const { return real_; }
    FieldPoint pointValue() const { return {real_, y_, z_}; }
    const std::wstring& text() const { return text_; }

    // A target of type None takes the source's type and value; a typed target keeps its type and
    // converts the source: real to integer truncates toward zero, text reads its leading number
    // (0 when none), text to point parses "x,y,z". A point into a number or a number into a
    // point throws 6, malformed point text throws 11; either way the target is left unchanged.
    // A source of type None leaves a typed target as it is.
    void assign(const FieldValue& source);

    // Integer as is, real truncated toward zero, text by its leading integer, None 0; point throws 6.
    std::int32_t asInteger() const;
    // Integer widened, real as is, text by its leading number; point and None throw 6.
    double asReal() const;
    // Point as is, text parsed (throws 11 when malformed); other types throw 6.
    FieldPoint asPoint() const;
    // The stored text form: "%i", "%lf", "%lf,%lf,%lf", or the text itself; None throws 6.
    // The form is kept in the value's text member, replacing what was there.
    const std::wstring& asText() const;
    // What users see: like asText() but reals as "%.12lf" without trailing zeros (one digit after
    // the point always stays), and "" for None. Never throws.
    std::wstring displayText() const;

private:
    std::wstring name_;
    std::int32_t integer_ = 0;
    double real_ = 0;
    double y_ = 0;
    double z_ = 0;
    mutable std::wstring text_;
    FieldType type_ = FieldType::None;
};

// `value` printed with `decimals` digits after the point (printf rounding) and read back.
// Negative counts are taken as 0.
double roundReal(double value, int decimals);

// "x,y,z": X before the first comma, Y strictly between the first and the last comma, Z after the
// last; each read by its leading number, so "1,2,3,4" is (1, 2, 4). Fewer than two commas throws 11.
FieldPoint parsePoint(std::wstring_view text);

// Drops trailing zeros of a fixed-point real text, keeping one digit after the point: "2.500" is
// "2.5", "2.000" is "2.0". A text without a point is returned unchanged.
std::wstring trimRealText(std::wstring text);

}  // namespace veltarn
