#include "data/FieldValue.h"

#include "host/Format.h"
#include "host/NumberRules.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace veltarn {

namespace {

std::wstring formatInteger(std::int32_t value) { return host::format(L"%i", value); }
std::wstring formatReal(double value) { return host::format(L"%lf", value); }

// Real to 32-bit integer, dropping the fraction. Values that do not fit (and NaN) give INT_MIN,
// the result of the processor's truncating conversion that earlier versions relied on.
std::int32_t truncateToInteger(double value) {
    double whole = std::trunc(value);
    if (!(whole >= -2147483648.0 && whole <= 2147483647.0)) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(whole);
}

}  // namespace

FieldValue FieldValue::fromInteger(std::int32_t value) {
    FieldValue v;
    v.setInteger(value);
    return v;
}

FieldValue FieldValue::fromReal(double value) {
    FieldValue v;
    v.setReal(value);
    return v;
}

FieldValue FieldValue::fromText(std::wstring text) {
    FieldValue v;
    v.setText(std::move(text));
    return v;
}

FieldValue FieldValue::fromPoint(FieldPoint point) {
    FieldValue v;
    v.setPoint(point);
    return v;
}

void FieldValue::setInteger(std::int32_t value) {
    integer_ = value;
    type_ = FieldType::Integer;
}

void FieldValue::setReal(double value) {
    real_ = value;
    type_ = FieldType::Real;
}

void FieldValue::setText(std::wstring text) {
    text_ = std::move(text);
    type_ = FieldType::Character;
}

void FieldValue::setPoint(FieldPoint point) {
    real_ = point.x;
    y_ = point.y;
    z_ = point.z;
    type_ = FieldType::Point;
}

void FieldValue::clear() {
    integer_ = 0;
    real_ = y_ = z_ = 0;
    text_.clear();
    type_ = FieldType::None;
}

void FieldValue::assign(const FieldValue& source) {
    if (source.type_ == FieldType::None) return;
    if (type_ == FieldType::None) {
        integer_ = source.integer_;
        real_ = source.real_;
        y_ = source.y_;
        z_ = source.z_;
        text_ = source.text_;
        type_ = source.type_;
        return;
    }
    // Each branch converts first and stores after, so a throwing conversion changes nothing.
    switch (type_) {
        case FieldType::Integer: integer_ = source.asInteger(); break;
        case FieldType::Real: real_ = source.asReal(); break;
        case FieldType::Character: {
            std::wstring text = source.asText();
            text_ = std::move(text);
            break;
        }
        case FieldType::Point:
            if (source.type_ != FieldType::Point && source.type_ != FieldType::Character) {
                throw kConversionNotAllowed;
            }
            setPoint(source.asPoint());
            break;
        default: throw kConversionNotAllowed;
    }
}

std::int32_t FieldValue::asInteger() const {
    switch (type_) {
        case FieldType::Integer: return integer_;
        case FieldType::Real: return truncateToInteger(real_);
        case FieldType::Character: return host::wtoi(text_);
        case FieldType::Point: throw kConversionNotAllowed;
        default: return 0;
    }
}

double FieldValue::asReal() const {
    switch (type_) {
        case FieldType::Integer: return integer_;
        case FieldType::Real: return real_;
        case FieldType::Character: return host::wtof(text_);
        default: throw kConversionNotAllowed;
    }
}

FieldPoint FieldValue::asPoint() const {
    switch (type_) {
        case FieldType::Point: return pointValue();
        case FieldType::Character: return parsePoint(text_);
        default: throw kConversionNotAllowed;
    }
}

const std::wstring& FieldValue::asText() const {
    switch (type_) {
        case FieldType::Integer: text_ = formatInteger(integer_); break;
        case FieldType::Real: text_ = formatReal(real_); break;
        case FieldType::Point:
            text_ = formatReal(real_) + L',' + formatReal(y_) + L',' + formatReal(z_);
            break;
        case FieldType::Character: break;
        default: throw kConversionNotAllowed;
    }
    return text_;
}

std::wstring FieldValue::displayText() const {
    switch (type_) {
        case FieldType::Real: return trimRealText(host::format(L"%.12lf", real_));
        case FieldType::Integer:
        case FieldType::Character:
        case FieldType::Point: return asText();
        default: return std::wstring();
    }
}

double roundReal(double value, int decimals) {
    // Beyond 1074 decimals every double prints exactly, so larger counts change nothing.
    decimals = std::clamp(decimals, 0, 1074);
    std::wstring format = host::format(L"%%.%ilf", decimals);
    return host::wtof(host::format(format, value));
}

FieldPoint parsePoint(std::wstring_view text) {
    std::size_t first = text.find(L',');
    std::size_t last = text.rfind(L',');
    if (first == std::wstring_view::npos || first == last) throw kMalformedPointText;
    return {host::wtof(text.substr(0, first)), host::wtof(text.substr(first + 1, last - first - 1)),
            host::wtof(text.substr(last + 1))};
}

std::wstring trimRealText(std::wstring text) {
    std::size_t point = text.find(L'.');
    if (point == std::wstring::npos) return text;
    while (text.size() > point + 2 && text.back() == L'0') text.pop_back();
    return text;
}

}  // namespace veltarn
