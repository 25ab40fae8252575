#include "cad/seam/EntityExtents.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "cad/db/EntityProperties.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/KindSupport.h"

namespace veltarn::seam {
namespace {

using db::kind_support::addArc;

constexpr double kDegrees = std::numbers::pi / 180.0;
}  // namespace

std::optional<Extents> entityExtents(const db::TagList& tags) {
    const std::string_view type = tags.type();
    if (const db::EntityKindOps* kind = db::kindOf(type, tags))
        return kind->extents ? kind->extents(tags) : db::kind_support::pointExtents(tags, false);
    return db::kind_support::pointExtents(tags, false);  // the points of its geometry
}

}  // namespace veltarn::seam
