#include "cad/db/BlockPlacement.h"

#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

#include <numbers>

namespace veltarn::db {

using namespace kind_support;

namespace {

// A block reference inside the block: it stays one, with the placements combined.
Result<void> placeInsert(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    Point3 n = normalIn(tags, from, to);
    Ocs ocs(n);
    double rotation = tags.real(gc::kAngle, from, to).value_or(0) / kDegrees;
    Point3 scale{tags.real(gc::kReal2, from, to).value_or(1), tags.real(gc::kReal3, from, to).value_or(1), tags.real(gc::kReal4, from, to).value_or(1)};
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
    while (cursor < to && (tags[cursor].code == gc::kX + 10 || tags[cursor].code == gc::kX + 20)) ++cursor;
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
        kinds::placeText(tags, i + 1, next == TagList::npos ? tags.size() : next, p);
    }
    return {};
}

}  // namespace

Result<void> placeEntity(TagList& tags, const Placement& p, std::string_view block) {
    std::string type(tags.type());
    std::size_t from = 1, to = ownEnd(tags);
    auto unplaceable = [&](std::string_view why) {
        return fail("cannot explode: block \"" + std::string(block) + "\" holds a " + type + " that " + std::string(why));
    };
    const EntityKindOps* kind = kindOf(type, tags);
    // Kinds whose shape survives any linear map; the others need equal X and Y scales.
    bool affine = kind && kind->keepsShapeUnderAnyMap;
    if (!affine && !p.equalXY()) return unplaceable("cannot be scaled unequally in X and Y");
    Point3 n = normalIn(tags, from, to);
    if (!affine && !isDefaultNormal(n) && !p.equalXYZ())
        return unplaceable("lies in a tilted plane and cannot be scaled unequally");
    if (kind) {
        if (!kind->place) return unplaceable("cannot be placed");
        return kind->place(tags, from, to, p);
    }
    if (type == "INSERT") {
        return placeInsert(tags, from, to, p);
    } else {
        return unplaceable("cannot be placed");
    }
    return {};
}

}  // namespace veltarn::db
