// TEXT, and the attributes ATTRIB and ATTDEF that are texts with a tag: insertion point (10) and
// alignment point (11) in their OCS, height (40), rotation (50), justification (72, and 73 in a
// second AcDbText subclass; 74 for attributes).
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db {
namespace {

using namespace kind_support;

constexpr int kTextUpsideDown = 4;  // TEXT generation flag (71)

// Its insertion point, in its OCS.
std::optional<Outline> textOutline(const TagList& tags, double) { return outline_support::pointAt(tags, gc::kX, true); }

}  // namespace

namespace kinds {

// TEXT, ATTRIB and ATTDEF, whose points are in their OCS.
void placeText(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    PlaneMap plane(p, normalIn(tags, from, to));
    mapPoints(tags, gc::kX, from, to, [&](const Point3& q) { return plane.point(q); });
    mapPoints(tags, gc::kX2, from, to, [&](const Point3& q) { return plane.point(q); });
    mapReals(tags, gc::kReal, from, to, [&](double v) { return v * p.size; });
    double rotation = plane.angle(tags.real(gc::kAngle, from, to).value_or(0));
    std::size_t at = tags.find(gc::kAngle, from, to);
    if (at == TagList::npos) {
        // After the height, where DXF puts it (or at the end of the text's own tags).
        std::size_t height = tags.find(gc::kReal, from, to);
        at = height == TagList::npos ? to : height + 1;
        tags.insert(at, gc::kAngle, "");
        ++to;
    }
    tags[at].value = real(rotation);
    if (p.mirrored) {  // the mirror image of a text reads upside down along its new direction
        std::size_t flags = tags.find(gc::kInt71, from, to);
        if (flags == TagList::npos) {
            tags.insert(at + 1, gc::kInt71, "0");
            flags = at + 1;
            ++to;
        }
        tags[flags].value = std::to_string(dxf::parseInteger(tags[flags].value).value_or(0) ^ kTextUpsideDown);
    }
    setNormal(tags, from, to, plane.normal);
}

}  // namespace kinds

namespace {

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    kinds::placeText(tags, from, to, p);
    return {};
}

// TEXT and ATTDEF/ATTRIB: a box of the text's length and height on its baseline, turned by its
// rotation, placed by its justification (72 horizontal, 73 vertical, anchored at the alignment point).
std::optional<Extents> textExtents(const TagList& tags) {
    auto insertion = tags.point(gc::kX);
    if (!insertion) return std::nullopt;
    const double height = std::abs(tags.real(gc::kReal).value_or(0));
    const double widthFactor = std::abs(tags.real(gc::kReal2).value_or(1));
    const double width = shownLength(tags.text(gc::kText).value_or("")) * height * kCharacterWidth * widthFactor;
    const double radians = tags.real(gc::kAngle).value_or(0) * kRadiansPerDegree;
    const auto horizontal = tags.integer(gc::kInt72).value_or(0);
    const auto vertical = tags.integer(gc::kInt73).value_or(0);
    Point3 anchor = *insertion;
    double dx = 0, dy = 0;
    if (horizontal != 0 || vertical != 0) {
        if (auto alignment = tags.point(gc::kX2)) anchor = *alignment;
        if (horizontal == 1 || horizontal == 4)
            dx = -width / 2;  // center, middle
        else if (horizontal == 2)
            dx = -width;  // right
        if (horizontal == 4 || vertical == 2)
            dy = -height / 2;  // middle
        else if (vertical == 3)
            dy = -height;  // top
    }
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    addTurnedBox(box, anchor, dx, dy, width, height, radians);
    return box;
}

constexpr PropertyPlace kProperties[]{
    {Property::Rotation, "AcDbText", 50, "0"},
    {Property::TextStyle, "AcDbText", 7, "Standard"},
    {Property::TextHeight, "AcDbText", 40, ""},
};

// TEXT keeps its vertical alignment (73) in a second AcDbText subclass.
std::pair<std::size_t, std::size_t> secondTextSubclass(const TagList& tags) {
    auto [from, to] = ownTags(tags);
    if (!tags.hasMarkers()) return {from, to};
    std::size_t first = tags.find(gc::kSubclass, "AcDbText", 0, to);
    std::size_t second = first == TagList::npos ? TagList::npos : tags.find(gc::kSubclass, "AcDbText", first + 1, to);
    if (second == TagList::npos) return {TagList::npos, TagList::npos};
    std::size_t end = tags.find(gc::kSubclass, second + 1, to);
    return {second + 1, end == TagList::npos ? to : end};
}

}  // namespace

const EntityKindOps kinds::kText{
    .kind = EntityKind::Text,
    .geometrySubclass = "AcDbText",
    .properties = kProperties,
    .place = place,
    .extents = textExtents,
    .outline = textOutline,
};

// Attributes are placed with their block reference (an ATTDEF in a block becomes a TEXT first).
const EntityKindOps kinds::kAttribute{
    .kind = EntityKind::Attribute,
    .extents = textExtents,
    .outline = textOutline,
};

const EntityKindOps kinds::kAttributeDefinition{
    .kind = EntityKind::AttributeDefinition,
    .extents = textExtents,
    .outline = textOutline,
};

std::optional<int> textJustification(const TagList& tags) {
    if (tags.type() != "TEXT") return std::nullopt;
    auto [from, to] = tags.subclass("AcDbText");
    int horizontal = static_cast<int>(tags.integer(gc::kInt72, from, to).value_or(0));
    auto [vFrom, vTo] = secondTextSubclass(tags);
    int vertical = vFrom == TagList::npos ? 0 : static_cast<int>(tags.integer(gc::kInt73, vFrom, vTo).value_or(0));
    if (vertical == 0 || horizontal > 2) return horizontal;
    return 6 + (3 - vertical) * 3 + horizontal;
}

bool setTextJustification(TagList& tags, int justification) {
    if (tags.type() != "TEXT" || justification < 0 || justification > 14) return false;
    int horizontal = justification <= 5 ? justification : (justification - 6) % 3;
    int vertical = justification <= 5 ? 0 : 3 - (justification - 6) / 3;
    tags.setIntegerIn("AcDbText", gc::kInt72, horizontal);
    // Any justification but left needs the alignment point; it starts at the insertion point.
    auto [from, to] = tags.subclass("AcDbText");
    if (justification != 0 && tags.find(gc::kX2, from, to) == TagList::npos)
        tags.setPointIn("AcDbText", gc::kX2, tags.point(gc::kX, from, to).value_or(Point3{}));
    auto [vFrom, vTo] = secondTextSubclass(tags);
    if (vFrom == TagList::npos) {
        auto [own, end] = ownTags(tags);
        (void)own;
        tags.insert(end, gc::kSubclass, "AcDbText");
        tags.insert(end + 1, gc::kInt73, std::to_string(vertical));
        return true;
    }
    tags.set(gc::kInt73, std::to_string(vertical), vFrom, vTo);
    return true;
}

}  // namespace veltarn::db
