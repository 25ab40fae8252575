#include "ScratchFiles.h"

#include <stdlib.h>

#include <fstream>
#include <sstream>

namespace veltarn::testtools {

namespace fs = std::filesystem;

std::string readBytes(const fs::path& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

void writeBytes(const fs::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

fs::path scratchDir(const std::string& area, const std::string& name) {
    const fs::path dir = fs::path(VELTARN_BINARY_DIR) / "test-scratch" / area / name;
    fs::remove_all(dir);
    fs::create_directories(dir);
    return dir;
}

TempFolder::TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "veltarn-test-XXXXXX").string();
    if (::mkdtemp(pattern.data())) path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
}

}  // namespace veltarn::testtools
