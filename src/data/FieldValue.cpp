#include "data/FieldValue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace veltarn {

namespace {

// ---- leading-number reading, as the Windows runtime's _wtoi/_wtof do it ----

bool isBlank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }
bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Optional white space, optional sign, decimal digits; stops at the first other character.
// No digits gives 0; values past 32 bits saturate at INT_MAX / INT_MIN as the runtime does.
std::int32_t leadingInteger(std::wstring_view text) {
    std::size_t i = 0;
    while (i < text.size() && isBlank(text[i])) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) negative = text[i++] == L'-';
    std::int64_t magnitude = 0;
    constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        magnitude = magnitude * 10 + (text[i] - L'0');
        if (magnitude > kLimit) magnitude = kLimit + 1;  // saturated; keep consuming digits
    }
    if (negative) {
        return magnitude >= kLimit ? std::numeric_limits<std::int32_t>::min()
                                   : static_cast<std::int32_t>(-magnitude);
    }
    return magnitude >= kLimit ? std::numeric_limits<std::int32_t>::max()
                               : static_cast<std::int32_t>(magnitude);
}

bool startsWithNoCase(std::wstring_view text, std::size_t at, std::string_view word) {
    if (text.size() - at < word.size()) return false;
    for (std::size_t k = 0; k < word.size(); ++k) {
        wchar_t c = text[at + k];
        if (c >= L'A' && c <= L'Z') c = c - L'A' + L'a';
        if (c != static_cast<wchar_t>(word[k])) return false;
    }
    return true;
}

// For a number text that from_chars found out of range: too large (true) or too small (false).
bool isTooLarge(std::string_view number, bool hex) {
    std::size_t exponentAt = number.find_first_of(hex ? "pP" : "eE");
    std::string_view mantissa = number.substr(0, exponentAt);
    long exponent = 0;
    if (exponentAt != std::string_view::npos) {
        std::size_t j = exponentAt + 1;
        bool negative = number[j] == '-';
        if (number[j] == '+' || number[j] == '-') ++j;
        for (; j < number.size(); ++j) exponent = std::min(exponent * 10 + (number[j] - '0'), 1000000000L);
        if (negative) exponent = -exponent;
    }
    // Order of the first non-zero digit: 1 for "5", 2 for "50", 0 for "0.5", -1 for "0.05".
    std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    std::size_t first = mantissa.find_first_not_of("0.");
    if (first == std::string_view::npos) return false;
    long order = first < point ? static_cast<long>(point - first) : -static_cast<long>(first - point - 1);
    return order * (hex ? 4 : 1) + exponent > 0;
}

