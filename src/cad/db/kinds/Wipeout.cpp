// WIPEOUT: an image's insertion point (10) and U and V vectors (11, 12) in WCS; its clip boundary
// (14) is in image units.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    mapPoints(tags, gc::kX, from, to, [&](const Point3& q) { return p.map.apply(q); });
    mapPoints(tags, gc::kX2, from, to, [&](const Point3& v) { return p.map.vector(v); });
    mapPoints(tags, gc::kX3, from, to, [&](const Point3& v) { return p.map.vector(v); });
    return {};
}

constexpr int kImageSize = gc::kX4, kBoundary = 14;

// A polygon: its clip boundary, whose image units run from the image's top left corner, a pixel
// along U and down V; two boundary points are the opposite corners of a rectangle.
// Its data subclass is AcDbWipeout as CAD programs write it, AcDbRasterImage in older files.
std::optional<Outline> outline(const TagList& tags, double) {
    std::string_view marker = "AcDbWipeout";
    auto [from, to] = tags.subclass(marker);
    if (from == TagList::npos) std::tie(from, to) = tags.subclass(marker = "AcDbRasterImage");
    if (from == TagList::npos) return std::nullopt;
    const auto insertion = tags.point(gc::kX, from, to), u = tags.point(gc::kX2, from, to),
               v = tags.point(gc::kX3, from, to);
    if (!insertion || !u || !v) return std::nullopt;
    std::vector<Point3> boundary = pointList(tags, marker, kBoundary);
    if (boundary.size() == 2)
        boundary = {boundary[0], {boundary[1].x, boundary[0].y, 0}, boundary[1], {boundary[0].x, boundary[1].y, 0}};
    if (boundary.size() < 3) return outline_support::pointOutline(*insertion);
    const Point3 origin = *insertion + *u * 0.5 - *v * 0.5;
    const double height = tags.point(kImageSize, from, to).value_or(Point3{1, 1, 0}).y;
    std::vector<Point3> ring;
    for (const Point3& p : boundary)
        ring.push_back(origin + *u * p.x + *v * (height - p.y));
    return outline_support::pathOutline(std::move(ring), true);
}

}  // namespace

const EntityKindOps kWipeout{
    .kind = EntityKind::Wipeout,
    .geometrySubclass = "AcDbRasterImage",
    .keepsShapeUnderAnyMap = true,
    .place = place,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
