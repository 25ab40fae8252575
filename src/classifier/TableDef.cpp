#include "classifier/TableDef.h"

#include "host/LowerCase.h"

#include <algorithm>

namespace veltarn {

bool TableDef::isWellFormed() const {
    if (fields.empty()) return false;
    auto keys = std::count_if(fields.begin(), fields.end(), [](const FieldDef& f) { return f.isKey(); });
    if (keys != 1) return false;
    return std::all_of(fields.begin(), fields.end(), [](const FieldDef& f) { return f.isKey() || f.isValid(); });
}

const FieldDef* TableDef::findField(std::wstring_view fieldName) const {
    std::wstring key = host::toLower(fieldName);
    for (const auto& field : fields) {
        if (host::toLower(field.name) == key) return &field;
    }
    return nullptr;
}

bool TableDef::isIdenticalTo(const TableDef& other) const {
    return host::toLower(name) == host::toLower(other.name) && fields == other.fields;
}

bool TableDef::isCompatibleWith(const TableDef& other) const {
    if (host::toLower(name) != host::toLower(other.name)) return true;
    if (fields.size() != other.fields.size()) return false;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].type != other.fields[i].type) return false;
        if (host::toLower(fields[i].name) != host::toLower(other.fields[i].name)) return false;
    }
    return true;
}

}  // namespace veltarn
