#include "commands/PropertyTest.h"

#include <algorithm>
#include <cmath>

#include "classifier/EntityType.h"
#include "host/Format.h"
#include "host/LowerCase.h"

namespace veltarn {
namespace {

using host::EntityProperty;
using host::PropertyValue;

bool nearlyEqual(double a, double b) {
    return std::fabs(a - b) <= kPropertyTolerance * std::max({1.0, std::fabs(a), std::fabs(b)});
}

PropertyColor asPropertyColor(const host::Color& color) {
    if (color.isRgb) return {color.red, color.green, color.blue};
    return {color.index};
}

std::wstring textOf(const std::wstring& value) { return value; }
std::wstring textOf(double value) { return host::format(L"%g", value); }
std::wstring textOf(std::int32_t value) { return std::to_wstring(value); }
std::wstring textOf(std::int8_t value) { return std::to_wstring(value); }
std::wstring textOf(MlineJustification value) { return std::to_wstring(static_cast<int>(value)); }
std::wstring textOf(const PropertyColor& value) { return colorText(value); }

template <class T>
std::wstring alternatives(const Property<T>& property) {
    std::wstring text;
    for (const auto& entry : property.entries()) {
        if (!entry) continue;
        if (!text.empty()) text += L", ";
        text += textOf(*entry);
    }
    return text;
}

// Runs the comparisons of one object against one class, noting faults when asked.
class Comparison {
public:
    Comparison(const host::DbEntity& entity, Faults* why, std::wstring_view only = {})
        : entity_(entity), why_(why), only_(only) {}

    bool holding() const { return holding_; }
    bool done() const { return !holding_ && !why_; }

    template <class T, class Read, class Same>
    void compare(const wchar_t* keyword, const Property<T>& property, EntityProperty which, Read read, Same same) {
        if (done() || (!only_.empty() && only_ != keyword) || !std::any_of(property.entries().begin(), property.entries().end(),
                                   [](const auto& entry) { return entry.has_value(); }))
            return;
        const std::optional<PropertyValue> value = entity_.property(which);
        if (!value) return;  // the object's kind does not carry it
        const auto found = read(*value);
        if (!found) return;
        for (const auto& entry : property.entries())
            if (entry && same(*found, *entry)) return;
        holding_ = false;
        if (why_) why_->push_back(Fault{FaultCode::kWrongProperty, {}, keyword, textOf(*found), alternatives(property)});
    }

    void name(const wchar_t* keyword, const Property<std::wstring>& property, EntityProperty which) {
        compare(keyword, property, which, readText,
                [](const std::wstring& found, const std::wstring& wanted) { return host::equalsIgnoringCase(found, wanted); });
    }
    void number(const wchar_t* keyword, const Property<double>& property, EntityProperty which) {
        compare(keyword, property, which, readReal, [](double found, double wanted) { return nearlyEqual(found, wanted); });
    }
    void color(const wchar_t* keyword, const Property<PropertyColor>& property, EntityProperty which) {
        compare(keyword, property, which, readColor,
                [](const PropertyColor& found, const PropertyColor& wanted) { return found == wanted; });
    }

