#include "cad/db/kinds/KindSupport.h"

#include <numbers>

namespace veltarn::db::kind_support {

void setNormal(TagList& tags, std::size_t from, std::size_t to, const Point3& normal) {
    std::size_t at = tags.find(gc::kNormalX, from, to);
    if (at != TagList::npos) {
        mapPoints(tags, gc::kNormalX, at, at + 1, [&](const Point3&) { return normal; });
        if (!(at + 2 < tags.size() && tags[at + 2].code == gc::kNormalX + 20))
            tags.insert(at + 2, gc::kNormalX + 20, real(normal.z));
        return;
    }
    if (isDefaultNormal(normal)) return;
    std::size_t end = from;
    while (end < to && tags[end].code < gc::kXdataApp)
        ++end;
    tags.insert(end, gc::kNormalX, real(normal.x));
    tags.insert(end + 1, gc::kNormalX + 10, real(normal.y));
    tags.insert(end + 2, gc::kNormalX + 20, real(normal.z));
}

void placeInPlane(TagList& tags, std::size_t from, std::size_t to, const Placement& p, const PlaneMap& plane) {
    for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4})
        mapPoints(tags, code, from, to, [&](const Point3& q) { return plane.point(q); });
    mapReals(tags, gc::kReal, from, to, [&](double v) { return v * p.size; });
}

void addArc(Extents& box, const Point3& center, double radius, double start, double end) {
    auto normalized = [](double a) {
        a = std::fmod(a, 360.0);
        return a < 0 ? a + 360.0 : a;
    };
    start = normalized(start);
    end = normalized(end);
    if (end <= start) end += 360.0;
    auto addAngle = [&](double degrees) {
        const double radians = degrees * std::numbers::pi / 180.0;
        box.add(center.x + radius * std::cos(radians), center.y + radius * std::sin(radians));
    };
    addAngle(start);
    addAngle(end);
    for (double q = 0; q < 720.0; q += 90.0)
        if (q > start && q < end) addAngle(q);
}

void addTurnedBox(Extents& box, const Point3& anchor, double dx, double dy, double width, double height,
                  double radians) {
    const double c = std::cos(radians), s = std::sin(radians);
    for (double x : {dx, dx + width})
        for (double y : {dy, dy + height})
            box.add(anchor.x + x * c - y * s, anchor.y + x * s + y * c);
}

std::size_t shownLength(std::string_view text) {
    std::size_t count = 0;
    for (unsigned char c : text)
        if ((c & 0xC0) != 0x80) ++count;  // one per UTF-8 character
    return count;
}

std::optional<Extents> pointExtents(const TagList& tags, bool directionAt11) {
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    bool any = false;
    std::size_t end = tags.find(gc::kStructure, 1);
    if (end == TagList::npos) end = tags.size();
    for (std::size_t i = 1; i < end; ++i) {
        const int code = tags[i].code;
        if (code < 10 || code > 18 || (directionAt11 && code == 11) || tags[i].code >= 1000) continue;
        if (auto p = tags.pointAt(i); p && std::isfinite(p->x) && std::isfinite(p->y)) {
            box.add(p->x, p->y);
            any = true;
        }
    }
    if (!any) return std::nullopt;
    return box;
}

}  // namespace veltarn::db::kind_support
