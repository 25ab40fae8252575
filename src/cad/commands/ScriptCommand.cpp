// SCRIPT: runs the command lines of a script file right after this command, before any other input.
#include "cad/commands/HostSession.h"

#include <fstream>
#include <sstream>

#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"

namespace veltarn::cad {

void registerScriptCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"SCRIPT", L"SCRIPT", host::CommandFlags::kModal, [&session] {
        host::FileDialogRequest request{L"Select Script File", L"", L"scr", L"Script (*.scr)|*.scr||", false, false};
        std::optional<std::wstring> path = session.host.dialogs().openFile(request);
        if (!path) return;
        std::ifstream in(seam::narrow(*path), std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        if (!in) {
            session.host.editor().print(L"Cannot read the script " + *path + L".\n");
            return;
        }
        std::string text = bytes.str();
        if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
        // The last line of a script ends like the others, so its last command is not left waiting.
        if (!text.empty() && text.back() != '\n') text += '\n';
        // Next in line: before what was queued already, so that a script started from a script runs
        // before the rest of the one that started it.
        session.host.commandLine().input().queueFirst(seam::wide(text));
    });
}

}  // namespace veltarn::cad
