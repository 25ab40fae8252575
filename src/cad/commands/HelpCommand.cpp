// HELP: the commands the command line knows, in the order they were registered, with their
// groups and flags.
#include "cad/commands/HostSession.h"

#include "host/CommandFlags.h"
#include "host/Format.h"

namespace veltarn::cad {

void registerHelpCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"HELP", L"HELP", host::CommandFlags::kTransparent, [&session] {
        host::Editor& editor = session.host.editor();
        editor.print(L"Group      Command                  Local name               Flags\n");
        for (const editor::Command* command : session.host.registry().commands())
            editor.print(host::format(L"%-10s %-24s %-24s %i\n", command->group, command->globalName, command->localName,
                                      command->flags));
        editor.print(L"Type a command name, or a system variable's name to see or change its value.\n");
    });
}

}  // namespace veltarn::cad
