// DIMENSION, ARC_DIMENSION and LARGE_RADIAL_DIMENSION: its points (10 to 16) and the block that
// draws it (2), its style (3) in AcDbDimension.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"

#include "cad/db/ObjectIdentity.h"

namespace veltarn::db::kinds {
namespace {

using namespace kind_support;

// Into the entities of its block.
Result<std::vector<TagList>> explode(const Database& db, const TagList& tags) {
    std::size_t end = ownEnd(tags);
    auto [from, to] = tags.hasMarkers() ? tags.subclass("AcDbDimension") : std::pair<std::size_t, std::size_t>{1, end};
    std::string name(dxf::trimSpaces(tags.text(gc::kName, from, to).value_or("")));
    Handle block = name.empty() ? kNoHandle : db.findBlock(name);
    if (block == kNoHandle) return fail("cannot explode a dimension that has no block");
    // A dimension's block is drawn in place: its entities are already where the dimension shows them.
    std::vector<TagList> out;
    for (Handle entity : db.entitiesOf(block))
        out.push_back(detached(db.tags(entity)));
    return out;
}

constexpr PropertyPlace kProperties[]{
    {Property::DimensionStyle, "AcDbDimension", 3, "Standard"},
};

}  // namespace

// A dimension is not placed under a block reference: its block would have to be drawn again.
const EntityKindOps kDimension{
    .kind = EntityKind::Dimension,
    .geometrySubclass = "AcDbDimension",
    .properties = kProperties,
    .explode = explode,
};

// The dimensions with DXF types of their own are not exploded.
const EntityKindOps kArcDimension{
    .kind = EntityKind::ArcDimension,
    .properties = kProperties,
};

const EntityKindOps kLargeRadialDimension{
    .kind = EntityKind::LargeRadialDimension,
    .properties = kProperties,
};

}  // namespace veltarn::db::kinds
