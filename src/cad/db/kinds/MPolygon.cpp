// MPOLYGON: a polygon with holes and fill, kept as its tags; the workbench only tells it apart.
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {

const EntityKindOps kMPolygon{
    .kind = EntityKind::MPolygon,
    .outline = outline_support::noOutline,
};

}  // namespace veltarn::db::kinds
