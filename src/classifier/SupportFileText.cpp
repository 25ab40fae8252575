#include "classifier/SupportFileText.h"

#include "base/Trim.h"
#include "host/LowerCase.h"
#include "host/Utf8.h"

#include "base/RegularFile.h"

#include <sstream>

namespace veltarn {
namespace {

bool isComment(std::wstring_view line) { return !line.empty() && line.front() == L';'; }

}  // namespace

bool readTextLines(const std::wstring& path, std::vector<std::wstring>& lines) {
    FileBytes file = readRegularFile(host::toUtf8(path), kMaxSupportFileBytes);
    if (!file.ok()) return false;
    std::istringstream in(std::move(file.bytes));
    std::string line;
    bool first = true;
    while (std::getline(in, line)) {
        if (first && line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
        first = false;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(host::fromUtf8(line));
    }
    return true;
}

std::wstring headerName(std::wstring_view line) {
    line = trim(line);
    if (line.empty() || line.front() != L'*') return {};
    line.remove_prefix(1);
    line = line.substr(0, line.find_first_of(L",;"));
    return std::wstring(trim(line));
}

std::vector<std::wstring> definedNames(const std::vector<std::wstring>& lines) {
    std::vector<std::wstring> names;
    for (const auto& line : lines) {
        std::wstring name = headerName(line);
        if (!name.empty()) names.push_back(std::move(name));
    }
    return names;
}

std::map<std::wstring, std::wstring> patternDefinitions(const std::vector<std::wstring>& lines) {
    std::map<std::wstring, std::wstring> definitions;
    std::wstring* current = nullptr;
    for (const auto& line : lines) {
        std::wstring_view text = trim(line);
        if (text.empty() || isComment(text)) continue;
        if (text.front() == L'*') {
            std::wstring name = headerName(text);
            auto [it, added] = definitions.emplace(host::toLower(name), std::wstring(text));
            current = added && !name.empty() ? &it->second : nullptr;
            continue;
        }
        if (current) *current += L"\n" + std::wstring(text);
    }
    return definitions;
}

}  // namespace veltarn
