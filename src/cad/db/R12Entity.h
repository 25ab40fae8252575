// R12 entities in the form later drawings give them: an owner after the handle, the common
// properties under AcDbEntity, the rest under the subclass markers of the entity's type.
#pragma once

#include "cad/db/Handle.h"
#include "cad/db/TagList.h"

#include <functional>

namespace veltarn::db {

// The tags of an R12 entity (with the VERTEX, ATTRIB and SEQEND entities that follow a POLYLINE or
// INSERT) in 2018 form, owned by `owner`. The entity takes `handle`; each sub-entity takes what
// `subHandle` gives for its own handle (kNoHandle when it has none). Xdata stays at the end of its
// entity. Tags that already carry subclass markers are returned with only the handle and owner set.
TagList modernEntity(const TagList& tags, Handle handle, Handle owner, const std::function<Handle(Handle)>& subHandle);

}  // namespace veltarn::db
