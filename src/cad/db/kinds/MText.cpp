// MTEXT: insertion point (10) in WCS, direction (11) or rotation (50), height (40), reference
// width (41), attachment point (71) and its text in 250-byte pieces (3) before the last (1).
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

// MTEXT has no mirror flags: its mirror image lies on the other side of its plane.
Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    auto vector = [&](const Point3& v) { return p.map.vector(v); };
    Point3 n = normalIn(tags, from, to);
    Point3 direction =
        tags.point(gc::kX2, from, to)
            .value_or(Ocs(n).toWcs({std::cos(tags.real(gc::kAngle, from, to).value_or(0) / kDegrees),
                                    std::sin(tags.real(gc::kAngle, from, to).value_or(0) / kDegrees), 0}));
    Point3 newDirection = normalized(vector(direction));
    Point3 newNormal = normalized(cross(vector(Ocs(n).x), vector(Ocs(n).y)));
    mapPoints(tags, gc::kX, from, to, [&](const Point3& q) { return p.map.apply(q); });
    for (int code : {gc::kReal, gc::kReal2, 46})
        mapReals(tags, code, from, to, [&](double v) { return v * p.size; });
    tags.removeAll(gc::kAngle, from, to);
    to = ownEnd(tags);
    if (tags.find(gc::kX2, from, to) != TagList::npos)
        mapPoints(tags, gc::kX2, from, to, [&](const Point3&) { return newDirection; });
    else
        tags.setPointIn("AcDbMText", gc::kX2, newDirection);
    setNormal(tags, from, ownEnd(tags), newNormal);
    return {};
}

// MTEXT: its reference width (or its longest line) by its lines, placed by its attachment point
// (71: 1 top left ... 9 bottom right) and turned by its direction (11) or rotation (50).
std::optional<Extents> mtextExtents(const TagList& tags) {
    auto insertion = tags.point(gc::kX);
    if (!insertion) return std::nullopt;
    const double height = std::abs(tags.real(gc::kReal).value_or(0));
    std::string text;
    for (std::size_t i = 0; i < tags.size(); ++i)
        if (tags[i].code == gc::kMoreText || tags[i].code == gc::kText) text += tags[i].value;
    std::size_t lines = 1, longest = 0, start = 0;
    for (std::size_t at = text.find("\\P");; at = text.find("\\P", start)) {
        const std::size_t end = at == std::string::npos ? text.size() : at;
        longest = std::max(longest, shownLength(std::string_view(text).substr(start, end - start)));
        if (at == std::string::npos) break;
        ++lines;
        start = at + 2;
    }
    double width = tags.real(gc::kReal2).value_or(0);
    if (width <= 0) width = longest * height * kCharacterWidth;
    const double boxHeight = height + (lines - 1) * height * kLineSpacing;
    double radians = tags.real(gc::kAngle).value_or(0) * kRadiansPerDegree;
    if (auto direction = tags.point(gc::kX2); direction && (direction->x != 0 || direction->y != 0))
        radians = std::atan2(direction->y, direction->x);
    const auto attachment = std::clamp<std::int64_t>(tags.integer(gc::kInt71).value_or(1), 1, 9);
    const int column = static_cast<int>((attachment - 1) % 3), row = static_cast<int>((attachment - 1) / 3);
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    // Top attachments hang the box below the point, bottom ones stand it on the point.
    addTurnedBox(box, *insertion, -width * column / 2, -boxHeight * (2 - row) / 2, width, boxHeight, radians);
    return box;
}

constexpr PropertyPlace kProperties[]{
    {Property::Rotation, "AcDbMText", 50, "0"},
    {Property::TextStyle, "AcDbMText", 7, "Standard"},
    {Property::TextHeight, "AcDbMText", 40, ""},
    {Property::AttachmentPoint, "AcDbMText", 71, "1"},
};

}  // namespace

const EntityKindOps kMText{
    .kind = EntityKind::MText,
    .geometrySubclass = "AcDbMText",
    .properties = kProperties,
    .place = place,
    .extents = mtextExtents,
};

}  // namespace veltarn::db::kinds
