// REGEN: the view drawn again from the drawing. The command line draws nothing, so it only says
// so; a window that shows the drawing connects HostSession::redrawView.
#include "cad/commands/HostSession.h"

#include "host/CommandFlags.h"

namespace veltarn::cad {

void registerRegenCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"REGEN", L"REGEN",
        // The module sends it after a command whose result is the selection: that stays selected.
        host::CommandFlags::kUsePickSet | host::CommandFlags::kRedraw, [&session] {
        session.host.editor().print(L"Regenerating model.\n");
        if (session.redrawView) session.redrawView();
    });
    // REGEN changes nothing: it is no step of the undo, and a REDO after it still redoes.
    session.host.journal().exempt(L"REGEN");
}

}  // namespace veltarn::cad
