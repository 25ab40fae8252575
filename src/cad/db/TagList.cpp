#include "cad/db/TagList.h"

#include "cad/db/GroupCodes.h"
#include "cad/dxf/NumberText.h"

#include <cstring>

namespace veltarn::db {

void TagList::add(int code, std::string value) { tags_.push_back({static_cast<std::int16_t>(code), std::move(value)}); }
void TagList::addReal(int code, double value) { add(code, dxf::formatReal(value)); }
void TagList::addInteger(int code, std::int64_t value) { add(code, std::to_string(value)); }

void TagList::addPoint(int code, const Point3& point) {
    addReal(code, point.x);
    addReal(code + 10, point.y);
    addReal(code + 20, point.z);
}

void TagList::addPoint2(int code, double x, double y) {
    addReal(code, x);
    addReal(code + 10, y);
}

void TagList::insert(std::size_t at, int code, std::string value) {
    tags_.insert(tags_.begin() + static_cast<std::ptrdiff_t>(at), {static_cast<std::int16_t>(code), std::move(value)});
}

void TagList::erase(std::size_t at, std::size_t count) {
    auto first = tags_.begin() + static_cast<std::ptrdiff_t>(at);
    tags_.erase(first, first + static_cast<std::ptrdiff_t>(count));
}

std::string_view TagList::type() const {
    if (tags_.empty() || tags_[0].code != 0) return {};
    return dxf::trimSpaces(tags_[0].value);
}

std::size_t TagList::find(int code, std::size_t from, std::size_t to) const {
    to = std::min(to, tags_.size());
    for (std::size_t i = from; i < to; ++i)
        if (tags_[i].code == code) return i;
    return npos;
}

std::size_t TagList::find(int code, std::string_view value, std::size_t from, std::size_t to) const {
    to = std::min(to, tags_.size());
    for (std::size_t i = from; i < to; ++i)
        if (tags_[i].code == code && dxf::trimSpaces(tags_[i].value) == value) return i;
    return npos;
}

std::optional<std::string_view> TagList::text(int code, std::size_t from, std::size_t to) const {
    std::size_t i = find(code, from, to);
    if (i == npos) return std::nullopt;
    return std::string_view(tags_[i].value);
}

std::optional<double> TagList::real(int code, std::size_t from, std::size_t to) const {
    std::size_t i = find(code, from, to);
    if (i == npos) return std::nullopt;
    return dxf::parseReal(tags_[i].value);
}

std::optional<std::int64_t> TagList::integer(int code, std::size_t from, std::size_t to) const {
    std::size_t i = find(code, from, to);
    if (i == npos) return std::nullopt;
    return dxf::parseInteger(tags_[i].value);
}

std::optional<Point3> TagList::pointAt(std::size_t at) const {
    if (at >= tags_.size()) return std::nullopt;
    int code = tags_[at].code;
    auto x = dxf::parseReal(tags_[at].value);
    if (!x) return std::nullopt;
    Point3 p{*x, 0, 0};
    if (at + 1 < tags_.size() && tags_[at + 1].code == code + 10) {
        p.y = dxf::parseReal(tags_[at + 1].value).value_or(0);
        if (at + 2 < tags_.size() && tags_[at + 2].code == code + 20) p.z = dxf::parseReal(tags_[at + 2].value).value_or(0);
    }
    return p;
}

std::optional<Point3> TagList::point(int code, std::size_t from, std::size_t to) const {
    std::size_t i = find(code, from, to);
    if (i == npos) return std::nullopt;
    return pointAt(i);
}

std::pair<std::size_t, std::size_t> TagList::subclass(std::string_view marker) const {
    // Only the object's own tags: a POLYLINE's or INSERT's VERTEX and ATTRIB tags are not its own.
    std::size_t own = find(0, 1);
    if (own == npos) own = tags_.size();
    if (find(100, 0, own) == npos) {
        std::size_t body = 1;
        while (body < own && (tags_[body].code == gc::kHandle || tags_[body].code == gc::kHandleCode)) ++body;
        return {body, own};
    }
    std::size_t at = find(100, marker, 0, own);
    if (at == npos) return {npos, npos};
    std::size_t end = find(100, at + 1, own);
    return {at + 1, end == npos ? own : end};
}

void TagList::set(int code, std::string value, std::size_t from, std::size_t to) {
    to = std::min(to, tags_.size());
    std::size_t i = find(code, from, to);
    if (i != npos) {
        tags_[i].value = std::move(value);
        return;
    }
    insert(to, code, std::move(value));
}

void TagList::setIn(std::string_view marker, int code, std::string value) {
    auto [from, to] = subclass(marker);
    if (from == npos) {
        // A missing subclass is added at the end of the object's own tags, so the value is never lost.
        std::size_t own = find(0, 1);
        if (own == npos) own = tags_.size();
        insert(own, 100, std::string(marker));
        insert(own + 1, code, std::move(value));
        return;
    }
    set(code, std::move(value), from, to);
}

void TagList::setRealIn(std::string_view marker, int code, double value) { setIn(marker, code, dxf::formatReal(value)); }
void TagList::setIntegerIn(std::string_view marker, int code, std::int64_t value) { setIn(marker, code, std::to_string(value)); }

void TagList::setPointIn(std::string_view marker, int code, const Point3& point, bool withZ) {
    auto [from, to] = subclass(marker);
    if (from == npos) {
        std::size_t own = find(0, 1);
        if (own == npos) own = tags_.size();
        insert(own, 100, std::string(marker));
        from = to = own + 1;
    }
    std::size_t at = find(code, from, to);
    if (at == npos) {
        at = to;
        insert(at, code, dxf::formatReal(point.x));
        insert(at + 1, code + 10, dxf::formatReal(point.y));
        if (withZ) insert(at + 2, code + 20, dxf::formatReal(point.z));
        return;
    }
    tags_[at].value = dxf::formatReal(point.x);
    if (at + 1 < tags_.size() && tags_[at + 1].code == code + 10) tags_[at + 1].value = dxf::formatReal(point.y);
    else insert(at + 1, code + 10, dxf::formatReal(point.y));
    if (at + 2 < tags_.size() && tags_[at + 2].code == code + 20) tags_[at + 2].value = dxf::formatReal(point.z);
    else if (withZ && point.z != 0) insert(at + 2, code + 20, dxf::formatReal(point.z));
}

void TagList::removeAll(int code, std::size_t from, std::size_t to) {
    to = std::min(to, tags_.size());
    std::size_t out = from;
    for (std::size_t i = from; i < to; ++i) {
        if (tags_[i].code == code) continue;
        if (out != i) tags_[out] = std::move(tags_[i]);  // a self-move would empty the value
        ++out;
    }
    tags_.erase(tags_.begin() + static_cast<std::ptrdiff_t>(out), tags_.begin() + static_cast<std::ptrdiff_t>(to));
}

// Blob layout per tag: int16 code, uint16 length (0xFFFF: a uint32 length follows), the bytes.
void TagList::encodeTag(std::string& out, int code, std::string_view value) {
    char head[8];
    auto shortCode = static_cast<std::int16_t>(code);
    std::memcpy(head, &shortCode, 2);
    std::size_t headLength = 4;
    if (value.size() < 0xFFFF) {
        auto length = static_cast<std::uint16_t>(value.size());
        std::memcpy(head + 2, &length, 2);
    } else {
        std::uint16_t mark = 0xFFFF;
        auto length = static_cast<std::uint32_t>(value.size());
        std::memcpy(head + 2, &mark, 2);
        std::memcpy(head + 4, &length, 4);
        headLength = 8;
    }
    out.append(head, headLength);
    out.append(value);
}

void TagList::encode(std::string& out) const {
    for (const TagValue& tag : tags_) encodeTag(out, tag.code, tag.value);
}

bool TagList::decodeTag(std::string_view blob, std::size_t& at, int& code, std::string_view& value) {
    if (at + 4 > blob.size()) return false;
    std::int16_t shortCode;
    std::uint16_t shortLength;
    std::memcpy(&shortCode, blob.data() + at, 2);
    std::memcpy(&shortLength, blob.data() + at + 2, 2);
    at += 4;
    std::size_t length = shortLength;
    if (shortLength == 0xFFFF) {
        std::uint32_t longLength;
        std::memcpy(&longLength, blob.data() + at, 4);
        length = longLength;
        at += 4;
    }
    code = shortCode;
    value = blob.substr(at, length);
    at += length;
    return true;
}

TagList TagList::decode(std::string_view blob) {
    TagList list;
    int code;
    std::string_view value;
    // Counted first: growing the vector tag by tag cost more than the decoding itself.
    std::size_t count = 0;
    for (std::size_t at = 0; decodeTag(blob, at, code, value);) ++count;
    list.tags_.reserve(count);
    for (std::size_t at = 0; decodeTag(blob, at, code, value);)
        list.tags_.push_back({static_cast<std::int16_t>(code), std::string(value)});
    return list;
}

}  // namespace veltarn::db
