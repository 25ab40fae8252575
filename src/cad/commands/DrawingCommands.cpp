// NEW, OPEN, RECOVER, SAVE, SAVEAS and QUIT: the drawing of the session, its file, and the end of the session.
#include "cad/commands/HostSession.h"

#include "cad/audit/Recover.h"

#include "cad/seam/HeaderVariables.h"
#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"

namespace veltarn::cad {
namespace {

using host::PromptStatus;

const host::FileDialogRequest kDrawingFile{L"Drawing", L"", L"dxf", L"Drawing (*.dxf)|*.dxf||", false, false};

// Saves the current drawing to `path`; the drawing then belongs to that file and is unmodified.
bool saveTo(HostSession& session, const std::wstring& path) {
    seam::WorkbenchDatabase* drawing = session.host.currentDrawing();
    if (!drawing) return false;
    const std::filesystem::path file(seam::narrow(path));
    seam::writeHeaderVariables(drawing->raw(), session.host.variables());
    if (auto saved = drawing->raw().save(file); !saved) {
        session.host.editor().print(L"Error: " + seam::wide(saved.message()) + L"\n");
        if (session.saveError.empty()) session.saveError = saved.message();
        return false;
    }
    // An R12 drawing given object data or draw order was saved as 2018: the user should know.
    if (auto notice = drawing->raw().saveNotice(); !notice.empty()) session.host.editor().print(seam::wide(notice) + L"\n");
    drawing->setPath(file);
    drawing->setModified(false);
    return true;
}

bool saveAs(HostSession& session) {
    seam::WorkbenchDocument* document = session.host.workbenchDocuments().currentDocument();
    if (!document) return false;
    host::FileDialogRequest request = kDrawingFile;
    request.title = L"Save Drawing As";
    request.initialPath = document->fileName();
    request.confirmOverwrite = true;
    std::optional<std::wstring> path = session.host.dialogs().saveFile(request);
    // A path that cannot be saved to is a failed save; a cancelled prompt is not.
    if (const std::wstring& refusal = session.host.commandLineDialogs().saveRefusal();
        !path && !refusal.empty() && session.saveError.empty()) {
        session.saveError = seam::narrow(refusal);
    }
    return path && saveTo(session, *path);
}

bool save(HostSession& session) {
    seam::WorkbenchDatabase* drawing = session.host.currentDrawing();
    if (!drawing) return false;
    if (drawing->path().empty()) return saveAs(session);
    return saveTo(session, drawing->fileName());
}

// Before the drawing is closed: a changed drawing is saved, dropped, or kept open, as answered.
// True when the caller may go on and close it.
bool mayClose(HostSession& session) {
    seam::WorkbenchDocument* document = session.host.workbenchDocuments().currentDocument();
    if (!document || !document->database().modified()) return true;
    std::wstring answer;
    const PromptStatus status = session.host.editor().getKeyword(
        L"Save changes to " + document->fileName() + L"? [Yes/No/Cancel] <Yes>: ", {L"Yes", L"No", L"Cancel"}, answer);
    if (status == PromptStatus::kNone) answer = L"Yes";
    else if (status != PromptStatus::kNormal) return false;
    if (answer == L"Cancel") return false;
    if (answer == L"No") return true;
    return save(session);
}

}  // namespace

void registerDrawingCommands(HostSession& session) {
    host::CommandStack& commands = session.host.commandStack();
    const std::wstring group = kHostGroup;
    commands.addCommand(group, L"NEW", L"NEW", host::CommandFlags::kModal, [&session] {
        if (!mayClose(session)) return;
        session.host.openDocument(std::make_unique<seam::WorkbenchDatabase>(db::Database::createNew()));
    });
    commands.addCommand(group, L"OPEN", L"OPEN", host::CommandFlags::kModal, [&session] {
        host::FileDialogRequest request = kDrawingFile;
        request.title = L"Select File";
        std::optional<std::wstring> path = session.host.dialogs().openFile(request);
        if (!path) return;
        // Read first: a file that cannot be read leaves the open drawing as it is.
        auto read = seam::WorkbenchDatabase::read(seam::narrow(*path));
        if (!read) {
            session.host.editor().print(L"Error: " + seam::wide(read.message()) + L"\n");
            return;
        }
        if (!mayClose(session)) return;
        for (const std::string& notice : read.value()->raw().loadNotices()) session.host.editor().print(seam::wide(notice) + L"\n");
        session.host.openDocument(std::move(read.value()));
    });
    // RECOVER reads a damaged file as far as it can and audits the result; the recovered drawing is
    // new work under the old name, so nothing is written until the user saves.
    commands.addCommand(group, L"RECOVER", L"RECOVER", host::CommandFlags::kModal, [&session] {
        host::FileDialogRequest request = kDrawingFile;
        request.title = L"Select File";
        std::optional<std::wstring> path = session.host.dialogs().openFile(request);
        if (!path) return;
        auto recovered = audit::recoverDrawing(seam::narrow(*path));
        if (!recovered) {
            session.host.editor().print(L"Error: " + seam::wide(recovered.message()) + L"\n");
            return;
        }
        if (!mayClose(session)) return;
        audit::Recovery& recovery = recovered.value();
        for (const audit::Finding& finding : recovery.skipped)
            session.host.editor().print(seam::wide(finding.code + ": " + finding.message) + L"\n");
        for (const audit::Finding& finding : recovery.audit)
            session.host.editor().print(seam::wide(finding.code + ": " + finding.message) + L"\n");
        std::vector<audit::Finding> all = recovery.skipped;
        all.insert(all.end(), recovery.audit.begin(), recovery.audit.end());
        session.host.editor().print(seam::wide(audit::summary(all)) + L"\n");
        auto drawing = std::make_unique<seam::WorkbenchDatabase>(std::move(recovery.drawing),
                                                                 std::filesystem::path(seam::narrow(*path)));
        drawing->setModified(true);
        session.host.openDocument(std::move(drawing));
    });
    commands.addCommand(group, L"SAVE", L"SAVE", host::CommandFlags::kModal, [&session] { (void)save(session); });
    commands.addCommand(group, L"SAVEAS", L"SAVEAS", host::CommandFlags::kModal, [&session] { (void)saveAs(session); });
    commands.addCommand(group, L"QUIT", L"QUIT", host::CommandFlags::kModal, [&session] {
        if (mayClose(session)) session.quitRequested = true;
    });
}

}  // namespace veltarn::cad
