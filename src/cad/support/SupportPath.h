// The support search path: folders separated by ";", searched in order for support files.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn::support {

class SupportPath {
public:
    // `path` in UTF-8, as the user's settings keep it; blank entries are passed over.
    explicit SupportPath(std::string_view path);

    const std::vector<std::filesystem::path>& folders() const { return folders_; }

    // The first ".pat" file (extension in any case) of the folders, in path order and within a
    // folder in name order, that defines the pattern `name` (any case); nullopt when none does.
    // Folders and files that cannot be read are passed over.
    std::optional<std::filesystem::path> findPattern(std::string_view name) const;
    bool definesPattern(std::string_view name) const { return findPattern(name).has_value(); }

private:
    std::vector<std::filesystem::path> folders_;
};

}  // namespace veltarn::support
