#include "classifier/ClassDef.h"

#include "base/Trim.h"
#include "host/LowerCase.h"

namespace veltarn {

bool ClassDef::isComplete() const { return !name.empty() && !types.empty(); }

bool ClassDef::isValid() const { return isComplete() && types.front() != L"?"; }

const TableDef* ClassDef::findTable(std::wstring_view tableName) const {
    std::wstring wanted = host::toLower(tableName);
    for (const auto& table : tables) {
        if (host::toLower(table.name) == wanted) return &table;
    }
    return nullptr;
}

std::vector<std::wstring> parseTypeList(std::wstring_view text) {
    std::vector<std::wstring> types;
    for (;;) {
        std::size_t comma = text.find(L',');
        std::wstring_view item = text.substr(0, comma);
        std::wstring_view type = trim(item);
        if (type.empty()) return {};
        types.emplace_back(type);
        if (comma == std::wstring_view::npos) break;
        text.remove_prefix(comma + 1);
    }
    return types;
}

}  // namespace veltarn
