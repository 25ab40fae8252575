#include "cad/seam/HeaderVariables.h"

#include "cad/seam/ValueConversion.h"

#include <charconv>
#include <optional>

namespace veltarn::seam {
namespace {

// $CECOLOR holds a colour index; the variable shows the names CAD users type.
std::string colorName(const std::string& index) {
    if (index == "256") return "BYLAYER";
    if (index == "0") return "BYBLOCK";
    return index;
}

}  // namespace

const std::vector<HeaderVariable>& headerVariables() {
    static const std::vector<HeaderVariable> list = {
        {L"INSUNITS", "$INSUNITS", 70},   {L"LUPREC", "$LUPREC", 70},     {L"LTSCALE", "$LTSCALE", 40},
        {L"ATTREQ", "$ATTREQ", 70},       {L"ATTDIA", "$ATTDIA", 70},     {L"TEXTSIZE", "$TEXTSIZE", 40},
        {L"TEXTSTYLE", "$TEXTSTYLE", 7},  {L"CLAYER", "$CLAYER", 8},      {L"CELTYPE", "$CELTYPE", 6},
        {L"CECOLOR", "$CECOLOR", 62},     {L"TILEMODE", "$TILEMODE", 70}, {L"OSMODE", "$OSMODE", 70},
        {L"SORTENTS", "$SORTENTS", 280},
    };
    return list;
}

namespace {

// The header's value of `variable` as the variable would take it; nullopt when the header lacks
// the entry or holds a value the variable does not accept.
std::optional<host::VariableValue> headerValue(const db::Database& db, const HeaderVariable& variable,
                                               host::VariableType type) {
    std::optional<std::string> text = db.headerVariable(variable.entry);
    if (!text) return std::nullopt;
    while (!text->empty() && (text->back() == ' ' || text->back() == '\r')) text->pop_back();
    if (variable.name == L"CECOLOR") *text = colorName(*text);
    // An empty current layer would leave new entities nowhere.
    if (text->empty() && variable.name == L"CLAYER") text->push_back('0');
    return editor::SystemVariableTable::parse(type, wide(*text));
}

bool sameValue(const host::VariableValue& a, const host::VariableValue& b) {
    switch (a.type) {
        case host::VariableType::kReal: return a.real == b.real;
        case host::VariableType::kString: return a.text == b.text;
        case host::VariableType::kPoint2d:
        case host::VariableType::kPoint3d: return a.point.x == b.point.x && a.point.y == b.point.y && a.point.z == b.point.z;
        default: return a.integer == b.integer;
    }
}

// The value as the header entry holds it; nullopt for a colour that is no index.
std::optional<std::string> headerText(const HeaderVariable& variable, const host::VariableValue& value) {
    switch (value.type) {
        case host::VariableType::kReal: {
            char buffer[32];
            auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value.real);
            return error == std::errc() ? std::optional<std::string>(std::string(buffer, end)) : std::nullopt;
        }
        case host::VariableType::kString: {
            std::string text = narrow(value.text);
            if (variable.name != L"CECOLOR") return text;
            if (db::sameName(text, "BYLAYER")) return "256";
            if (db::sameName(text, "BYBLOCK")) return "0";
            if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
            return text;
        }
        case host::VariableType::kShort:
        case host::VariableType::kLong: return std::to_string(value.integer);
        default: return std::nullopt;
    }
}

}  // namespace

void readHeaderVariables(const db::Database& db, editor::SystemVariableTable& variables) {
    for (const HeaderVariable& variable : headerVariables()) {
        auto current = variables.get(variable.name);
        if (!current) continue;
        if (auto value = headerValue(db, variable, current->type)) (void)variables.set(variable.name, *value);
    }
}

void writeHeaderVariables(db::Database& db, const editor::SystemVariableTable& variables) {
    const editor::SystemVariableTable startValues;
    for (const HeaderVariable& variable : headerVariables()) {
        auto current = variables.get(variable.name);
        if (!current) continue;
        if (db.headerVariable(variable.entry)) {
            // An entry the header holds in a form the variable does not read is left alone too.
            auto held = headerValue(db, variable, current->type);
            if (!held || sameValue(*current, *held)) continue;
        } else if (auto start = startValues.get(variable.name); !start || sameValue(*current, *start)) {
            continue;
        }
        auto text = headerText(variable, *current);
        if (!text) continue;
        (void)db.setHeaderVariable(variable.entry, variable.code, *text);
    }
}

}  // namespace veltarn::seam
