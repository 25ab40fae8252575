// LEADER: its vertices (10) in WCS, from the arrow head on, in AcDbLeader; what it points from (an
// annotation, a hook line) is kept as its tags. Its own kind only for its outline: it is not
// placed, exploded or given properties, as before it had one.
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

namespace veltarn::db::kinds {
namespace {

std::optional<Outline> outline(const TagList& tags, double) {
    std::vector<Point3> vertices = pointList(tags, "AcDbLeader", gc::kX);
    if (vertices.empty()) return std::nullopt;
    return outline_support::lineOutline(std::move(vertices));
}

}  // namespace

const EntityKindOps kLeader{
    .kind = EntityKind::Leader,
    .outline = outline,
};

}  // namespace veltarn::db::kinds
