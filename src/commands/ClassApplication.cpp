#include "commands/ClassApplication.h"

#include "classifier/ClassResources.h"
#include "classifier/DrawingResources.h"
#include "commands/PropertyTest.h"
#include "data/ObjectData.h"
#include "data/ObjectDataTables.h"
#include "draw/TextVariables.h"
#include "host/Format.h"
#include "host/LowerCase.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

using host::EntityProperty;
using host::PropertyValue;
using host::SymbolTable;

host::Color toHostColor(const PropertyColor& color) {
    if (color.size() == 3)
        return host::Color::fromRgb(static_cast<std::uint8_t>(color[0]), static_cast<std::uint8_t>(color[1]),
                                    static_cast<std::uint8_t>(color[2]));
    return host::Color::fromIndex(color.empty() ? host::Color::kByLayer : color[0]);
}

// A field's value in a new record: the key from its template, else the default, else empty.
FieldValue newFieldValue(host::Host& host, const ClassDef& def, const FieldDef& field) {
    FieldValue value(field.name);
    if (field.isKey()) {
        value.setText(expandTextVariables(host, def, field.value.type() == FieldType::Character ? field.value.text()
                                                                                                  : L"$(obj_name)"));
    } else if (field.hasDefault()) {
        value.assign(field.value);
    } else {
        switch (field.type) {
            case FieldType::Integer: value.setInteger(0); break;
            case FieldType::Real: value.setReal(0); break;
            case FieldType::Point: value.setPoint({}); break;
            default: value.setText({}); break;
        }
    }
    return value;
}

// Sets the properties of one object, one by one, as the mode says.
class PropertyAssignment {
public:
    PropertyAssignment(host::DbEntity& entity, host::Database& db, const ClassDef& def, ApplyMode mode,
                       std::function<void(std::wstring_view, const std::wstring&)> reportMissing)
        : entity_(entity), db_(db), def_(def), mode_(mode), reportMissing_(std::move(reportMissing)) {}

    // A property the class sets (first value not "?") and the object carries, unless the mode
    // keeps an agreeing value.
    template <class T>
    bool wanted(const wchar_t* keyword, const Property<T>& property, EntityProperty which) {
        if (!property.isSet() || !entity_.property(which)) return false;
        return mode_ == ApplyMode::kAll || !propertyAgrees(entity_, def_, keyword);
    }

    template <class T, class Convert>
    void value(const wchar_t* keyword, const Property<T>& property, EntityProperty which, Convert convert) {
        if (wanted(keyword, property, which)) entity_.setProperty(which, convert(property.value()));
    }
    void real(const wchar_t* keyword, const Property<double>& property, EntityProperty which) {
        value(keyword, property, which, [](double v) { return PropertyValue(v); });
    }
    void color(const wchar_t* keyword, const Property<PropertyColor>& property, EntityProperty which) {
        value(keyword, property, which, [](const PropertyColor& v) { return PropertyValue(toHostColor(v)); });
    }
    // A name of the drawing's `table`; `kind` is the word of the warning when it is missing.
    void name(const wchar_t* keyword, const Property<std::wstring>& property, EntityProperty which,
              std::optional<SymbolTable> table, std::wstring_view kind) {
        if (!wanted(keyword, property, which)) return;
        const std::wstring& wanted = property.value();
        const bool byRule = host::equalsIgnoringCase(wanted, L"ByLayer") || host::equalsIgnoringCase(wanted, L"ByBlock");
        const bool present = table ? (byRule && *table == SymbolTable::kLinetype) || db_.hasSymbol(*table, wanted)
                                   : db_.hasHatchPattern(wanted);
        if (!present) {
            reportMissing_(kind, wanted);
            return;
        }
        entity_.setProperty(which, PropertyValue(wanted));
    }

private:
    host::DbEntity& entity_;
    host::Database& db_;
    const ClassDef& def_;
    ApplyMode mode_;
    std::function<void(std::wstring_view, const std::wstring&)> reportMissing_;
};

}  // namespace

bool ClassApplication::loadResources(const ClassDef& def) {
    auto known = resourcesLoaded_.find(&def);
    if (known != resourcesLoaded_.end()) return known->second;
    host::Database* db = host_.workingDatabase();
    bool loaded = false;
    if (db) {
        DrawingResources drawing(host_, *db);
        loaded = loadClassResources(drawing, classifier_, def);
    }
    resourcesLoaded_.emplace(&def, loaded);
    return loaded;
}

bool ClassApplication::applyClass(std::wstring_view name, host::ObjectId entity, bool assign, bool attach,
                                  ApplyMode mode) {
    const ClassDef* def = classifier_.find(host::toLower(name));
    if (!def) {
        host_.editor().print(host::format(loadString(StringId::kErrorUndefined), name));
        return false;
    }
    if (!loadResources(*def)) {
        host_.editor().print(host::format(loadString(StringId::kErrorUnableToLoadDependencies), def->name));
        return false;
    }
    host::Database* db = host_.workingDatabase();
    if (!db || !db->openEntity(entity, host::OpenMode::kRead)) return false;
    if (assign) assignProperties(entity, *def, mode);
    return !attach || attachData(entity, *def);
}

