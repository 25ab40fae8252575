#include "cad/commands/HostSession.h"

namespace veltarn::cad {

void registerHostCommands(HostSession& session) {
    registerDrawingCommands(session);
    registerUndoCommands(session);
    registerSelectionCommands(session);
    registerListCommand(session);
    registerLayerCommand(session);
    registerScriptCommand(session);
    registerHelpCommand(session);
    registerAuditCommand(session);
    registerAttsyncCommand(session);
    registerRegenCommand(session);
    registerChpropCommand(session);
}

}  // namespace veltarn::cad
