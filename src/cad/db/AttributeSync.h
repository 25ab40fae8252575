// ATTSYNC: the references to a block given again the attributes its definition asks for now, the
// values users typed kept.
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::db {

// The ATTDEF entities of a block, in its order (constant ones too).
std::vector<Handle> attributeDefinitions(const Database& db, Handle block);

// What synchronising a block's references did.
struct AttributeSync {
    int references = 0;                 // references given the block's attributes
    int locked = 0;                     // references on locked layers, left as they were
    std::vector<std::string> problems;  // references that could not be synchronised, each with why
};

// Gives every reference to `block` (in model space, every layout and every block) one ATTRIB per
// non-constant attribute definition, in the definitions' order: the definition's tag, flags, look
// and position, placed by the reference's insertion point, scales and rotation, on the
// definition's layer (the reference's when the definition is on layer 0). A value whose tag the
// reference had is kept with the attribute's handle, extension dictionary and xdata (equal tags
// pair in order); a new tag gets the definition's default value; attributes whose tag is gone are
// removed, with their extension dictionaries. The reference's attributes-follow flag (66) and
// its SEQEND follow. Fails only for a handle that is no block.
Result<AttributeSync> synchronizeAttributes(Database& db, Handle block);

}  // namespace veltarn::db
