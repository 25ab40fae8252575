// The tags of one object, decoded to UTF-8 value texts: what an object opened for reading or writing
// is made of. Values keep the text form DXF writes, so an unchanged value goes back as it came.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veltarn::db {

struct TagValue {
    std::int16_t code = 0;
    std::string value;

    bool operator==(const TagValue&) const = default;
};

struct Point3 {
    double x = 0, y = 0, z = 0;
    bool operator==(const Point3&) const = default;
};

class TagList {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    TagList() = default;
    TagList(std::initializer_list<TagValue> tags) : tags_(tags) {}

    std::size_t size() const { return tags_.size(); }
    bool empty() const { return tags_.empty(); }
    const TagValue& operator[](std::size_t i) const { return tags_[i]; }
    TagValue& operator[](std::size_t i) { return tags_[i]; }
    auto begin() const { return tags_.begin(); }
    auto end() const { return tags_.end(); }
    void clear() { tags_.clear(); }
    void reserve(std::size_t n) { tags_.reserve(n); }
    bool operator==(const TagList&) const = default;

    void add(int code, std::string value);
    void addReal(int code, double value);
    void addInteger(int code, std::int64_t value);
    void addPoint(int code, const Point3& point);  // code, code+10, code+20
    void addPoint2(int code, double x, double y);  // code, code+10
    void insert(std::size_t at, int code, std::string value);
    void erase(std::size_t at, std::size_t count = 1);
    // Tags [from, to) as a list of their own.
    TagList slice(std::size_t from, std::size_t to) const {
        TagList out;
        out.tags_.assign(tags_.begin() + static_cast<std::ptrdiff_t>(from), tags_.begin() + static_cast<std::ptrdiff_t>(to));
        return out;
    }

    // The "0" tag's value: the DXF type name.
    std::string_view type() const;

    // First index in [from, to) holding `code`; npos when none.
    std::size_t find(int code, std::size_t from = 0, std::size_t to = npos) const;
    // First index holding `code` with exactly `value`.
    std::size_t find(int code, std::string_view value, std::size_t from = 0, std::size_t to = npos) const;

    std::optional<std::string_view> text(int code, std::size_t from = 0, std::size_t to = npos) const;
    std::optional<double> real(int code, std::size_t from = 0, std::size_t to = npos) const;
    std::optional<std::int64_t> integer(int code, std::size_t from = 0, std::size_t to = npos) const;
    // X from `code`, Y and Z from the codes 10 and 20 above it when they follow (Z 0 when absent).
    std::optional<Point3> point(int code, std::size_t from = 0, std::size_t to = npos) const;
    std::optional<Point3> pointAt(std::size_t at) const;

    // The tags of one subclass: from its 100 marker to the next marker. Files without markers
    // (R12) have one body: everything after the handle. {npos, npos} when the marker is missing.
    std::pair<std::size_t, std::size_t> subclass(std::string_view marker) const;
    bool hasMarkers() const { return find(100) != npos; }

    // Replace the first `code` in [from, to), or insert it at `to` when missing.
    void set(int code, std::string value, std::size_t from, std::size_t to);
    // The same inside a subclass (the whole body in files without markers).
    void setIn(std::string_view marker, int code, std::string value);
    void setRealIn(std::string_view marker, int code, double value);
    void setIntegerIn(std::string_view marker, int code, std::int64_t value);
    void setPointIn(std::string_view marker, int code, const Point3& point, bool withZ = true);
    // Removes every `code` in [from, to).
    void removeAll(int code, std::size_t from = 0, std::size_t to = npos);

    // The compact form an owned object is stored in: per tag a 16-bit code, a length and the bytes.
    void encode(std::string& out) const;
    // One tag in that form, for building blobs without a TagList.
    static void encodeTag(std::string& out, int code, std::string_view value);
    static TagList decode(std::string_view blob);
    // Reads the tag at `at` of such a blob and steps past it; false at the end.
    static bool decodeTag(std::string_view blob, std::size_t& at, int& code, std::string_view& value);

private:
    std::vector<TagValue> tags_;
};

}  // namespace veltarn::db
