#include "cad/support/SupportPath.h"

#include "cad/db/Database.h"
#include "cad/support/PatternFile.h"
#include "cad/support/SupportText.h"

#include <algorithm>

namespace veltarn::support {
namespace {

bool isPatternFile(const std::filesystem::path& file) { return db::sameName(file.extension().string(), ".pat"); }

}  // namespace

SupportPath::SupportPath(std::string_view path) {
    while (true) {
        std::size_t semicolon = path.find(';');
        std::string_view entry = trimBlanks(path.substr(0, semicolon));
        if (!entry.empty()) folders_.emplace_back(std::string(entry));
        if (semicolon == std::string_view::npos) break;
        path.remove_prefix(semicolon + 1);
    }
}

std::optional<std::filesystem::path> SupportPath::findPattern(std::string_view name) const {
    namespace fs = std::filesystem;
    for (const fs::path& folder : folders_) {
        std::vector<fs::path> files;
        std::error_code error;
        for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
            if (isPatternFile(it->path()) && it->is_regular_file(error)) files.push_back(it->path());
        std::sort(files.begin(), files.end());
        for (const fs::path& file : files) {
            auto text = SupportText::load(file);
            if (!text) continue;
            for (const std::string& defined : patternNames(*text))
                if (db::sameName(defined, name)) return file;
        }
    }
    return std::nullopt;
}

}  // namespace veltarn::support
