#include "cad/editor/SettingsEnvironment.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <vector>

#include "base/RegularFile.h"
#include "host/Utf8.h"

namespace veltarn::editor {
namespace {

constexpr char kSupportPathKey[] = "supportPath";

std::vector<std::string> readLines(const std::filesystem::path& file) {
    std::vector<std::string> lines;
    // A settings file that cannot be read is no settings file: the defaults hold.
    std::istringstream in(readRegularFile(file.string(), kMaxSettingsBytes).bytes);
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

}  // namespace

SettingsEnvironment::SettingsEnvironment(std::filesystem::path file, std::wstring defaultSupportPath)
    : SettingsEnvironment(std::move(file), [&defaultSupportPath] { return defaultSupportPath; }) {}

SettingsEnvironment::SettingsEnvironment(std::filesystem::path file,
                                         const std::function<std::wstring()>& defaultSupportPath)
    : file_(std::move(file)) {
    for (const std::string& line : readLines(file_)) {
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos || equals == 0) continue;
        values_[host::fromUtf8(line.substr(0, equals))] = host::fromUtf8(line.substr(equals + 1));
    }
    if (auto found = values_.find(host::fromUtf8(kSupportPathKey)); found != values_.end()) supportPath_ = found->second;
    else if (defaultSupportPath) supportPath_ = defaultSupportPath();
}

std::filesystem::path SettingsEnvironment::defaultFile() {
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config)
        return std::filesystem::path(config) / "veltarn" / "settings";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home && *home ? home : ".") / ".config" / "veltarn" / "settings";
}

bool SettingsEnvironment::setSupportPath(const std::wstring& path) {
    if (path.find_first_of(L"\r\n") != std::wstring::npos) return false;  // would split the line
    supportPath_ = path;
    values_[host::fromUtf8(kSupportPathKey)] = path;
    return store(kSupportPathKey, host::toUtf8(path));
}

std::optional<std::wstring> SettingsEnvironment::setting(const std::wstring& key) const {
    auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

bool SettingsEnvironment::setSetting(const std::wstring& key, const std::wstring& value) {
    if (key.empty() || key.find_first_of(L"=\r\n") != std::wstring::npos) return false;
    if (key == host::fromUtf8(kSupportPathKey)) return setSupportPath(value);
    if (value.find_first_of(L"\r\n") != std::wstring::npos) return false;
    values_[key] = value;
    return store(host::toUtf8(key), host::toUtf8(value));
}

bool SettingsEnvironment::store(const std::string& key, const std::string& value) {
    // Lines of other keys, and lines this version does not understand, are kept as they are.
    std::vector<std::string> lines = readLines(file_);
    const std::string prefix = key + "=";
    std::erase_if(lines, [&prefix](const std::string& l) { return l.rfind(prefix, 0) == 0; });
    lines.push_back(prefix + value);
    std::error_code error;
    if (file_.has_parent_path()) std::filesystem::create_directories(file_.parent_path(), error);
    // Written beside and renamed over, so a crash never leaves half a settings file.
    std::filesystem::path temporary = file_;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        for (const std::string& line : lines) out << line << '\n';
        if (!out.flush()) return false;
    }
    std::filesystem::rename(temporary, file_, error);
    return !error;
}

}  // namespace veltarn::editor
