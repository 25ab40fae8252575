// What ties an object's tags to its place in a drawing (handle, owner, application groups, space):
// set when an object is added, taken off when it is copied or exploded into another place.
#pragma once

#include "cad/db/Handle.h"
#include "cad/db/TagList.h"

namespace veltarn::db {

// Puts the handle right after the type (as `handleCode`: 5, or 105 for DIMSTYLE records) and, when
// `withOwner`, the owner after the handle and any application groups that follow it.
void setIdentity(TagList& tags, Handle handle, int handleCode, Handle owner, bool withOwner);

// The tags without handle, owner, application groups (reactors, extension dictionary) and the
// space flags of entities, for an object that is to get a new place.
TagList detached(TagList tags);

}  // namespace veltarn::db
