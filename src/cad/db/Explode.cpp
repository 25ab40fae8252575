#include "cad/db/Explode.h"

#include "cad/db/BlockPlacement.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/ExplodeSupport.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/ObjectIdentity.h"
#include "cad/db/Transform.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/db/kinds/KindSupport.h"
#include "cad/dxf/NumberText.h"

#include <array>
#include <cmath>
#include <numbers>

namespace veltarn::db {

using namespace kind_support;

namespace {

constexpr int kAttributeInvisible = 1, kAttributeConstant = 2;

// A TEXT with an attribute's look and value.
TagList textOf(const TagList& attribute, std::size_t from, std::size_t to) {
    static constexpr int kTextCodes[] = {gc::kThickness, gc::kX, gc::kReal, gc::kText, gc::kAngle, gc::kReal2, gc::kAngle2,
                                         gc::kTextStyleName, gc::kInt71, gc::kInt72, gc::kX2, gc::kNormalX};
    TagList source;
    for (std::size_t i = from; i < to; ++i) source.add(attribute[i].code, attribute[i].value);
    TagList text = pieceStart(source, "TEXT");
    bool modern = source.hasMarkers();
    if (modern) text.add(gc::kSubclass, "AcDbText");
    auto [bodyFrom, bodyTo] = modern ? source.subclass("AcDbText") : source.subclass("");
    if (bodyFrom == TagList::npos) bodyFrom = 1, bodyTo = source.size();
    for (int code : kTextCodes) {
        std::size_t at = source.find(code, bodyFrom, bodyTo);
        if (at == TagList::npos) continue;
        if (code == gc::kX || code == gc::kX2 || code == gc::kNormalX) text.addPoint(code, source.pointAt(at).value_or(Point3{}));
        else text.add(code, source[at].value);
    }
    if (text.find(gc::kText) == TagList::npos) text.add(gc::kText, "");
    if (modern) text.add(gc::kSubclass, "AcDbText");
    // An attribute's vertical alignment is its 74; a text's is its 73.
    if (auto vertical = source.text(gc::kInt74)) text.add(gc::kInt73, std::string(*vertical));
    return text;
}

Result<std::vector<TagList>> explodeInsert(const Database& db, const TagList& tags) {
    std::size_t end = ownEnd(tags);
    std::string name(dxf::trimSpaces(tags.text(gc::kName, 1, end).value_or("")));
    if (tags.integer(gc::kFlags, 1, end).value_or(1) > 1 || tags.integer(gc::kInt71, 1, end).value_or(1) > 1)
        return fail("a multiple insert (MINSERT) is not exploded");
    Handle block = db.findBlock(name);
    if (block == kNoHandle) return fail("cannot explode: the drawing has no block \"" + name + "\"");
    Point3 base = db.tags(db.blockBegin(block)).point(gc::kX).value_or(Point3{});
    Placement p;
    p.scale = {tags.real(gc::kReal2, 1, end).value_or(1), tags.real(gc::kReal3, 1, end).value_or(1), tags.real(gc::kReal4, 1, end).value_or(1)};
    if (p.scale.x == 0 || p.scale.y == 0 || p.scale.z == 0) return fail("cannot explode a block reference scaled to nothing");
    p.map = Affine::blockReference(base, p.scale, tags.real(gc::kAngle, 1, end).value_or(0), tags.point(gc::kX, 1, end).value_or(Point3{}),
                                   normalIn(tags, 1, end));
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
        for (std::size_t j = i; j < next; ++j) attribute.add(tags[j].code, tags[j].value);
        attribute = detached(std::move(attribute));
        auto [bodyFrom, bodyTo] = attribute.hasMarkers() ? attribute.subclass("AcDbAttribute") : attribute.subclass("");
        if (attribute.integer(gc::kFlags, bodyFrom, bodyTo).value_or(0) & kAttributeInvisible) continue;
        out.push_back(textOf(attribute, 0, attribute.size()));
    }
    return out;
}

}  // namespace

Result<std::vector<TagList>> explode(const Database& db, Handle entity) {
    TagList tags;
    if (OpenStatus status = db.read(entity, tags); status != OpenStatus::Ok) return fail("cannot explode " + formatHandle(entity) + ": " + describe(status));
    if (db.blockOf(entity) == kNoHandle) return fail("cannot explode " + formatHandle(entity) + ": not an entity");
    std::string_view type = tags.type();
    if (const EntityKindOps* kind = kindOf(type, tags)) {
        if (kind->explode) return kind->explode(db, tags);
        return fail("cannot explode a " + std::string(type));
    }
    if (type == "INSERT") return explodeInsert(db, tags);
    return fail("cannot explode a " + std::string(type));
}

Result<std::vector<Handle>> explodeInPlace(Database& db, Handle entity) {
    {
        ObjectWriter check = db.openForWrite(entity);
        if (!check) return fail("cannot explode " + formatHandle(entity) + ": " + describe(check.status()));
    }
    auto pieces = explode(db, entity);
    if (!pieces) return pieces.error();
    Handle block = db.blockOf(entity);
    std::vector<Handle> added;
    for (TagList& piece : *pieces) {
        auto handle = db.appendEntity(block, std::move(piece));
        if (!handle) {
            for (Handle h : added) (void)db.erase(h);  // nothing half done
            return handle.error();
        }
        added.push_back(*handle);
    }
    (void)eraseObject(db, entity);
    return added;
}

}  // namespace veltarn::db
