// 3DFACE, SOLID and TRACE: four corners (10 to 13). A 3DFACE's are in WCS; a SOLID's and a
// TRACE's are in their OCS, with a thickness along its normal.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> placeFace(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    for (int code : {gc::kX, gc::kX2, gc::kX3, gc::kX4})
        mapPoints(tags, code, from, to, [&](const Point3& q) { return p.map.apply(q); });
    return {};
}

Result<void> placeInOcs(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    PlaneMap plane(p, normalIn(tags, from, to));
    placeInPlane(tags, from, to, p, plane);
    setNormal(tags, from, to, plane.normal);
    return {};
}

// The corners in the order they are drawn: a SOLID's and a TRACE's third and fourth corners lie
// across from each other (1-2-4-3), a 3DFACE's follow round (1-2-3-4). A missing fourth corner is
// the third again: a triangle.
std::optional<Outline> corners(const TagList& tags, bool crossed, bool ocs) {
    const std::size_t end = ownEnd(tags);
    std::vector<Point3> ring;
    for (int code : {gc::kX, gc::kX2, gc::kX3}) {
        const auto corner = tags.point(code, 1, end);
        if (!corner) return std::nullopt;
        ring.push_back(*corner);
    }
    ring.push_back(tags.point(gc::kX4, 1, end).value_or(ring.back()));
    if (crossed) std::swap(ring[2], ring[3]);
    if (ocs) outline_support::toWcs(ring, normalIn(tags, 1, end));
    return outline_support::pathOutline(std::move(ring), true);
}

std::optional<Outline> faceOutline(const TagList& tags, double) { return corners(tags, false, false); }
std::optional<Outline> solidOutline(const TagList& tags, double) { return corners(tags, true, true); }

}  // namespace

const EntityKindOps kFace3d{
    .kind = EntityKind::Face3d,
    .geometrySubclass = "AcDbFace",
    .keepsShapeUnderAnyMap = true,
    .place = placeFace,
    .outline = faceOutline,
};

const EntityKindOps kSolid2d{
    .kind = EntityKind::Solid2d,
    .geometrySubclass = "AcDbTrace",
    .place = placeInOcs,
    .outline = solidOutline,
};

// A TRACE has no geometry subclass of its own to be written through.
const EntityKindOps kTrace{
    .kind = EntityKind::Trace,
    .place = placeInOcs,
    .outline = solidOutline,
};

}  // namespace veltarn::db::kinds
