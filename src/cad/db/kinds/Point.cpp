// POINT: one point (10) in WCS, extruded along its normal by its thickness.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {

using namespace kind_support;

const EntityKindOps kPoint{
    .kind = EntityKind::Point,
    .geometrySubclass = "AcDbPoint",
    .keepsShapeUnderAnyMap = true,
    .place = placeWcsPointsAndNormal,
};

}  // namespace veltarn::db::kinds
