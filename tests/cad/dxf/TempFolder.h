// A fresh folder under the system's temporary folder, removed with everything in it at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace veltarn::dxf::test {

class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "veltarn-dxf-XXXXXX").string();
        if (::mkdtemp(pattern.data())) path_ = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

}  // namespace veltarn::dxf::test
