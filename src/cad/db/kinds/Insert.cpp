// INSERT: a block reference, its block's name (2), insertion point (10, in its OCS), scales (41 to
// 43), rotation (50) and, for a multiple insert, columns and rows (70, 71) with their spacing (44,
// 45); its ATTRIB entities follow it up to a SEQEND.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

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

// How the reference (own tags [1, end)) places the entities of a block whose base point is `base`;
// nullopt for one scaled to nothing.
std::optional<Placement> placementOf(const TagList& tags, std::size_t end, const Point3& base) {
    Placement p;
    p.scale = {tags.real(gc::kReal2, 1, end).value_or(1), tags.real(gc::kReal3, 1, end).value_or(1),
               tags.real(gc::kReal4, 1, end).value_or(1)};
    if (p.scale.x == 0 || p.scale.y == 0 || p.scale.z == 0) return std::nullopt;
    p.map = Affine::blockReference(base, p.scale, tags.real(gc::kAngle, 1, end).value_or(0),
                                   tags.point(gc::kX, 1, end).value_or(Point3{}), normalIn(tags, 1, end));
    p.mirrored = p.map.determinant() < 0;
    p.size = std::abs(p.scale.x);
    return p;
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
    std::optional<Placement> placement =
        placementOf(tags, end, db.tags(db.blockBegin(block)).point(gc::kX).value_or(Point3{}));
    if (!placement) return fail("cannot explode a block reference scaled to nothing");
    const Placement& p = *placement;

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

// Its insertion point, in its OCS; what its block draws is not gathered.
std::optional<Outline> outline(const TagList& tags, double) { return outline_support::pointAt(tags, gc::kX, true); }

}  // namespace

const EntityKindOps kBlockReference{
    .kind = EntityKind::BlockReference,
    .geometrySubclass = "AcDbBlockReference",
    .properties = kProperties,
    .place = place,
    .explode = explode,
    .outline = outline,
};

// explode says why it does not break a multiple insert.
const EntityKindOps kMultipleInsert{
    .kind = EntityKind::MultipleInsert,
    .geometrySubclass = "AcDbBlockReference",
    .properties = kProperties,
    .place = place,
    .explode = explode,
    .outline = outline,
};

// --- Attributes given again from the block's definitions (ATTSYNC) ---------------------------------

namespace {

// The application groups (reactors, extension dictionary) of an entity, before its first marker.
TagList applicationGroups(const TagList& tags) {
    TagList out;
    const std::size_t end = tags.find(gc::kSubclass);
    for (std::size_t i = 1; i < std::min(end, tags.size()); ++i) {
        if (tags[i].code != gc::kControlString) continue;
        std::size_t close = tags.find(gc::kControlString, kGroupEnd, i + 1, end);
        if (close == TagList::npos) break;
        for (std::size_t j = i; j <= close; ++j)
            out.add(tags[j].code, tags[j].value);
        i = close;
    }
    return out;
}

TagList xdataOf(const TagList& tags) {
    for (std::size_t i = 1; i < tags.size(); ++i)
        if (tags[i].code >= gc::kXdataFirst) return tags.slice(i, tags.size());
    return {};
}

// The extension dictionary an attribute's group names; kNoHandle when it has none.
Handle extensionDictionaryOf(const TagList& attribute) {
    const std::size_t group = attribute.find(gc::kControlString, kXdictionaryGroup);
    if (group == TagList::npos) return kNoHandle;
    const std::size_t close = attribute.find(gc::kControlString, kGroupEnd, group + 1);
    return parseHandle(attribute.text(gc::kHardOwner, group + 1, close).value_or("")).value_or(kNoHandle);
}

// What a reference's attribute takes from its definition and from the reference.
struct AttributeSource {
    const TagList* definition;      // the ATTDEF
    const TagList* kept = nullptr;  // the reference's ATTRIB of the same tag, when it had one
    std::string_view layer;         // the reference's layer
    bool paper = false;             // the reference lies in paper space
};

// An ATTRIB as the definition describes it, in the definition's form, before it is placed: its
// look, tag and flags, and the kept attribute's value, groups and xdata (or the default value).
// The definition's prompt is no attribute's; a multiline definition's embedded text is left out.
TagList attributeFrom(const AttributeSource& source) {
    const TagList definition = detached(*source.definition);
    const bool modern = definition.hasMarkers();
    TagList out{{gc::kStructure, "ATTRIB"}};
    if (source.kept) {
        for (const TagValue& tag : applicationGroups(*source.kept))
            out.add(tag.code, tag.value);
    }
    if (source.paper && !modern) out.add(gc::kPaperSpace, "1");
    bool inDefinition = !modern;
    for (std::size_t i = 1; i < definition.size(); ++i) {
        const TagValue& tag = definition[i];
        if (tag.code >= gc::kXdataFirst) break;  // the definition's own xdata
        if (tag.code == gc::kSubclass) {
            if (tag.value == "AcDbAttributeDefinition") {
                out.add(gc::kSubclass, "AcDbAttribute");
                inDefinition = true;
                continue;
            }
            if (tag.value != "AcDbEntity" && tag.value != "AcDbText") break;
            out.add(tag.code, tag.value);
            if (tag.value == "AcDbEntity" && source.paper) out.add(gc::kPaperSpace, "1");
            continue;
        }
        if (tag.code == gc::kPrompt && inDefinition) continue;
        // A definition on layer 0 gives its attribute the reference's layer, as it does in CAD programs.
        if (tag.code == gc::kLayer && tag.value == "0") {
            out.add(gc::kLayer, std::string(source.layer));
            continue;
        }
        out.add(tag.code, tag.value);
    }
    auto [from, to] = modern ? out.subclass("AcDbText") : out.subclass("");
    if (from == TagList::npos) from = 1, to = out.size();
    std::string value(source.definition->text(gc::kText).value_or(""));
    if (source.kept) value = std::string(source.kept->text(gc::kText).value_or(""));
    out.set(gc::kText, std::move(value), from, to);
    if (source.kept) {
        for (const TagValue& tag : xdataOf(*source.kept))
            out.add(tag.code, tag.value);
    }
    return out;
}

}  // namespace

