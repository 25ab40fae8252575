// LINE: two points (10, 11) in WCS, extruded along its normal by its thickness.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {

using namespace kind_support;

namespace {

std::optional<Outline> outline(const TagList& tags, double) {
    const std::size_t end = ownEnd(tags);
    const auto from = tags.point(gc::kX, 1, end), to = tags.point(gc::kX2, 1, end);
    if (!from || !to) return std::nullopt;
    return outline_support::lineOutline({*from, *to});
}

}  // namespace

const EntityKindOps kLine{
    .kind = EntityKind::Line,
    .geometrySubclass = "AcDbLine",
    .keepsShapeUnderAnyMap = true,
    .reversible = true,
    .place = placeWcsPointsAndNormal,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
