// The module's class of an entity: the workbench's own kind (db::entityKind) mapped to host::EntityClass.
#pragma once

#include "cad/db/TagList.h"
#include "host/EntityClass.h"

namespace veltarn::seam {

// kOther for what the module does not tell apart (attributes, images, polygon meshes, ...).
host::EntityClass entityClassOf(const db::TagList& tags);

}  // namespace veltarn::seam
