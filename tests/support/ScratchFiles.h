// Files in tests: whole files as bytes, and folders of a test's own that go away with it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace veltarn::testtools {

std::string readBytes(const std::filesystem::path& path);
void writeBytes(const std::filesystem::path& path, std::string_view bytes);

// An emptied folder for one test's files under the build tree: build/test-scratch/AREA/NAME. It
// stays after the test, for a person to look at what the test wrote.
std::filesystem::path scratchDir(const std::string& area, const std::string& name);

// A fresh folder under the system's temporary folder, removed with its contents at the end.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

}  // namespace veltarn::testtools
