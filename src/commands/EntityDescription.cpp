#include "commands/EntityDescription.h"

#include <cmath>
#include <numbers>

#include "classifier/EntityType.h"
#include "host/LowerCase.h"

namespace veltarn {
namespace {

using host::EntityProperty;
using host::PropertyValue;

PropertyColor toPropertyColor(const host::Color& color) {
    if (color.isRgb) return {color.red, color.green, color.blue};
    return {color.index};
}

class Reader {
public:
    explicit Reader(const host::DbEntity& entity) : entity_(entity) {}

    template <class T>
    std::optional<T> get(EntityProperty which) const {
        const std::optional<PropertyValue> value = entity_.property(which);
        if (!value) return std::nullopt;
        if (auto* held = std::get_if<T>(&*value)) return *held;
        return std::nullopt;
    }
    void text(Property<std::wstring>& property, EntityProperty which, bool lower) const {
        if (auto value = get<std::wstring>(which); value && !value->empty()) property.set(lower ? host::toLower(*value) : *value);
    }
    void real(Property<double>& property, EntityProperty which) const {
        if (auto value = get<double>(which)) property.set(*value);
    }
    void color(Property<PropertyColor>& property, EntityProperty which) const {
        if (auto value = get<host::Color>(which)) property.set(toPropertyColor(*value));
    }

private:
    const host::DbEntity& entity_;
};

}  // namespace

std::optional<ClassDef> describeEntity(const host::DbEntity& entity) {
    const std::wstring_view type = entityTypeName(entity.entityClass());
    if (type.empty()) return std::nullopt;
    ClassDef def;
    def.types.emplace_back(type);
    ObjectProperties& p = def.properties;
    const Reader read(entity);
    read.color(p.color, EntityProperty::kColor);
    read.text(p.layer, EntityProperty::kLayer, false);
    read.text(p.linetype, EntityProperty::kLinetype, false);
    read.real(p.linetypeScale, EntityProperty::kLinetypeScale);
    if (auto weight = read.get<int>(EntityProperty::kLineWeight)) p.lineWeight.set(*weight);

    read.text(p.textStyle, EntityProperty::kTextStyle, true);
    read.real(p.textHeight, EntityProperty::kTextHeight);
    if (auto justification = read.get<int>(EntityProperty::kTextJustification); justification && *justification >= 0 &&
                                                                                  *justification <= 14)
        p.textJustification.set(static_cast<TextJustification>(*justification));
    if (auto attachment = read.get<int>(EntityProperty::kAttachment); attachment && *attachment >= 1 && *attachment <= 24)
        p.mtextAttachmentPoint.set(static_cast<MTextAttachment>(*attachment));
    read.text(p.pattern, EntityProperty::kPatternName, true);
    read.real(p.patternScale, EntityProperty::kPatternScale);
    read.real(p.patternAngle, EntityProperty::kPatternAngle);
    read.color(p.patternColor, EntityProperty::kPatternColor);
    read.color(p.backgroundColor, EntityProperty::kBackgroundColor);
    read.text(p.mlineStyle, EntityProperty::kMlineStyle, true);
    read.real(p.mlineScale, EntityProperty::kMlineScale);
    if (auto justification = read.get<int>(EntityProperty::kMlineJustification); justification && *justification >= 0 &&
                                                                                   *justification <= 2)
        p.mlineJustification.set(static_cast<MlineJustification>(*justification));
    read.text(p.dimensionStyle, EntityProperty::kDimensionStyle, true);
    read.text(p.mleaderStyle, EntityProperty::kMLeaderStyle, true);
    read.text(p.blockName, EntityProperty::kBlockName, true);
    if (auto scale = read.get<host::Point3d>(EntityProperty::kScaleFactors)) p.blockScale.set(BlockScale{scale->x, scale->y, scale->z});
    // The classifier gives angles in degrees; the drawing holds radians.
    if (auto rotation = read.get<double>(EntityProperty::kRotation)) p.angle.set(*rotation * 180.0 / std::numbers::pi);
    if (entity.entityClass() == host::EntityClass::kCircle) read.real(p.circleRadius, EntityProperty::kRadius);
    read.real(p.constantWidth, EntityProperty::kConstantWidth);
    read.real(p.elevation, EntityProperty::kElevation);
    if (auto closed = read.get<bool>(EntityProperty::kClosed)) p.closed.set(*closed ? 1 : 0);
    return def;
}

}  // namespace veltarn
