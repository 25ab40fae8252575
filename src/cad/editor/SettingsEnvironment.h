// The user's settings kept between sessions in a small text file: the support search path and
// named values.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "host/Environment.h"

namespace veltarn::editor {

// The file holds "name=value" lines in UTF-8; unknown lines are kept when it is rewritten.
class SettingsEnvironment : public host::Environment {
public:
    // Reads `file` when it exists; a missing or unreadable file gives `defaultSupportPath`.
    SettingsEnvironment(std::filesystem::path file, std::wstring defaultSupportPath);
    // The same, with the default made only when the file holds no support path: making it may
    // write files (a new user's support folder), which a returning user must not pay for.
    SettingsEnvironment(std::filesystem::path file, const std::function<std::wstring()>& defaultSupportPath);

    // $XDG_CONFIG_HOME/veltarn/settings, else $HOME/.config/veltarn/settings.
    static std::filesystem::path defaultFile();

    std::wstring supportPath() const override { return supportPath_; }
    // Keeps the path and writes the file (its folder is made when missing); false, with the path
    // kept for this session only, when the file cannot be written. A path holding a line end is
    // refused and changes nothing.
    bool setSupportPath(const std::wstring& path) override;

    // Keys are names without "=" or line ends; "supportPath" is the support path's own.
    std::optional<std::wstring> setting(const std::wstring& key) const override;
    bool setSetting(const std::wstring& key, const std::wstring& value) override;

private:
    // Replaces the file's line of `key` (or adds one) and writes it beside and renames it over.
    bool store(const std::string& key, const std::string& value);

    std::filesystem::path file_;
    std::wstring supportPath_;
    std::map<std::wstring, std::wstring> values_;
};

}  // namespace veltarn::editor
