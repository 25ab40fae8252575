// What is particular to one entity kind, in one place: each kind the database handles has a file
// under kinds/ that fills one EntityKindOps, and the operations (Geometry, BlockPlacement,
// Explode, EntityProperties, the seam's extents) dispatch through kindOf() instead of switching
// over DXF types. A new operation is one member here and one function in each kind's file.
#pragma once

#include "cad/db/Database.h"
#include "cad/db/EntityKind.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/Extents.h"
#include "cad/db/Geometry.h"
#include "cad/db/Outline.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace veltarn::db {

struct Placement;

// A property held in one tag of one subclass (see EntityProperties.h).
struct PropertyPlace {
    Property property;
    std::string_view marker;
    int code;
    std::string_view fallback;  // the value when the tag is absent
};

// The closed flag: bit `bit` of `code` in `marker`.
struct ClosedFlag {
    std::string_view marker;
    int code;
    int bit;
};

struct EntityKindOps {
    EntityKind kind = EntityKind::Other;
    // The subclass holding the kind's geometry (geometrySubclass()); empty when it has none.
    std::string_view geometrySubclass = {};
    // Its own properties kept in one tag each.
    std::span<const PropertyPlace> properties = {};
    // Its closed flag, when it can be closed.
    std::optional<ClosedFlag> closedFlag = std::nullopt;
    // Its shape survives any linear map (a line does; a circle under unequal scales does not).
    bool keepsShapeUnderAnyMap = false;
    // Its points in the other order draw the same shape while it is open (a line, a polyline):
    // what tells a duplicate drawn the other way round.
    bool reversible = false;
    // Rewrites the entity (own tags [from, to), detached) where a block reference shows it; null
    // when the kind cannot be placed.
    Result<void> (*place)(TagList& tags, std::size_t from, std::size_t to, const Placement& p) = nullptr;
    // Its vertices with bulges and widths (polylineVertices) and writing them; null when it has none.
    std::vector<Vertex> (*vertices)(const TagList& tags) = nullptr;
    bool (*setVertices)(Database& db, TagList& tags, const std::vector<Vertex>& vertices) = nullptr;
    // Its 2D box; null: the points of its geometry (codes 10 to 18).
    std::optional<Extents> (*extents)(const TagList& tags) = nullptr;
    // The entities it breaks into; null when the kind is not exploded.
    Result<std::vector<TagList>> (*explode)(const Database& db, const TagList& tags) = nullptr;
    // Its outline within `tolerance` (positive or 0 for the finest; see Outline.h), before the
    // common clean-up; null: the point at code 10 as it is stored (WCS).
    std::optional<Outline> (*outline)(const TagList& tags, double tolerance) = nullptr;
};

// The kind of an entity of DXF type `dxfType` with tags `tags` (its flags pick derived kinds);
// null for a type the database keeps as its tags only (see docs/entity-kinds.md).
const EntityKindOps* kindOf(std::string_view dxfType, const TagList& tags);
inline const EntityKindOps* kindOf(const TagList& tags) { return kindOf(tags.type(), tags); }

}  // namespace veltarn::db
