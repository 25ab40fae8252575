#include "classifier/ResourcePath.h"

#include "base/Wildcard.h"
#include "host/Utf8.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace veltarn {

namespace {

std::size_t lastSeparator(std::wstring_view path) { return path.find_last_of(L"/\\"); }


}  // namespace

std::wstring resolveResourcePath(std::wstring_view argument, std::wstring_view classifierPath) {
    std::wstring path(argument);
    std::replace(path.begin(), path.end(), L'\\', L'/');
    if (!path.empty() && path.front() == L'/') return path;
    std::size_t separator = lastSeparator(classifierPath);
    std::wstring folder(separator == std::wstring_view::npos ? L"." : classifierPath.substr(0, separator));
    std::replace(folder.begin(), folder.end(), L'\\', L'/');
    return folder + L"/" + path;
}

std::vector<std::wstring> matchFiles(const std::wstring& pattern) {
    namespace fs = std::filesystem;
    std::size_t separator = lastSeparator(pattern);
    std::wstring folder = separator == std::wstring::npos ? L"." : pattern.substr(0, separator);
    std::wstring namePattern = separator == std::wstring::npos ? pattern : pattern.substr(separator + 1);
    std::wstring prefix = separator == std::wstring::npos ? L"" : pattern.substr(0, separator + 1);

    std::vector<std::wstring> files;
    std::error_code error;
    fs::directory_iterator it(fs::path(host::toUtf8(folder.empty() ? L"/" : folder)), error);
    for (; !error && it != fs::directory_iterator(); it.increment(error)) {
        if (it->is_directory(error)) continue;
        std::wstring name = host::fromUtf8(it->path().filename().string());
        if (wildcardMatch(namePattern, name, LetterCase::kSensitive)) files.push_back(prefix + name);
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool hasExtension(std::wstring_view path, std::wstring_view extension) {
    return path.size() >= extension.size() && path.find(extension) == path.size() - extension.size();
}

bool isDrawingFile(std::wstring_view path) {
    return hasExtension(path, L".dwg") || hasExtension(path, L".dwt") || hasExtension(path, L".dxf");
}

std::wstring blockNameOfFile(std::wstring_view path) {
    std::size_t separator = lastSeparator(path);
    std::wstring_view name = separator == std::wstring_view::npos ? path : path.substr(separator + 1);
    return std::wstring(name.substr(0, name.size() >= 4 ? name.size() - 4 : 0));
}

}  // namespace veltarn
