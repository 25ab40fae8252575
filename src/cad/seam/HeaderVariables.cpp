#include "cad/seam/HeaderVariables.h"

#include "cad/seam/ValueConversion.h"

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
        {L"INSUNITS", "$INSUNITS"}, {L"LUPREC", "$LUPREC"},     {L"LTSCALE", "$LTSCALE"},
        {L"ATTREQ", "$ATTREQ"},     {L"ATTDIA", "$ATTDIA"},     {L"TEXTSIZE", "$TEXTSIZE"},
        {L"TEXTSTYLE", "$TEXTSTYLE"}, {L"CLAYER", "$CLAYER"},   {L"CELTYPE", "$CELTYPE"},
        {L"CECOLOR", "$CECOLOR"},   {L"TILEMODE", "$TILEMODE"}, {L"OSMODE", "$OSMODE"},
        {L"SORTENTS", "$SORTENTS"},
    };
    return list;
}

void readHeaderVariables(const db::Database& db, editor::SystemVariableTable& variables) {
    for (const HeaderVariable& variable : headerVariables()) {
        std::optional<std::string> text = db.headerVariable(variable.entry);
        auto current = variables.get(variable.name);
        if (!text || !current) continue;
        while (!text->empty() && (text->back() == ' ' || text->back() == '\r')) text->pop_back();
        if (variable.name == L"CECOLOR") *text = colorName(*text);
        // An empty current layer would leave new entities nowhere.
        if (text->empty() && variable.name == L"CLAYER") *text = "0";
        if (auto value = editor::SystemVariableTable::parse(current->type, wide(*text))) (void)variables.set(variable.name, *value);
    }
}

}  // namespace veltarn::seam
