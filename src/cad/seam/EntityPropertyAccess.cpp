#include "cad/seam/EntityPropertyAccess.h"

#include <cmath>
#include <numbers>

#include "cad/db/EntityProperties.h"
#include "cad/db/Geometry.h"
#include "cad/db/SymbolTables.h"
#include "cad/seam/ValueConversion.h"

namespace veltarn::seam {
namespace {

using host::EntityProperty;
using host::PropertyValue;

double toDegrees(double radians) { return radians * 180.0 / std::numbers::pi; }
double toRadians(double degrees) { return degrees * std::numbers::pi / 180.0; }

// The properties held as one tag of one subclass by the database.
std::optional<db::Property> tagProperty(EntityProperty p) {
    switch (p) {
        case EntityProperty::kBlockName: return db::Property::BlockName;
        case EntityProperty::kConstantWidth: return db::Property::ConstantWidth;
        case EntityProperty::kElevation: return db::Property::Elevation;
        case EntityProperty::kPatternName: return db::Property::PatternName;
        case EntityProperty::kPatternScale: return db::Property::PatternScale;
        case EntityProperty::kMlineScale: return db::Property::MlineScale;
        case EntityProperty::kDimensionStyle: return db::Property::DimensionStyle;
        case EntityProperty::kTextStyle: return db::Property::TextStyle;
        case EntityProperty::kTextHeight: return db::Property::TextHeight;
        default: return std::nullopt;
    }
}

bool isTextProperty(EntityProperty p) {
    return p == EntityProperty::kBlockName || p == EntityProperty::kPatternName ||
           p == EntityProperty::kDimensionStyle || p == EntityProperty::kTextStyle;
}

// The point a kind keeps at group 10 under each name the seam gives it.
bool hasPosition(std::string_view type) {
    return type == "POINT" || type == "TEXT" || type == "MTEXT" || type == "INSERT";
}
bool hasCenter(std::string_view type) { return type == "CIRCLE" || type == "ARC" || type == "ELLIPSE"; }
bool hasRadius(std::string_view type) { return type == "CIRCLE" || type == "ARC"; }

std::optional<double> asReal(const PropertyValue& value) {
    if (auto* d = std::get_if<double>(&value)) return *d;
    if (auto* i = std::get_if<int>(&value)) return static_cast<double>(*i);
    return std::nullopt;
}

}  // namespace

std::optional<PropertyValue> readProperty(const db::Database& db, const db::TagList& tags, EntityProperty p) {
    const db::CommonProperties common = db::commonProperties(tags);
    const std::string_view type = tags.type();
    const std::string_view marker = db::geometrySubclass(type);
    switch (p) {
        case EntityProperty::kLayer: return PropertyValue(wide(common.layer));
        case EntityProperty::kColor: return PropertyValue(toHost(common.color));
        case EntityProperty::kLinetype: return PropertyValue(wide(common.linetype));
        case EntityProperty::kLinetypeScale: return PropertyValue(common.linetypeScale);
        case EntityProperty::kLineWeight: return PropertyValue(common.lineweight);
        case EntityProperty::kPosition:
        case EntityProperty::kCenter: {
            if (!(p == EntityProperty::kPosition ? hasPosition(type) : hasCenter(type))) return std::nullopt;
            auto [from, to] = tags.subclass(marker);
            if (from == db::TagList::npos) return std::nullopt;
            auto point = tags.point(10, from, to);
            if (!point) return std::nullopt;
            return PropertyValue(toHost(*point));
        }
        case EntityProperty::kRadius: {
            if (!hasRadius(type)) return std::nullopt;
            auto [from, to] = tags.subclass("AcDbCircle");
            if (from == db::TagList::npos) return std::nullopt;
            auto radius = tags.real(40, from, to);
            if (!radius) return std::nullopt;
            return PropertyValue(*radius);
        }
        case EntityProperty::kClosed: {
            auto closed = db::closed(tags);
            if (!closed) return std::nullopt;
            return PropertyValue(*closed);
        }
        case EntityProperty::kRotation: {
            auto degrees = db::realProperty(tags, db::Property::Rotation);
            if (!degrees) return std::nullopt;
            return PropertyValue(toRadians(*degrees));
        }
        case EntityProperty::kPatternAngle: {
            auto degrees = db::realProperty(tags, db::Property::PatternAngle);
            if (!degrees) return std::nullopt;
            return PropertyValue(*degrees);
        }
        case EntityProperty::kMlineJustification: {
            auto value = db::realProperty(tags, db::Property::MlineJustification);
            if (!value) return std::nullopt;
            return PropertyValue(static_cast<int>(*value));
        }
        case EntityProperty::kAttachment: {
            auto value = db::realProperty(tags, db::Property::AttachmentPoint);
            if (!value) return std::nullopt;
            return PropertyValue(static_cast<int>(*value));
        }
        case EntityProperty::kTextJustification: {
            auto value = db::textJustification(tags);
            if (!value) return std::nullopt;
            return PropertyValue(*value);
        }
        case EntityProperty::kTextString: {
            auto text = db::textContents(tags);
            if (!text) return std::nullopt;
            return PropertyValue(wide(*text));
        }
        case EntityProperty::kMlineStyle: {
            auto name = db::mlineStyle(tags);
            if (!name) return std::nullopt;
            return PropertyValue(wide(*name));
        }
        case EntityProperty::kMLeaderStyle: {
            auto name = db::mleaderStyle(db, tags);
            if (!name) return std::nullopt;
            return PropertyValue(wide(*name));
        }
        case EntityProperty::kBackgroundColor: {
            auto color = db::backgroundColor(tags);
            if (!color) return std::nullopt;
            return PropertyValue(toHost(*color));
        }
        case EntityProperty::kScaleFactors: {
            auto x = db::realProperty(tags, db::Property::ScaleX);
            auto y = db::realProperty(tags, db::Property::ScaleY);
            auto z = db::realProperty(tags, db::Property::ScaleZ);
            if (!x || !y || !z) return std::nullopt;
            return PropertyValue(host::Point3d{*x, *y, *z});
        }
        default: break;
    }
    if (auto which = tagProperty(p)) {
        if (isTextProperty(p)) {
            auto text = db::property(tags, *which);
            if (!text) return std::nullopt;
            return PropertyValue(wide(*text));
        }
        auto real = db::realProperty(tags, *which);
        if (!real) return std::nullopt;
        return PropertyValue(*real);
    }
    return std::nullopt;
}

bool writeProperty(const db::Database& db, db::TagList& tags, EntityProperty p, const PropertyValue& value) {
    const std::string_view type = tags.type();
    const auto* text = std::get_if<std::wstring>(&value);
    switch (p) {
        case EntityProperty::kLayer:
            if (!text || !db::readLayer(db, narrow(*text))) return false;
            db::setLayer(tags, narrow(*text));
            return true;
        case EntityProperty::kColor: {
            auto* color = std::get_if<host::Color>(&value);
            if (!color) return false;
            db::setColor(tags, toDb(*color));
            return true;
        }
        case EntityProperty::kLinetype: {
            if (!text) return false;
            const std::string name = narrow(*text);
            if (!db::sameName(name, "ByLayer") && !db::sameName(name, "ByBlock") &&
                db.findRecord("LTYPE", name) == db::kNoHandle)
                return false;
            db::setLinetype(tags, name);
            return true;
        }
        case EntityProperty::kLinetypeScale: {
            auto scale = asReal(value);
            if (!scale) return false;
            db::setLinetypeScale(tags, *scale);
            return true;
        }
        case EntityProperty::kLineWeight: {
            auto* weight = std::get_if<int>(&value);
            if (!weight) return false;
            db::setLineweight(tags, *weight);
            return true;
        }
        case EntityProperty::kPosition:
        case EntityProperty::kCenter: {
            auto* point = std::get_if<host::Point3d>(&value);
            if (!point || !(p == EntityProperty::kPosition ? hasPosition(type) : hasCenter(type))) return false;
            tags.setPointIn(db::geometrySubclass(type), 10, toDb(*point));
            return true;
        }
        case EntityProperty::kRadius: {
            auto radius = asReal(value);
            if (!radius || !hasRadius(type) || *radius <= 0) return false;
            tags.setRealIn("AcDbCircle", 40, *radius);
            return true;
        }
        case EntityProperty::kClosed: {
            auto* closed = std::get_if<bool>(&value);
            return closed && db::setClosed(tags, *closed);
        }
        case EntityProperty::kRotation: {
            auto radians = asReal(value);
            return radians && db::setRealProperty(tags, db::Property::Rotation, toDegrees(*radians));
        }
        case EntityProperty::kPatternAngle: {
            auto degrees = asReal(value);
            return degrees && db::setRealProperty(tags, db::Property::PatternAngle, *degrees);
        }
        case EntityProperty::kMlineJustification: {
            auto* justification = std::get_if<int>(&value);
            return justification && *justification >= 0 && *justification <= 2 &&
                   db::setRealProperty(tags, db::Property::MlineJustification, *justification);
        }
        case EntityProperty::kAttachment: {
            auto* attachment = std::get_if<int>(&value);
            return attachment && *attachment >= 1 && *attachment <= 9 &&
                   db::setRealProperty(tags, db::Property::AttachmentPoint, *attachment);
        }
        case EntityProperty::kTextJustification: {
            auto* justification = std::get_if<int>(&value);
            return justification && db::setTextJustification(tags, *justification);
        }
        case EntityProperty::kTextString: return text && db::setTextContents(tags, narrow(*text));
        case EntityProperty::kMlineStyle: return text && db::setMlineStyle(db, tags, narrow(*text));
        case EntityProperty::kMLeaderStyle: return text && db::setMleaderStyle(db, tags, narrow(*text));
        case EntityProperty::kBackgroundColor: {
            auto* color = std::get_if<host::Color>(&value);
            return color && db::setBackgroundColor(tags, toDb(*color));
        }
        case EntityProperty::kScaleFactors: {
            auto* scale = std::get_if<host::Point3d>(&value);
            if (!scale || type != "INSERT") return false;
            return db::setRealProperty(tags, db::Property::ScaleX, scale->x) &&
                   db::setRealProperty(tags, db::Property::ScaleY, scale->y) &&
                   db::setRealProperty(tags, db::Property::ScaleZ, scale->z);
        }
        case EntityProperty::kBlockName:
            if (!text || db.findBlock(narrow(*text)) == db::kNoHandle) return false;
            return db::setProperty(tags, db::Property::BlockName, narrow(*text));
        case EntityProperty::kTextStyle:
            if (!text || db.findRecord("STYLE", narrow(*text)) == db::kNoHandle) return false;
            return db::setProperty(tags, db::Property::TextStyle, narrow(*text));
        case EntityProperty::kDimensionStyle:
            if (!text || db.findRecord("DIMSTYLE", narrow(*text)) == db::kNoHandle) return false;
            return db::setProperty(tags, db::Property::DimensionStyle, narrow(*text));
        default: break;
    }
    if (auto which = tagProperty(p)) {
        if (isTextProperty(p)) return text && db::setProperty(tags, *which, narrow(*text));
        auto real = asReal(value);
        return real && db::setRealProperty(tags, *which, *real);
    }
    return false;
}

}  // namespace veltarn::seam
