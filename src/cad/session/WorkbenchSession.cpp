#include "cad/session/WorkbenchSession.h"

#include "app/ModuleEntry.h"
#include "cad/seam/HeaderVariables.h"
#include "data/ObjectDataListing.h"

namespace veltarn::cad {

WorkbenchSession::WorkbenchSession(Output output, const std::filesystem::path& settingsFile)
    : workbench_(std::move(output), settingsFile), commands_(workbench_) {
    registerHostCommands(commands_);
    // LIST shows the module's object data readably, under the entity's other lines.
    commands_.listObjectData = [](host::Database& db, host::ObjectId id) {
        std::wstring text;
        for (const std::wstring& line : listObjectData(db, id)) text += L"  " + line + L"\n";
        return text;
    };
}

WorkbenchSession::~WorkbenchSession() { finish(); }

void WorkbenchSession::start(std::unique_ptr<seam::WorkbenchDatabase> drawing) {
    workbench_.openDocument(std::move(drawing));
    if (moduleLoaded_) return;
    // The module is loaded once the first document is open, and told of each document after.
    veltarnEntryPoint(AppMessage::kInitApp, workbench_);
    veltarnEntryPoint(AppMessage::kLoadDwg, workbench_);
    workbench_.setDocumentEvents([this] { veltarnEntryPoint(AppMessage::kUnloadDwg, workbench_); },
                                 [this] { veltarnEntryPoint(AppMessage::kLoadDwg, workbench_); });
    moduleLoaded_ = true;
}

bool WorkbenchSession::step() { return !commands_.quitRequested && workbench_.commandLine().step(); }

void WorkbenchSession::finish() {
    if (!moduleLoaded_) return;
    workbench_.setDocumentEvents(nullptr, nullptr);
    veltarnEntryPoint(AppMessage::kUnloadDwg, workbench_);
    veltarnEntryPoint(AppMessage::kUnloadApp, workbench_);
    moduleLoaded_ = false;
}

Result<std::string> WorkbenchSession::save(const std::filesystem::path& path) {
    seam::WorkbenchDatabase* current = workbench_.currentDrawing();
    if (!current) return makeError("no drawing is open to save");
    seam::writeHeaderVariables(current->raw(), workbench_.variables());
    if (auto saved = current->raw().save(path); !saved) return saved.error();
    return current->raw().saveNotice();
}

}  // namespace veltarn::cad
