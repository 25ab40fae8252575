#include "classifier/UserPatternFiles.h"

#include "classifier/SupportFileText.h"
#include "host/LowerCase.h"
#include "base/RegularFile.h"
#include "host/Utf8.h"

#include <sys/stat.h>

#include <cstdio>
#include <set>

namespace veltarn {
namespace {

constexpr wchar_t kAcadPat[] = L"/acad.pat";
constexpr wchar_t kAcadIsoPat[] = L"/acadiso.pat";

bool canRead(const std::wstring& path) { return checkRegularFile(host::toUtf8(path)).ok(); }

}  // namespace

std::wstring userSupportFolder(const std::wstring& supportPath) {
    std::size_t start = 0;
    while (start <= supportPath.size()) {
        std::size_t end = supportPath.find(L';', start);
        if (end == std::wstring::npos) end = supportPath.size();
        std::wstring folder = supportPath.substr(start, end - start);
        std::wstring lower = host::toLower(folder);
        if (lower.find(L"support") != std::wstring::npos && lower.find(L"program files") == std::wstring::npos &&
            canRead(folder + kAcadPat) && canRead(folder + kAcadIsoPat)) {
            return folder;
        }
        start = end + 1;
    }
    return {};
}

bool appendPatterns(const std::wstring& path, const std::vector<std::wstring>& definitions) {
    // Appended to only when it is a regular file: a FIFO or a device in its place would hang the
    // read below or never end it. A missing file is made.
    struct stat status {};
    if (::stat(host::toUtf8(path).c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return false;
    std::FILE* file = std::fopen(host::toUtf8(path).c_str(), "a+");
    if (!file) return false;
    // Read from the start; writes in append mode still go to the end.
    std::string bytes;
    char buffer[8192];
    std::rewind(file);
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;) bytes.append(buffer, n);
    std::set<std::wstring> present;
    std::wstring text = host::fromUtf8(bytes.rfind("\xEF\xBB\xBF", 0) == 0 ? std::string_view(bytes).substr(3) : bytes);
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find(L'\n', start);
        if (end == std::wstring::npos) end = text.size();
        std::wstring name = headerName(std::wstring_view(text).substr(start, end - start));
        if (!name.empty()) present.insert(host::toLower(name));
        start = end + 1;
    }
    for (const auto& definition : definitions) {
        std::wstring name = host::toLower(headerName(definition.substr(0, definition.find(L'\n'))));
        if (name.empty() || !present.insert(name).second) continue;
        std::string out = "\n" + host::toUtf8(definition) + "\n";
        std::fseek(file, 0, SEEK_END);
        std::fwrite(out.data(), 1, out.size(), file);
    }
    std::fclose(file);
    return true;
}

}  // namespace veltarn
