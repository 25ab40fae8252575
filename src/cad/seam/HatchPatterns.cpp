#include "cad/seam/HatchPatterns.h"

#include <filesystem>
#include <fstream>

#include "cad/seam/ValueConversion.h"
#include "host/LowerCase.h"

namespace veltarn::seam {
namespace {

bool fileDefines(const std::filesystem::path& file, const std::wstring& pattern) {
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] != '*') continue;
        const std::size_t comma = line.find(',');
        std::string name = line.substr(1, comma == std::string::npos ? std::string::npos : comma - 1);
        while (!name.empty() && (name.back() == '\r' || name.back() == ' ')) name.pop_back();
        if (host::equalsIgnoringCase(wide(name), pattern)) return true;
    }
    return false;
}

}  // namespace

bool isKnownHatchPattern(const std::wstring& pattern, const std::wstring& supportPath) {
    if (pattern.empty()) return false;
    if (host::equalsIgnoringCase(pattern, L"SOLID")) return true;
    std::size_t start = 0;
    while (start <= supportPath.size()) {
        std::size_t end = supportPath.find(L';', start);
        if (end == std::wstring::npos) end = supportPath.size();
        const std::filesystem::path folder(narrow(supportPath.substr(start, end - start)));
        std::error_code error;
        if (!folder.empty() && std::filesystem::is_directory(folder, error)) {
            for (const auto& item : std::filesystem::directory_iterator(folder, error)) {
                if (item.path().extension() == ".pat" && fileDefines(item.path(), pattern)) return true;
            }
        }
        start = end + 1;
    }
    return false;
}

}  // namespace veltarn::seam
