// SCRIPT: runs the command lines of a script file right after this command, before any other input.
#include "cad/commands/HostSession.h"

#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"
#include "host/RegularFile.h"

namespace veltarn::cad {

void registerScriptCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"SCRIPT", L"SCRIPT", host::CommandFlags::kModal, [&session] {
        host::FileDialogRequest request{L"Select Script File", L"", L"scr", L"Script (*.scr)|*.scr||", false, false};
        std::optional<std::wstring> path = session.host.dialogs().openFile(request);
        if (!path) return;
        host::FileBytes read = host::readRegularFile(seam::narrow(*path), host::kMaxTextFileBytes);
        if (read.problem == host::FileProblem::kCannotOpen) {
            session.host.editor().print(L"Cannot read the script " + *path + L".\n");
            return;
        }
        if (!read.ok()) {
            session.host.editor().print(L"Error: " + seam::wide(read.error) + L"\n");
            return;
        }
        std::string text = std::move(read.bytes);
        if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
        // The last line of a script ends like the others, so its last command is not left waiting.
        if (!text.empty() && text.back() != '\n') text += '\n';
        // Next in line: before what was queued already, so that a script started from a script runs
        // before the rest of the one that started it.
        session.host.commandLine().input().queueFirst(seam::wide(text));
    });
}

}  // namespace veltarn::cad
