// MESH: a subdivision mesh, kept as its tags; the workbench only tells it apart.
#include "cad/db/kinds/Kinds.h"

namespace veltarn::db::kinds {

const EntityKindOps kMesh{
    .kind = EntityKind::Mesh,
};

}  // namespace veltarn::db::kinds
