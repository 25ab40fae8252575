#include "classifier/DefinitionWriter.h"

#include "classifier/PropertyKeywords.h"
#include "data/FieldType.h"
#include "host/Format.h"
#include "host/LowerCase.h"

#include <algorithm>
#include <utility>

namespace veltarn {

namespace {

constexpr std::pair<std::wstring_view, int> kTypeNumbers[] = {
    {L"3DFace", 5000},   {L"3DPolyline", 5000}, {L"3DSolid", 4000},      {L"Arc", 5000},
    {L"BlockReference", 8000}, {L"Circle", 5000}, {L"Dimension", 6000},  {L"Ellipse", 5000},
    {L"Hatch", 0},       {L"Line", 5000},       {L"Mesh", 4000},         {L"MLeader", 6000},
    {L"Mline", 4000},    {L"MPolygon", 4000},   {L"MText", 9000},        {L"Point", 8500},
    {L"PolyFaceMesh", 4000}, {L"Polyline", 5000}, {L"Ray", 5000},        {L"Spline", 5000},
    {L"Surface", 4000},  {L"Text", 9000},       {L"Wipeout", 5000},      {L"Xline", 4000},
};
constexpr int kUnlistedTypeNumber = 7000;

// The property lines in the order the writer emits them, with the keyword as written.
constexpr std::wstring_view kPropertyOrder[] = {
    L"color", L"layer", L"linetype", L"linetypeScale", L"lineWeight", L"angle", L"blockName", L"rotate",
    L"blockScale", L"circleMode", L"circleRadius", L"closed", L"dimensionMode", L"dimensionStyle",
    L"ellipseMode", L"backgroundColor", L"hatchMode", L"pattern", L"patternAngle", L"patternScale",
    L"meshMode", L"mleaderStyle", L"mlineJustification", L"mlineScale", L"mlineStyle", L"patternColor",
    L"mtextAttachmentPoint", L"constantWidth", L"elevation", L"textHeight", L"textJustification",
    L"textStyle", L"text",
};

std::wstring joinedList(const std::vector<std::wstring>& items, std::wstring_view separator) {
    std::wstring text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) text += separator;
        text += items[i];
    }
    return text;
}

// A tab inside a value would start a new column; the reader joins a backslash-tab back into one.
std::wstring escaped(std::wstring text) {
    for (std::size_t at = 0; (at = text.find(L'\t', at)) != std::wstring::npos; at += 2) text.insert(at, 1, L'\\');
    return text;
}

// A list or range item: its own ":" and "," must not split it when read back.
std::wstring escapedItem(const std::wstring& item) {
    std::wstring text;
    for (wchar_t c : item) {
        if (c == L':' || c == L',') text.push_back(L'\\');
        text.push_back(c);
    }
    return text;
}

void writeProperties(const ClassDef& def, int decimals, std::wstring& out) {
    const ObjectProperties& properties = def.properties;
    for (std::wstring_view keyword : kPropertyOrder) {
        std::vector<std::wstring> texts = propertyTexts(properties, host::toLower(keyword), decimals);
        // A radius is drawn only in centre mode: say so when the definition leaves the mode open.
        if (keyword == L"circleMode" && texts.empty() && properties.circleRadius.isSet()) {
            texts.emplace_back(L"Center");
        }
        if (texts.empty()) continue;
        out += L"\t\tobj_prop\t";
        out += keyword;
        out += L"\t" + escaped(texts.front());
        if (texts.size() > 1) {
            texts.erase(texts.begin());
            out += L"\t" + escaped(joinedList(texts, L","));
        }
        out += L"\n";
    }
}

std::wstring defaultText(const FieldDef& field, const std::wstring& realFormat) {
    if (!field.hasDefault()) return L" ";
    std::wstring text;
    switch (field.value.type()) {
        case FieldType::Real: text = host::format(realFormat, field.value.realValue()); break;
        case FieldType::Point: {
            FieldPoint p = field.value.pointValue();
            text = host::format(realFormat, p.x) + L"," + host::format(realFormat, p.y) + L"," +
                   host::format(realFormat, p.z);
            break;
        }
        default: text = field.value.asText(); break;
    }
    // An empty column would merge with the next one when read back; a blank reads as empty.
    return text.empty() ? L" " : text;
}

void writeField(const FieldDef& field, const std::wstring& realFormat, std::wstring& out) {
    if (field.isKey()) {
        out += L"\t\tod_key\t" + field.name + L"\n";
        return;
    }
    out += L"\t\tod_fld\t" + field.name + L"\t" + (field.description.empty() ? L" " : escaped(field.description)) + L"\t";
    if (field.attributes & kAttributeConst) out += L"const ";
    if (field.attributes & kAttributeNotEmpty) out += L"notempty ";
    if (field.attributes & kAttributeRequired) out += L"required ";
    // A point field gets no type word: a classifier cannot declare one, so it reads back invalid
    // and the user sees that it needs a decision.
    if (field.type == FieldType::Integer || field.type == FieldType::Real || field.type == FieldType::Character) {
        out += fieldTypeName(field.type);
    }
    if (field.hasDefault() || !field.values.empty()) out += L"\t" + escaped(defaultText(field, realFormat));
    if (!field.values.empty()) {
        out += L"\t";
        std::vector<std::wstring> items;
        for (const auto& value : field.values) items.push_back(escapedItem(value));
        if (field.kind == ValueKind::Range && items.size() == 2) {
            out += escaped(items[0] + L":" + items[1]);
        } else {
            out += escaped(joinedList(items, L", "));
        }
    }
    out += L"\n";
}

}  // namespace

int defaultTypeNumber(std::wstring_view typeName) {
    for (const auto& [name, number] : kTypeNumbers) {
        if (host::equalsIgnoringCase(name, typeName)) return number;
    }
    return kUnlistedTypeNumber;
}

int linearPrecision(const host::SystemVariables& variables) {
    constexpr int kHostDefault = 4;
    auto value = variables.get(L"LUPREC");
    if (!value || (value->type != host::VariableType::kShort && value->type != host::VariableType::kLong)) {
        return kHostDefault;
    }
    return std::clamp(value->integer, 0, 8);
}

std::wstring writeDefinition(const ClassDef& def, const ClassDef* existing, int decimals, std::wstring& iconPath) {
    iconPath = def.types.empty() ? std::wstring() : L"Icons/" + def.types.front() + L".png";
    int number = 0;
    for (std::size_t i = 0; i < def.types.size(); ++i) {
        int typeNumber = defaultTypeNumber(def.types[i]);
        number = i == 0 ? typeNumber : std::max(number, typeNumber);
    }
    bool flag = true;
    if (existing) {
        flag = existing->flag;
        number = existing->number;
        if (!existing->text.empty()) iconPath = existing->text;
    }

    std::wstring out = host::format(L"obj_name\t%s\t%i\t%i", def.name, flag ? 1 : 0, number);
    if (!iconPath.empty()) out += L"\t" + iconPath;
    out += L"\n";
    out += L"\tobj_type\t" + joinedList(def.types, L", ") + L"\n";

    writeProperties(def, decimals, out);

    const std::wstring realFormat = host::format(L"%%.%ilf", decimals);
    for (const auto& table : def.tables) {
        out += L"\tod_name\t" + table.name + L"\n";
        for (const auto& field : table.fields) writeField(field, realFormat, out);
    }
    return out;
}

}  // namespace veltarn
