// LINE: two points (10, 11) in WCS, extruded along its normal by its thickness.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {

using namespace kind_support;

const EntityKindOps kLine{
    .kind = EntityKind::Line,
    .geometrySubclass = "AcDbLine",
    .keepsShapeUnderAnyMap = true,
    .reversible = true,
    .place = placeWcsPointsAndNormal,
};

}  // namespace veltarn::db::kinds
