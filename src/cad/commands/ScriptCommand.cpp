// SCRIPT: runs the command lines of a script file right after this command, before any other input.
#include "cad/commands/HostSession.h"

#include <filesystem>

#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"
#include "base/RegularFile.h"

namespace veltarn::cad {

std::wstring scriptIdentity(const std::string& path) {
    std::error_code error;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(path, error);
    return seam::wide(error ? path : canonical.string());
}

void registerScriptCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"SCRIPT", L"SCRIPT", host::CommandFlags::kModal, [&session] {
        host::FileDialogRequest request{L"Select Script File", L"", L"scr", L"Script (*.scr)|*.scr||", false, false};
        std::optional<std::wstring> path = session.host.dialogs().openFile(request);
        if (!path) return;
        editor::CommandInput& input = session.host.commandLine().input();
        const std::string file = seam::narrow(*path);
        // A script that starts itself, directly or through others, would run for ever.
        const std::wstring identity = scriptIdentity(file);
        if (input.scriptRunning(identity)) {
            session.host.editor().print(L"Error: " + *path + L": the script is running already and cannot start itself again.\n");
            return;
        }
        FileBytes read = readRegularFile(file, kMaxTextFileBytes);
        if (read.problem == FileProblem::kCannotOpen) {
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
        input.queueScript(seam::wide(text), identity);
    });
}

}  // namespace veltarn::cad
