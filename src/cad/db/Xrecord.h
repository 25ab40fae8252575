// XRECORD objects: chains of typed values (a group code and its value), read and replaced whole.
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::db {

// One value of a chain. Which member holds it follows from the group code: texts, handles
// (hexadecimal) and binary chunks (raw bytes) in `text`, reals in `real`, integers of every width
// in `integer`, points (codes 10-18 with their Y and Z codes) in `point`.
struct TypedValue {
    enum class Kind : std::uint8_t { Text, Real, Integer, Point, Handle, Binary };

    int code = 0;
    std::string text;
    double real = 0;
    std::int64_t integer = 0;
    Point3 point;

    static TypedValue ofText(int code, std::string text);
    static TypedValue ofReal(int code, double value);
    static TypedValue ofInteger(int code, std::int64_t value);
    static TypedValue ofPoint(int code, const Point3& point);
    static TypedValue ofHandle(int code, Handle handle);
    static TypedValue ofBinary(int code, std::string bytes);

    Kind kind() const { return kindOf(code); }
    static Kind kindOf(int code);
    bool operator==(const TypedValue&) const = default;
};

using ResultBuffer = std::vector<TypedValue>;

// The values of an XRECORD (after its subclass marker and cloning flag). Fails on an object that
// is not an open XRECORD.
Result<ResultBuffer> readXrecord(const Database& db, Handle xrecord);
// Replaces the values whole. A value that does not fit its group code (an integer out of range,
// a point code without a point) fails without a change.
Result<void> replaceXrecord(Database& db, Handle xrecord, const ResultBuffer& values);
// Creates an XRECORD holding `values` under `key` in `dictionary` (replacing what the key held).
Result<Handle> addXrecord(Database& db, Handle dictionary, std::string_view key, const ResultBuffer& values);

// The values as tags / from tags (points take three tags), for other users of chains.
Result<void> appendValues(TagList& tags, const ResultBuffer& values);
ResultBuffer valuesOf(const TagList& tags, std::size_t from, std::size_t to);

}  // namespace veltarn::db
