#include "cad/support/UserSupportFolder.h"

#include <cstdlib>

namespace veltarn::support {

std::filesystem::path shippedSupportFolder() {
    if (const char* dir = std::getenv("VELTARN_SUPPORT_DIR"); dir && *dir) return dir;
    return VELTARN_SHIPPED_SUPPORT_DIR;
}

std::filesystem::path defaultUserSupportFolder() {
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config)
        return std::filesystem::path(config) / "veltarn" / "support";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home && *home ? home : ".") / ".config" / "veltarn" / "support";
}

dxf::Result<std::string> prepareUserSupportFolder(const std::filesystem::path& userFolder,
                                                  const std::filesystem::path& shippedFolder) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::create_directories(userFolder, error);
    if (error) return dxf::makeError(userFolder.string() + ": cannot make the support folder: " + error.message());
    for (fs::directory_iterator it(shippedFolder, error), end; !error && it != end; it.increment(error)) {
        if (!it->is_regular_file(error)) continue;
        fs::path target = userFolder / it->path().filename();
        if (fs::exists(target, error)) continue;
        fs::copy_file(it->path(), target, error);
        if (error) return dxf::makeError(target.string() + ": cannot copy the support file: " + error.message());
    }
    if (error) return dxf::makeError(shippedFolder.string() + ": cannot read the support folder: " + error.message());
    return userFolder.string() + ";" + shippedFolder.string();
}

}  // namespace veltarn::support
