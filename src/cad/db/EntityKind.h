// The module's entity type names: which entities a class of the classifier may be. An entity maps
// to a name only when it is exactly that kind; derived kinds (a 2D polyline, an attribute, a
// multiple insert) map to no name, except dimensions, which all map to "Dimension".
#pragma once

#include "cad/db/Database.h"

#include <string>

namespace veltarn::db {

// "Line", "Polyline", "3DPolyline", "PolyFaceMesh", "Dimension"... or empty.
std::string entityTypeName(const TagList& tags);
std::string entityTypeName(const Database& db, Handle entity);

bool isDimension(std::string_view dxfType);
// True for every entity: what lies in a block or in model or paper space (not BLOCK/ENDBLK).
bool isEntity(const Database& db, Handle handle);

}  // namespace veltarn::db
