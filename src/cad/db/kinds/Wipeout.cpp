// WIPEOUT: an image's insertion point (10) and U and V vectors (11, 12) in WCS; its clip boundary
// (14) is in image units.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    mapPoints(tags, gc::kX, from, to, [&](const Point3& q) { return p.map.apply(q); });
    mapPoints(tags, gc::kX2, from, to, [&](const Point3& v) { return p.map.vector(v); });
    mapPoints(tags, gc::kX3, from, to, [&](const Point3& v) { return p.map.vector(v); });
    return {};
}

}  // namespace

const EntityKindOps kWipeout{
    .kind = EntityKind::Wipeout,
    .geometrySubclass = "AcDbRasterImage",
    .keepsShapeUnderAnyMap = true,
    .place = place,
};

}  // namespace veltarn::db::kinds