// Optional white space, optional sign, then the longest prefix that is a decimal number (digits,
// point, exponent), a hexadecimal one ("0x1.8p3"), "inf"/"infinity" or "nan"; 0 when none.
// Independent of the locale: the point is always ".".
double leadingReal(std::wstring_view text) {
    std::size_t i = 0;
    while (i < text.size() && isBlank(text[i])) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) negative = text[i++] == L'-';
    auto sign = [negative](double v) { return negative ? -v : v; };

    if (startsWithNoCase(text, i, "inf")) return sign(std::numeric_limits<double>::infinity());
    if (startsWithNoCase(text, i, "nan")) return sign(std::numeric_limits<double>::quiet_NaN());

    auto isHex = [](wchar_t c) {
        return isDigit(c) || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F');
    };
    bool hex = startsWithNoCase(text, i, "0x") && i + 2 < text.size() &&
               (isHex(text[i + 2]) || (text[i + 2] == L'.' && i + 3 < text.size() && isHex(text[i + 3])));
    if (hex) i += 2;
    auto isMantissaDigit = [&](wchar_t c) { return hex ? isHex(c) : isDigit(c); };

    // Copy the number's characters (all ASCII) to a narrow buffer for from_chars.
    std::string number;
    std::size_t digits = 0;
    for (; i < text.size() && isMantissaDigit(text[i]); ++i, ++digits) number += static_cast<char>(text[i]);
    if (i < text.size() && text[i] == L'.') {
        number += '.';
        for (++i; i < text.size() && isMantissaDigit(text[i]); ++i, ++digits) number += static_cast<char>(text[i]);
    }
    if (digits == 0) return 0.0;  // nothing converted: no sign either
    const wchar_t exponentMark = hex ? L'p' : L'e';
    if (i < text.size() && (text[i] == exponentMark || text[i] == exponentMark - 32)) {
        std::size_t j = i + 1;
        std::string exponent = hex ? "p" : "e";
        if (j < text.size() && (text[j] == L'+' || text[j] == L'-')) exponent += static_cast<char>(text[j++]);
        if (j < text.size() && isDigit(text[j])) {
            for (; j < text.size() && isDigit(text[j]); ++j) exponent += static_cast<char>(text[j]);
            number += exponent;
        }
    }

    double value = 0;
    auto format = hex ? std::chars_format::hex : std::chars_format::general;
    if (std::from_chars(number.data(), number.data() + number.size(), value, format).ec == std::errc::result_out_of_range) {
        // Beyond a double: the runtime gives HUGE_VAL or 0, keeping the sign.
        value = isTooLarge(number, hex) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return sign(value);
}

// ---- text forms, as printf writes them but independent of the locale ----

// "%i"
std::wstring formatInteger(std::int32_t value) {
    char buffer[16];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    (void)ec;  // 16 characters hold any 32-bit integer
    return std::wstring(buffer, end);
}

// "%.<precision>lf"; "inf", "-inf", "nan" for the non-finite values.
std::wstring formatFixed(double value, int precision) {
    std::string buffer(std::size_t(320) + static_cast<std::size_t>(precision), '\0');
    auto [end, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::fixed, precision);
    (void)ec;  // the buffer holds the 309 integer digits of the largest double plus the fraction
    return std::wstring(buffer.data(), end);
}

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
        case FieldType::Character: return leadingInteger(text_);
        case FieldType::Point: throw kConversionNotAllowed;
        default: return 0;
    }
}

double FieldValue::asReal() const {
    switch (type_) {
        case FieldType::Integer: return integer_;
        case FieldType::Real: return real_;
        case FieldType::Character: return leadingReal(text_);
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
        case FieldType::Real: text_ = formatFixed(real_, 6); break;
        case FieldType::Point:
            text_ = formatFixed(real_, 6) + L',' + formatFixed(y_, 6) + L',' + formatFixed(z_, 6);
            break;
        case FieldType::Character: break;
        default: throw kConversionNotAllowed;
    }
    return text_;
}

std::wstring FieldValue::displayText() const {
    switch (type_) {
        case FieldType::Real: return trimRealText(formatFixed(real_, 12));
        case FieldType::Integer:
        case FieldType::Character:
        case FieldType::Point: return asText();
        default: return std::wstring();
    }
}

double roundReal(double value, int decimals) {
    // Beyond 1074 decimals every double prints exactly, so larger counts change nothing.
    decimals = std::clamp(decimals, 0, 1074);
    return leadingReal(formatFixed(value, decimals));
}

FieldPoint parsePoint(std::wstring_view text) {
    std::size_t first = text.find(L',');
    std::size_t last = text.rfind(L',');
    if (first == std::wstring_view::npos || first == last) throw kMalformedPointText;
    return {leadingReal(text.substr(0, first)), leadingReal(text.substr(first + 1, last - first - 1)),
            leadingReal(text.substr(last + 1))};
}

std::wstring trimRealText(std::wstring text) {
    std::size_t point = text.find(L'.');
    if (point == std::wstring::npos) return text;
    while (text.size() > point + 2 && text.back() == L'0') text.pop_back();
    return text;
}

}  // namespace veltarn