void ClassApplication::assignProperties(host::ObjectId id, const ClassDef& def, ApplyMode mode) {
    host::Database* db = host_.workingDatabase();
    if (!db) return;
    std::unique_ptr<host::DbEntity> entity = db->openEntity(id, host::OpenMode::kWrite);
    if (!entity) return;
    PropertyAssignment set(*entity, *db, def, mode,
                           [this](std::wstring_view kind, const std::wstring& name) { reportMissing(kind, name); });
    const ObjectProperties& p = def.properties;
    // The layer first: a linetype or colour given ByLayer then means the new layer's.
    set.name(L"layer", p.layer, EntityProperty::kLayer, SymbolTable::kLayer, L"layer");
    set.color(L"color", p.color, EntityProperty::kColor);
    set.name(L"linetype", p.linetype, EntityProperty::kLinetype, SymbolTable::kLinetype, L"linetype");
    set.real(L"linetypescale", p.linetypeScale, EntityProperty::kLinetypeScale);
    set.value(L"lineweight", p.lineWeight, EntityProperty::kLineWeight, [](std::int32_t v) { return PropertyValue(int{v}); });
    set.name(L"textstyle", p.textStyle, EntityProperty::kTextStyle, SymbolTable::kTextStyle, L"textstyle");
    set.real(L"textheight", p.textHeight, EntityProperty::kTextHeight);
    set.name(L"pattern", p.pattern, EntityProperty::kPatternName, std::nullopt, L"pattern");
    set.real(L"patternscale", p.patternScale, EntityProperty::kPatternScale);
    set.real(L"patternangle", p.patternAngle, EntityProperty::kPatternAngle);
    set.color(L"patterncolor", p.patternColor, EntityProperty::kPatternColor);
    set.color(L"backgroundcolor", p.backgroundColor, EntityProperty::kBackgroundColor);
    set.name(L"mlinestyle", p.mlineStyle, EntityProperty::kMlineStyle, SymbolTable::kMlineStyle, L"mline");
    set.real(L"mlinescale", p.mlineScale, EntityProperty::kMlineScale);
    set.value(L"mlinejustification", p.mlineJustification, EntityProperty::kMlineJustification,
              [](MlineJustification v) { return PropertyValue(static_cast<int>(v)); });
    set.name(L"dimensionstyle", p.dimensionStyle, EntityProperty::kDimensionStyle, SymbolTable::kDimensionStyle,
             L"dimension");
    set.name(L"mleaderstyle", p.mleaderStyle, EntityProperty::kMLeaderStyle, SymbolTable::kMLeaderStyle, L"mleader");
    set.name(L"blockname", p.blockName, EntityProperty::kBlockName, SymbolTable::kBlock, L"block");
    set.real(L"constantwidth", p.constantWidth, EntityProperty::kConstantWidth);
    set.real(L"elevation", p.elevation, EntityProperty::kElevation);
    set.value(L"closed", p.closed, EntityProperty::kClosed, [](std::int8_t v) { return PropertyValue(v != 0); });
}

bool ClassApplication::attachData(host::ObjectId entity, const ClassDef& def) {
    host::Database* db = host_.workingDatabase();
    if (!db) return false;
    host::Documents* documents = &host_.documents();
    bool written = true;
    for (const TableDef& table : def.tables) {
        ObjectDataRecord record;
        record.table = table.name;
        std::vector<FieldType> types;
        for (const FieldDef& field : table.fields) {
            try {
                record.fields.push_back(newFieldValue(host_, def, field));
            } catch (int) {
                record.fields.emplace_back(field.name);  // a default that does not convert: left empty
            }
            types.push_back(field.type);
        }
        // An existing definition is never replaced (20); the reader has checked that it agrees.
        // Asked once per table and run: asking opens the drawing's data dictionary for write.
        if (!knownTables_.contains(host::toLower(table.name))) {
            const int defined = createTableDefinition(*db, table.name, record, documents);
            if (defined != kOdOk && defined != kOdTableExists) {
                written = false;
                continue;
            }
            if (defined == kOdOk) ++tablesDefined_;
            knownTables_.insert(host::toLower(table.name));
        }
        try {
            if (ObjectData::append(*db, entity, record, types) != kOdOk) written = false;
        } catch (int) {
            written = false;
        }
    }
    return written;
}

void ClassApplication::reportMissing(std::wstring_view kind, const std::wstring& name) {
    if (!reported_.emplace(std::wstring(kind), host::toLower(name)).second) return;
    static const std::pair<std::wstring_view, StringId> kWarnings[] = {
        {L"block", StringId::kReaderBlockNotFound},     {L"dimension", StringId::kReaderDimensionNotFound},
        {L"layer", StringId::kReaderLayerNotFound},     {L"linetype", StringId::kReaderLinetypeNotFound},
        {L"mleader", StringId::kReaderMleaderNotFound}, {L"mline", StringId::kReaderMlineNotFound},
        {L"pattern", StringId::kReaderPatternNotFound}, {L"textstyle", StringId::kReaderTextstyleNotFound},
    };
    for (const auto& [word, id] : kWarnings)
        if (word == kind) host_.editor().print(host::format(loadString(id), name));
}

}  // namespace veltarn
