// Fuzz target for the classifier reader. Besides crashes and hangs it checks the reader's promise:
// a read that stops on an error leaves the classifier empty, and a read that succeeds leaves every
// definition complete, stored under its lower-cased name, and every table with at most one key.
#include "cad/editor/SystemVariableTable.h"
#include "classifier/ClassifierReader.h"
#include "host/LowerCase.h"
#include "host/Utf8.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

// The reader reads files: one scratch file per fuzzing process. Resource lines resolve beside it,
// in a folder of its own that holds nothing else.
const std::filesystem::path& scratchFile() {
    static const std::filesystem::path file = [] {
        std::filesystem::path dir = std::filesystem::temp_directory_path() / ("veltarn-fuzz-" + std::to_string(getpid()));
        std::filesystem::create_directories(dir);
        return dir / "classifier.txt";
    }();
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static veltarn::editor::SystemVariableTable variables;
    const std::filesystem::path& file = scratchFile();
    if (std::FILE* out = std::fopen(file.c_str(), "wb")) {
        std::fwrite(data, 1, size, out);
        std::fclose(out);
    } else {
        return 0;
    }
    std::size_t printed = 0;
    veltarn::ClassifierReader reader([&](const std::wstring& text) { printed += text.size(); }, &variables);
    veltarn::Classifier classifier = reader.read(veltarn::host::fromUtf8(file.string()));
    if (reader.failed()) {
        require(classifier.empty(), "an error leaves the classifier empty");
        require(classifier.objectCount() == 0 && classifier.classCount() == 0, "an error leaves no objects or classes");
        return 0;
    }
    for (const auto& [key, def] : classifier.objects()) {
        require(key == veltarn::host::toLower(def.name), "objects are stored under their lower-cased names");
        require(def.isValid(), "every stored definition is complete");
        for (const auto& table : def.tables) {
            int keys = 0;
            for (const auto& field : table.fields) keys += field.kind == veltarn::ValueKind::Key;
            require(!table.isWellFormed() || keys == 1, "a well-formed table has exactly one key");
        }
    }
    return 0;
}