Result<std::vector<Handle>> synchronizeAttributes(Database& db, TagList& reference,
                                                  const std::vector<TagList>& definitions, const Point3& base) {
    const std::size_t end = ownEnd(reference);
    const std::string handle(reference.text(gc::kHandle, 1, end).value_or(""));
    const std::optional<Placement> placement = placementOf(reference, end, base);
    if (!placement) return fail("block reference " + handle + " is scaled to nothing: its attributes have no place");
    if (auto left = db.handlesLeft(definitions.size() + 1); !left) return left.error();
    const Handle owner = parseHandle(handle).value_or(kNoHandle);
    const bool modern = reference.hasMarkers();
    const std::string layer(reference.text(gc::kLayer, 1, end).value_or("0"));
    const bool paper = reference.integer(gc::kPaperSpace, 1, end).value_or(0) == 1;

    std::vector<TagList> had;
    TagList seqend;
    for (std::size_t i = end; i < reference.size();) {
        std::size_t next = reference.find(gc::kStructure, i + 1);
        if (next == TagList::npos) next = reference.size();
        TagList piece = reference.slice(i, next);
        if (piece.type() == "ATTRIB")
            had.push_back(std::move(piece));
        else if (piece.type() == "SEQEND")
            seqend = std::move(piece);
        i = next;
    }

    TagList out = reference.slice(0, end);
    std::vector<bool> kept(had.size(), false);
    std::size_t count = 0;
    for (const TagList& definition : definitions) {
        auto [from, to] =
            definition.hasMarkers() ? definition.subclass("AcDbAttributeDefinition") : definition.subclass("");
        if (from == TagList::npos) continue;  // no ATTDEF, or one without its own part
        if (definition.integer(gc::kFlags, from, to).value_or(0) & kAttributeConstant) continue;
        const std::string_view tag = dxf::trimSpaces(definition.text(gc::kTag, from, to).value_or(""));
        AttributeSource source{&definition, nullptr, layer, paper};
        // Equal tags pair in order: the first such attribute with the first such definition.
        for (std::size_t k = 0; k < had.size() && !source.kept; ++k) {
            auto [own, ownTo] = had[k].hasMarkers() ? had[k].subclass("AcDbAttribute") : had[k].subclass("");
            if (kept[k] || own == TagList::npos) continue;
            if (!sameName(dxf::trimSpaces(had[k].text(gc::kTag, own, ownTo).value_or("")), tag)) continue;
            kept[k] = true;
            source.kept = &had[k];
        }
        TagList attribute = attributeFrom(source);
        placeText(attribute, 1, attribute.size(), *placement);
        Handle id =
            source.kept ? parseHandle(source.kept->text(gc::kHandle).value_or("")).value_or(kNoHandle) : kNoHandle;
        if (id == kNoHandle) id = db.allocateHandle().value();  // enough are left: checked above
        setIdentity(attribute, id, gc::kHandle, owner, modern);
        for (const TagValue& t : attribute)
            out.add(t.code, t.value);
        ++count;
    }

    // An insert with attributes says so (66) and ends them with a SEQEND; one without has neither.
    const std::size_t follow = out.find(gc::kEntitiesFollow, 1, end);
    if (count == 0) {
        if (follow != TagList::npos) out.erase(follow);
    } else {
        if (follow != TagList::npos) {
            out[follow] = TagValue{gc::kEntitiesFollow, "1"};
        } else {
            const std::size_t name = out.find(gc::kName, 1, end);
            out.insert(name == TagList::npos ? end : name, gc::kEntitiesFollow, "1");
        }
        if (seqend.empty()) {
            seqend = {{gc::kStructure, "SEQEND"}};
            if (modern) seqend.add(gc::kSubclass, "AcDbEntity");
            if (paper) seqend.add(gc::kPaperSpace, "1");
            seqend.add(gc::kLayer, layer);
            setIdentity(seqend, db.allocateHandle().value(), gc::kHandle, owner, modern);
        }
        for (const TagValue& t : seqend)
            out.add(t.code, t.value);
    }

    std::vector<Handle> dropped;
    for (std::size_t k = 0; k < had.size(); ++k)
        if (Handle dictionary = extensionDictionaryOf(had[k]); !kept[k] && dictionary != kNoHandle)
            dropped.push_back(dictionary);
    reference = std::move(out);
    return dropped;
}

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
