#include "cad/seam/ValueConversion.h"

#include "cad/db/Handle.h"
#include "host/Utf8.h"

namespace veltarn::seam {

std::wstring wide(std::string_view utf8) { return host::fromUtf8(utf8); }
std::string narrow(std::wstring_view text) { return host::toUtf8(text); }

host::Point3d toHost(const db::Point3& p) { return {p.x, p.y, p.z}; }
db::Point3 toDb(const host::Point3d& p) { return {p.x, p.y, p.z}; }

host::Color toHost(const db::Color& color) {
    if (color.rgb) {
        const std::uint32_t rgb = *color.rgb;
        return host::Color::fromRgb(static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
                                    static_cast<std::uint8_t>(rgb));
    }
    return host::Color::fromIndex(color.index);
}

db::Color toDb(const host::Color& color) {
    if (color.isRgb) return db::Color::ofRgb(color.red, color.green, color.blue);
    return db::Color::ofIndex(color.index);
}

host::TypedValue toHost(const db::TypedValue& v) {
    using Kind = db::TypedValue::Kind;
    switch (v.kind()) {
        case Kind::Text: return {v.code, wide(v.text)};
        case Kind::Real: return {v.code, v.real};
        case Kind::Integer:
            if (v.code >= 160 && v.code <= 169) return {v.code, std::int64_t{v.integer}};
            return {v.code, static_cast<std::int32_t>(v.integer)};
        case Kind::Point: return {v.code, toHost(v.point)};
        case Kind::Handle: return {v.code, host::ObjectId{db::parseHandle(v.text).value_or(0)}};
        case Kind::Binary: return {v.code, host::Bytes{v.text}};
    }
    return {};
}

std::optional<db::TypedValue> toDb(const host::TypedValue& v) {
    using Kind = db::TypedValue::Kind;
    switch (db::TypedValue::kindOf(v.groupCode)) {
        case Kind::Text:
            if (v.isText()) return db::TypedValue::ofText(v.groupCode, narrow(v.text()));
            break;
        case Kind::Real:
            if (v.isReal()) return db::TypedValue::ofReal(v.groupCode, v.real());
            break;
        case Kind::Integer:
            if (v.isInteger()) return db::TypedValue::ofInteger(v.groupCode, v.integer());
            if (auto* wideValue = std::get_if<std::int64_t>(&v.value)) return db::TypedValue::ofInteger(v.groupCode, *wideValue);
            break;
        case Kind::Point:
            if (v.isPoint()) return db::TypedValue::ofPoint(v.groupCode, toDb(v.point()));
            break;
        case Kind::Handle:
            if (v.isHandle()) return db::TypedValue::ofHandle(v.groupCode, v.handle().handle);
            break;
        case Kind::Binary:
            if (auto* bytes = std::get_if<host::Bytes>(&v.value)) return db::TypedValue::ofBinary(v.groupCode, bytes->data);
            break;
    }
    return std::nullopt;
}

}  // namespace veltarn::seam
