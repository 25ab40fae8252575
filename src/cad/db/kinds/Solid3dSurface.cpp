// 3DSOLID and SURFACE: modeler geometry (ACIS data), kept as its tags; the workbench only tells
// them apart. The derived surfaces (EXTRUDEDSURFACE...) have DXF types of their own and no kind.
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {

const EntityKindOps kSolid3d{
    .kind = EntityKind::Solid3d,
    .outline = outline_support::noOutline,
};

const EntityKindOps kSurface{
    .kind = EntityKind::Surface,
    .outline = outline_support::noOutline,
};

}  // namespace veltarn::db::kinds
