// Explode, as a CAD user does it: a polyline into lines and arcs, a block reference into its
// block's entities placed where it shows them, a dimension into the entities of its block.
#pragma once

#include "cad/db/Database.h"

#include <vector>

namespace veltarn::db {

// The entities `entity` breaks into, ready for Database::appendEntity (no handles yet):
//   LWPOLYLINE, 2D POLYLINE  LINEs and ARCs (bulges), with the polyline's layer, colour, linetype,
//                            lineweight and thickness; widths are lost, as in CAD programs
//   3D POLYLINE              LINEs
//   polyface, polygon mesh   3DFACEs (with their invisible edges; not a smoothed mesh)
//   INSERT                   the block's entities, moved, scaled, rotated and mirrored as the
//                            reference shows them; a nested reference stays one (explode again to
//                            go deeper); attributes become TEXT (see kinds/Insert.cpp)
//   DIMENSION                the entities of its block
//   MLINE                    LINEs and ARCs, one per element and segment, caps and miters (see
//                            kinds/Mline.cpp)
// Fails for every other kind, for a multiple insert, for a block that holds an entity that cannot
// be placed (a dimension, a multileader, an unknown kind; a circle under unequal X and Y scales),
// and for a reference to a missing block.
Result<std::vector<TagList>> explode(const Database& db, Handle entity);

// The EXPLODE command on one entity: the pieces are appended to the entity's block and the entity
// is erased with its extension dictionary. Returns the new entities; on failure nothing changed.
// An entity on a locked layer is refused.
Result<std::vector<Handle>> explodeInPlace(Database& db, Handle entity);

}  // namespace veltarn::db
