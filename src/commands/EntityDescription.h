// An existing object described as an object definition: its type and the properties a
// classifier could prescribe, as the template export writes them.
#pragma once

#include <optional>

#include "classifier/ClassDef.h"
#include "host/DbEntity.h"

namespace veltarn {

// The definition of `entity` (no name, no tables): its type, colour, layer, linetype, linetype
// scale and lineweight, and whatever of text style and height, justification, attachment, hatch
// pattern with scale, angle and colours, multiline style, scale and justification, dimension and
// multileader style, block name and scale, rotation, circle radius, constant width, elevation and
// closed its kind carries. Names the classifier keeps lower-cased are lower-cased. nullopt for an
// object of no type.
std::optional<ClassDef> describeEntity(const host::DbEntity& entity);

}  // namespace veltarn