    static std::optional<std::wstring> readText(const PropertyValue& value) {
        if (auto* text = std::get_if<std::wstring>(&value)) return *text;
        return std::nullopt;
    }
    static std::optional<double> readReal(const PropertyValue& value) {
        if (auto* real = std::get_if<double>(&value)) return *real;
        if (auto* integer = std::get_if<int>(&value)) return static_cast<double>(*integer);
        return std::nullopt;
    }
    static std::optional<PropertyColor> readColor(const PropertyValue& value) {
        if (auto* color = std::get_if<host::Color>(&value)) return asPropertyColor(*color);
        return std::nullopt;
    }

private:
    const host::DbEntity& entity_;
    Faults* why_;
    std::wstring_view only_;  // one property's keyword, or every property
    bool holding_ = true;
};

void compareProperties(Comparison& check, const ObjectProperties& p) {
    check.color(L"color", p.color, EntityProperty::kColor);
    // "*" lets an object lie on any layer.
    const bool anyLayer = std::any_of(p.layer.entries().begin(), p.layer.entries().end(),
                                      [](const auto& entry) { return entry && *entry == L"*"; });
    if (!anyLayer) check.name(L"layer", p.layer, EntityProperty::kLayer);
    check.name(L"linetype", p.linetype, EntityProperty::kLinetype);
    check.number(L"linetypescale", p.linetypeScale, EntityProperty::kLinetypeScale);
    check.compare(L"lineweight", p.lineWeight, EntityProperty::kLineWeight,
                  [](const PropertyValue& value) -> std::optional<std::int32_t> {
                      if (auto* integer = std::get_if<int>(&value)) return *integer;
                      return std::nullopt;
                  },
                  [](std::int32_t found, std::int32_t wanted) { return found == wanted; });
    check.name(L"textstyle", p.textStyle, EntityProperty::kTextStyle);
    check.number(L"textheight", p.textHeight, EntityProperty::kTextHeight);
    check.name(L"pattern", p.pattern, EntityProperty::kPatternName);
    check.number(L"patternscale", p.patternScale, EntityProperty::kPatternScale);
    check.number(L"patternangle", p.patternAngle, EntityProperty::kPatternAngle);
    check.color(L"patterncolor", p.patternColor, EntityProperty::kPatternColor);
    check.color(L"backgroundcolor", p.backgroundColor, EntityProperty::kBackgroundColor);
    check.name(L"mlinestyle", p.mlineStyle, EntityProperty::kMlineStyle);
    check.number(L"mlinescale", p.mlineScale, EntityProperty::kMlineScale);
    check.compare(L"mlinejustification", p.mlineJustification, EntityProperty::kMlineJustification,
                  [](const PropertyValue& value) -> std::optional<MlineJustification> {
                      if (auto* integer = std::get_if<int>(&value)) return static_cast<MlineJustification>(*integer);
                      return std::nullopt;
                  },
                  [](MlineJustification found, MlineJustification wanted) { return found == wanted; });
    check.name(L"dimensionstyle", p.dimensionStyle, EntityProperty::kDimensionStyle);
    check.name(L"mleaderstyle", p.mleaderStyle, EntityProperty::kMLeaderStyle);
    check.name(L"blockname", p.blockName, EntityProperty::kBlockName);
    check.number(L"constantwidth", p.constantWidth, EntityProperty::kConstantWidth);
    check.number(L"elevation", p.elevation, EntityProperty::kElevation);
    check.compare(L"closed", p.closed, EntityProperty::kClosed,
                  [](const PropertyValue& value) -> std::optional<std::int8_t> {
                      if (auto* flag = std::get_if<bool>(&value)) return static_cast<std::int8_t>(*flag ? 1 : 0);
                      return std::nullopt;
                  },
                  [](std::int8_t found, std::int8_t wanted) { return (found != 0) == (wanted != 0); });
}

}  // namespace

bool hasClassType(const host::DbEntity& entity, const ClassDef& def) {
    const std::wstring_view type = entityTypeName(entity.entityClass());
    if (type.empty()) return false;
    return std::any_of(def.types.begin(), def.types.end(),
                       [&](const std::wstring& wanted) { return host::equalsIgnoringCase(type, wanted); });
}

bool propertyTestHolds(const host::DbEntity& entity, const ClassDef& def, Faults* why) {
    bool typeHolds = hasClassType(entity, def);
    if (!typeHolds) {
        if (!why) return false;
        std::wstring types;
        for (const std::wstring& type : def.types) types += (types.empty() ? L"" : L", ") + type;
        why->push_back(Fault{FaultCode::kWrongEntityType, {}, L"type", std::wstring(entityTypeName(entity.entityClass())),
                             types});
    }

    Comparison check(entity, why);
    compareProperties(check, def.properties);
    return typeHolds && check.holding();
}

bool propertyAgrees(const host::DbEntity& entity, const ClassDef& def, std::wstring_view keyword) {
    Comparison check(entity, nullptr, keyword);
    compareProperties(check, def.properties);
    return check.holding();
}

}  // namespace veltarn
