#include "TestDrawing.h"

#include "ExternalTools.h"
#include "ScratchFiles.h"

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

std::filesystem::path scratchDir(const std::string& name) { return testtools::scratchDir("data", name); }

int runPython(const std::string& arguments, std::string* output) {
    std::string text;
    const int code = testtools::runPython(arguments, &text);
    if (output) *output += text;  // callers gather several runs' output in one text
    return code;
}

bool haveEzdxf() { return testtools::missingEzdxf().empty(); }

}  // namespace veltarn::test
