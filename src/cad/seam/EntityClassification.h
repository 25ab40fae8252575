// The exact class of an entity, told from its DXF type and the flags that make derived kinds.
#pragma once

#include "cad/db/TagList.h"
#include "host/EntityClass.h"

namespace veltarn::seam {

// kOther for what the module does not tell apart (attributes, images, polygon meshes, ...).
host::EntityClass entityClassOf(const db::TagList& tags);

}  // namespace veltarn::seam
