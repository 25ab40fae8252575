// The 2D box an entity covers, from its geometry: what window and crossing selection compare.
#pragma once

#include <optional>

#include "cad/db/Extents.h"
#include "cad/db/TagList.h"

namespace veltarn::seam {

using Extents = db::Extents;

// Circles, arcs, ellipses and polylines (bulges included) by their curves; texts by an approximate
// box from their height, length, rotation and justification; hatches by their vertices; everything
// else by the points of its geometry (codes 10 to 18, as the kind stores them). nullopt for an
// entity that has no point (an infinite line's direction alone, a damaged entity).
std::optional<Extents> entityExtents(const db::TagList& tags);

}  // namespace veltarn::seam
