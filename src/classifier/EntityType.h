// The entity type names of the classifier ("Line", "Polyline", ...) and the mapping from an
// entity of the drawing to its type name.
#pragma once

#include "host/DbEntity.h"
#include "host/EntityClass.h"

#include <array>
#include <string>
#include <string_view>

namespace veltarn {

// Every type name a classifier may give, in the order the mapping tests them.
extern const std::array<std::wstring_view, 24> kEntityTypeNames;

// The type name of an exact entity class; "Dimension" for every kind of dimension. Empty for
// classes that have no type (old-style 2D polylines, block references with rows and columns,
// attribute definitions, ...): such entities match no definition.
std::wstring_view entityTypeName(host::EntityClass entityClass);

// The type name of an open entity, as above.
std::wstring entityTypeOf(const host::DbEntity& entity);

}  // namespace veltarn
