// One group code with its value: an element of an xrecord, a command argument or a lisp result.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

#include "host/ObjectId.h"
#include "host/Point3d.h"

namespace veltarn::host {

// Binary data (group codes 310 to 319), kept byte for byte.
struct Bytes {
    std::string data;
    friend bool operator==(const Bytes&, const Bytes&) = default;
};

// The group code decides what the drawing stores (1 text, 10 point, 40 real, 90 integer, ...);
// the value is whatever the code holds. The drawing keeps values of codes it does not know as
// they were read.
struct TypedValue {
    using Value = std::variant<std::monostate, std::int32_t, double, Point3d, std::wstring, ObjectId,
                               Bytes, std::int64_t>;

    int groupCode = 0;
    Value value;

    TypedValue() = default;
    TypedValue(int code, Value v) : groupCode(code), value(std::move(v)) {}

    bool isInteger() const { return std::holds_alternative<std::int32_t>(value); }
    bool isReal() const { return std::holds_alternative<double>(value); }
    bool isPoint() const { return std::holds_alternative<Point3d>(value); }
    bool isText() const { return std::holds_alternative<std::wstring>(value); }
    bool isHandle() const { return std::holds_alternative<ObjectId>(value); }

    // Each accessor gives the stored value, or the type's zero when the value is of another kind,
    // so that a damaged record never throws.
    std::int32_t integer() const { return isInteger() ? std::get<std::int32_t>(value) : 0; }
    double real() const { return isReal() ? std::get<double>(value) : 0.0; }
    Point3d point() const { return isPoint() ? std::get<Point3d>(value) : Point3d{}; }
    const std::wstring& text() const {
        static const std::wstring empty;
        return isText() ? std::get<std::wstring>(value) : empty;
    }
    ObjectId handle() const { return isHandle() ? std::get<ObjectId>(value) : ObjectId{}; }

    friend bool operator==(const TypedValue&, const TypedValue&) = default;
};

}  // namespace veltarn::host
