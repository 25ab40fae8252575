// INSERT: a block reference, its block's name (2), insertion point (10, in its OCS), scales (41 to
// 43), rotation (50) and, for a multiple insert, columns and rows (70, 71) with their spacing (44,
// 45); its ATTRIB entities follow it up to a SEQEND.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

#include "cad/db/ObjectIdentity.h"

namespace veltarn::db {
namespace kinds {
namespace {

using namespace kind_support;

constexpr int kAttributeInvisible = 1, kAttributeConstant = 2;

// A TEXT with an attribute's look and value.
TagList textOf(const TagList& attribute, std::size_t from, std::size_t to) {
    static constexpr int kTextCodes[] = {gc::kThickness, gc::kX,     gc::kReal,   gc::kText,
                                         gc::kAngle,     gc::kReal2, gc::kAngle2, gc::kTextStyleName,
                                         gc::kInt71,     gc::kInt72, gc::kX2,     gc::kNormalX};
    TagList source;
    for (std::size_t i = from; i < to; ++i)
        source.add(attribute[i].code, attribute[i].value);
    TagList text = pieceStart(source, "TEXT");
    bool modern = source.hasMarkers();
    if (modern) text.add(gc::kSubclass, "AcDbText");
    auto [bodyFrom, bodyTo] = modern ? source.subclass("AcDbText") : source.subclass("");
    if (bodyFrom == TagList::npos) bodyFrom = 1, bodyTo = source.size();
    for (int code : kTextCodes) {
        std::size_t at = source.find(code, bodyFrom, bodyTo);
        if (at == TagList::npos) continue;
        if (code == gc::kX || code == gc::kX2 || code == gc::kNormalX)
            text.addPoint(code, source.pointAt(at).value_or(Point3{}));
        else
            text.add(code, source[at].value);
    }
    if (text.find(gc::kText) == TagList::npos) text.add(gc::kText, "");
    if (modern) text.add(gc::kSubclass, "AcDbText");
    // An attribute's vertical alignment is its 74; a text's is its 73.
    if (auto vertical = source.text(gc::kInt74)) text.add(gc::kInt73, std::string(*vertical));
    return text;
}

// Into the block's entities, moved, scaled, rotated and mirrored as the reference shows them; a
// nested reference stays one. A multiple insert is not exploded.
Result<std::vector<TagList>> explode(const Database& db, const TagList& tags) {
    std::size_t end = ownEnd(tags);
    std::string name(dxf::trimSpaces(tags.text(gc::kName, 1, end).value_or("")));
    if (tags.integer(gc::kFlags, 1, end).value_or(1) > 1 || tags.integer(gc::kInt71, 1, end).value_or(1) > 1)
        return fail("a multiple insert (MINSERT) is not exploded");
    Handle block = db.findBlock(name);
    if (block == kNoHandle) return fail("cannot explode: the drawing has no block \"" + name + "\"");
    Point3 base = db.tags(db.blockBegin(block)).point(gc::kX).value_or(Point3{});
    Placement p;
    p.scale = {tags.real(gc::kReal2, 1, end).value_or(1), tags.real(gc::kReal3, 1, end).value_or(1),
               tags.real(gc::kReal4, 1, end).value_or(1)};
    if (p.scale.x == 0 || p.scale.y == 0 || p.scale.z == 0)
        return fail("cannot explode a block reference scaled to nothing");
    p.map = Affine::blockReference(base, p.scale, tags.real(gc::kAngle, 1, end).value_or(0),
                                   tags.point(gc::kX, 1, end).value_or(Point3{}), normalIn(tags, 1, end));
    p.mirrored = p.map.determinant() < 0;
    p.size = std::abs(p.scale.x);

    std::vector<TagList> out;
    for (Handle entity : db.entitiesOf(block)) {
        TagList piece = detached(db.tags(entity));
        if (piece.type() == "ATTDEF") {
            // The value of a variable attribute is the reference's ATTRIB (below); a constant one
            // has no ATTRIB, so its text is kept as the block shows it. Invisible ones show nothing.
            int flags = static_cast<int>(piece.integer(gc::kFlags, 1, ownEnd(piece)).value_or(0));
            if ((flags & kAttributeInvisible) || !(flags & kAttributeConstant)) continue;
            piece = textOf(piece, 0, piece.size());
        }
        if (auto placed = placeEntity(piece, p, name); !placed) return placed.error();
        out.push_back(std::move(piece));
    }
    // Attributes become TEXT with their values, where they stand: the data a user typed is kept
    // visible (dropping it, as some CAD programs do, loses it; bringing back the ATTDEF tags shows
    // words the user never typed). Invisible attributes are dropped.
    for (std::size_t i = end; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t next = tags.find(gc::kStructure, i + 1);
        if (next == TagList::npos) next = tags.size();
        TagList attribute;
        for (std::size_t j = i; j < next; ++j)
            attribute.add(tags[j].code, tags[j].value);
        attribute = detached(std::move(attribute));
        auto [bodyFrom, bodyTo] = attribute.hasMarkers() ? attribute.subclass("AcDbAttribute") : attribute.subclass("");
        if (attribute.integer(gc::kFlags, bodyFrom, bodyTo).value_or(0) & kAttributeInvisible) continue;
        out.push_back(textOf(attribute, 0, attribute.size()));
    }
    return out;
}

// A block reference inside the block: it stays one, with the placements combined.
Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    Ocs ocs(n);
    double rotation = tags.real(gc::kAngle, from, to).value_or(0) / kDegrees;
    Point3 scale{tags.real(gc::kReal2, from, to).value_or(1), tags.real(gc::kReal3, from, to).value_or(1),
                 tags.real(gc::kReal4, from, to).value_or(1)};
    Point3 u = p.map.vector(ocs.toWcs({std::cos(rotation), std::sin(rotation), 0}));
    Point3 w = p.map.vector(ocs.z);
    Ocs to3(w);
    double newRotation = std::atan2(dot(u, to3.y), dot(u, to3.x)) * kDegrees;
    Point3 insertion = to3.fromWcs(p.map.apply(ocs.toWcs(tags.point(gc::kX, from, to).value_or(Point3{}))));
    Point3 newScale{scale.x * length(u), scale.y * length(u) * (p.mirrored ? -1 : 1), scale.z * length(w)};
    mapPoints(tags, gc::kX, from, to, [&](const Point3&) { return insertion; });
    // Scales and rotation follow the insertion point in this order; missing ones are added when
    // they differ from their defaults.
    std::size_t cursor = tags.find(gc::kX, from, to) + 1;
    while (cursor < to && (tags[cursor].code == gc::kX + 10 || tags[cursor].code == gc::kX + 20))
        ++cursor;
    auto setReal = [&](int code, double value, double fallback) {
        std::size_t at = tags.find(code, from, to);
        if (at != TagList::npos) {
            tags[at].value = real(value);
            cursor = std::max(cursor, at + 1);
        } else if (value != fallback) {
            tags.insert(cursor++, code, real(value));
            ++to;
        }
    };
    setReal(gc::kReal2, newScale.x, 1);
    setReal(gc::kReal3, newScale.y, 1);
    setReal(gc::kReal4, newScale.z, 1);
    setReal(gc::kAngle, newRotation < 0 ? newRotation + 360 : newRotation, 0);
    mapReals(tags, 44, from, to, [&](double v) { return v * p.size; });  // column and row spacing
    mapReals(tags, 45, from, to, [&](double v) { return v * p.size; });
    setNormal(tags, from, ownEnd(tags), normalized(w));
    // Its attributes move with it.
    for (std::size_t i = ownEnd(tags); i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t next = tags.find(gc::kStructure, i + 1);
        placeText(tags, i + 1, next == TagList::npos ? tags.size() : next, p);
    }
    return {};
}

constexpr PropertyPlace kProperties[]{
    {Property::BlockName, "AcDbBlockReference", 2, ""},  {Property::ScaleX, "AcDbBlockReference", 41, "1"},
    {Property::ScaleY, "AcDbBlockReference", 42, "1"},   {Property::ScaleZ, "AcDbBlockReference", 43, "1"},
    {Property::Rotation, "AcDbBlockReference", 50, "0"},
};

}  // namespace

const EntityKindOps kBlockReference{
    .kind = EntityKind::BlockReference,
    .geometrySubclass = "AcDbBlockReference",
    .properties = kProperties,
    .place = place,
    .explode = explode,
};

// explode says why it does not break a multiple insert.
const EntityKindOps kMultipleInsert{
    .kind = EntityKind::MultipleInsert,
    .geometrySubclass = "AcDbBlockReference",
    .properties = kProperties,
    .place = place,
    .explode = explode,
};

}  // namespace kinds

// --- Attributes ----------------------------------------------------------------------------------------

std::vector<Attribute> attributes(const TagList& tags) {
    std::vector<Attribute> out;
    if (tags.type() != "INSERT") return out;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t end = tags.find(gc::kStructure, i + 1);
        if (end == TagList::npos) end = tags.size();
        Attribute a;
        a.handle = parseHandle(tags.text(gc::kHandle, i + 1, end).value_or("")).value_or(kNoHandle);
        a.tag = std::string(tags.text(gc::kName, i + 1, end).value_or(""));
        a.value = std::string(tags.text(gc::kText, i + 1, end).value_or(""));
        out.push_back(std::move(a));
    }
    return out;
}

bool setAttributeValue(TagList& tags, std::string_view tag, std::string_view value) {
    if (tags.type() != "INSERT") return false;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t end = tags.find(gc::kStructure, i + 1);
        if (end == TagList::npos) end = tags.size();
        if (!sameName(tags.text(gc::kName, i + 1, end).value_or(""), tag)) continue;
        tags.set(gc::kText, std::string(value), i + 1, end);
        return true;
    }
    return false;
}

}  // namespace veltarn::db
