// An entity of a drawing: its class, its properties, and the few operations the module needs.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/DbObject.h"
#include "host/EntityClass.h"
#include "host/EntityOutline.h"
#include "host/EntityProperty.h"
#include "host/EntityShape.h"

namespace veltarn::host {

class DbEntity : public DbObject {
public:
    virtual EntityClass entityClass() const = 0;
    // The entity's type as the drawing file names it ("LINE", "LWPOLYLINE", "INSERT", ...).
    virtual std::wstring dxfName() const = 0;

    // The value of `property`; nullopt when this entity has no such property (the radius of a
    // line) or, for set-only properties, always.
    virtual std::optional<PropertyValue> property(EntityProperty property) const = 0;

    // Sets `property`. False, with the entity unchanged, when the entity is not open for write,
    // has no such property, the value has the wrong type, or names something the drawing lacks
    // (a layer, a style, a block).
    virtual bool setProperty(EntityProperty property, const PropertyValue& value) = 0;

    // Explodes the entity into simpler ones, appends them to the block `ownerBlock` (model space,
    // as a rule) and returns their ids in the order explode made them. The entity itself is not
    // changed: the caller erases it when it should go. Empty when the entity cannot be exploded.
    virtual std::vector<ObjectId> explodeInto(ObjectId ownerBlock) = 0;

    // Its geometry as numbers, for telling duplicates; nullopt when it cannot be read.
    virtual std::optional<EntityShape> shape() const = 0;

    // What it looks like as GIS geometry: curves broken into straight pieces that stray at most
    // `tolerance` drawing units from the curve (within caps that keep a huge radius from asking
    // for millions of points). nullopt when it has no finite geometry (a mesh, a solid, an
    // endless line, a coordinate that is no number).
    virtual std::optional<EntityOutline> outline(double tolerance) const = 0;

    // Convenience accessors over property().
    std::wstring layer() const { return textProperty(EntityProperty::kLayer); }
    std::wstring textProperty(EntityProperty p) const {
        auto v = property(p);
        if (v && std::holds_alternative<std::wstring>(*v)) return std::get<std::wstring>(*v);
        return {};
    }
};

}  // namespace veltarn::host
