// Placing a block's entities where a reference to the block shows them: moved, scaled, rotated
// and mirrored, for explode.
#pragma once

#include "cad/db/Database.h"
#include "cad/db/Transform.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace veltarn::db {

// How one block reference maps its block's entities into the drawing.
struct Placement {
    Affine map;
    Point3 scale{1, 1, 1};
    bool mirrored = false;
    double size = 1;  // how lengths scale (|X scale|)

    bool equalXY() const { return std::abs(std::abs(scale.x) - std::abs(scale.y)) <= 1e-9 * std::max(std::abs(scale.x), 1.0); }
    bool equalXYZ() const { return equalXY() && std::abs(std::abs(scale.x) - std::abs(scale.z)) <= 1e-9 * std::max(std::abs(scale.x), 1.0); }
};

// Rewrites an entity of the block (tags detached from their place, with its VERTEX or ATTRIB
// entities) as the placement shows it. A nested block reference stays one, with the placements
// combined; a hatch keeps its pattern where the placement shows it and is no longer associative.
// Fails, naming `block`, for kinds that cannot be placed (a dimension, a multileader, an unknown
// kind) and for shapes the placement would distort (a circle under unequal X and Y scales).
Result<void> placeEntity(TagList& tags, const Placement& p, std::string_view block);

}  // namespace veltarn::db
