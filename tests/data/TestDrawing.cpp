#include "TestDrawing.h"

#include <array>
#include <cstdio>

namespace veltarn::test {

host::ObjectId TestDrawing::entityOnLayer(const std::wstring& layer) {
    host::Database& database = db();
    for (host::ObjectId id : database.blockEntities(database.modelSpace())) {
        auto entity = database.openEntity(id, host::OpenMode::kRead);
        if (entity && entity->layer() == layer) return id;
    }
    return {};
}

host::ObjectId TestDrawing::addLine() {
    auto line = db().appendEntity(db().modelSpace(), host::EntityClass::kLine);
    return line ? line->id() : host::ObjectId{};
}

std::filesystem::path scratchDir(const std::string& name) {
    std::filesystem::path dir = std::filesystem::path(VELTARN_BINARY_DIR) / "tests" / "data-scratch" / name;
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

int runPython(const std::string& arguments, std::string* output) {
    std::string command = "/usr/bin/python3 " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return -1;
    std::array<char, 4096> buffer;
    std::size_t n;
    while ((n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        if (output) output->append(buffer.data(), n);
    }
    return pclose(pipe);
}

bool haveEzdxf() {
    static const bool have = runPython("-c 'import ezdxf'", nullptr) == 0;
    return have;
}

}  // namespace veltarn::test
