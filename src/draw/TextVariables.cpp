#include "draw/TextVariables.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <ctime>

#include "host/Utf8.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

std::wstring orUnknown(std::wstring name) { return name.empty() ? loadString(StringId::kUnknownName) : name; }

std::wstring computerName() {
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0) return orUnknown({});
    return orUnknown(host::fromUtf8(name.data()));
}

std::wstring userName() {
    if (const passwd* entry = ::getpwuid(::geteuid()); entry && entry->pw_name) return orUnknown(host::fromUtf8(entry->pw_name));
    return orUnknown({});
}

// Read afresh for each variable, as a long expansion may cross a second.
std::wstring localTime(const wchar_t* format) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<wchar_t, 512> text{};
    const std::size_t length = std::wcsftime(text.data(), text.size(), format, &local);
    return std::wstring(text.data(), length);
}

std::wstring fileName(host::Host& host) {
    host::Database* db = host.workingDatabase();
    if (!db) return {};
    if (host::Document* document = host.documents().documentOf(*db)) return document->fileName();
    return db->fileName();
}

bool replaceAll(std::wstring& text, std::wstring_view variable, const std::wstring& value) {
    bool found = false;
    std::wstring result;
    std::size_t from = 0;
    for (std::size_t at = text.find(variable); at != std::wstring::npos; at = text.find(variable, from)) {
        found = true;
        result.append(text, from, at - from);
        result += value;
        from = at + variable.size();
    }
    if (!found) return false;
    result.append(text, from);
    text = std::move(result);
    return true;
}

}  // namespace

std::wstring expandTextVariables(host::Host& host, const ClassDef& def, const std::wstring& text) {
    std::wstring expanded = text;
    for (int pass = 0; pass < kMaxTextVariablePasses && expanded.size() <= kMaxExpandedTextLength &&
                        expanded.find(L"$(") != std::wstring::npos;
         ++pass) {
        bool found = false;
        auto replace = [&](std::wstring_view variable, auto value) {
            if (expanded.find(variable) != std::wstring::npos) found = replaceAll(expanded, variable, value()) || found;
        };
        replace(L"$(obj_name)", [&] { return def.name; });
        replace(L"$(file_name)", [&] { return fileName(host); });
        replace(L"$(computer_name)", [] { return computerName(); });
        replace(L"$(user_name)", [] { return userName(); });
        replace(L"$(day)", [] { return localTime(L"%d"); });
        replace(L"$(month)", [] { return localTime(L"%m"); });
        replace(L"$(year)", [] { return localTime(L"%Y"); });
        replace(L"$(hour)", [] { return localTime(L"%H"); });
        replace(L"$(minute)", [] { return localTime(L"%M"); });
        replace(L"$(second)", [] { return localTime(L"%S"); });
        if (!found) break;
    }
    return expanded;
}

}  // namespace veltarn
