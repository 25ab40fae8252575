// MESH: a subdivision mesh, kept as its tags; the workbench only tells it apart.
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {

const EntityKindOps kMesh{
    .kind = EntityKind::Mesh,
    .outline = outline_support::noOutline,
};

}  // namespace veltarn::db::kinds
