// What the workbench's own commands share: the host, and the state of the session they change.
#pragma once

#include <functional>
#include <string>

#include "cad/seam/WorkbenchHost.h"

namespace veltarn::cad {

struct HostSession {
    explicit HostSession(seam::WorkbenchHost& h) : host(h) {}

    seam::WorkbenchHost& host;
    // Set by QUIT: the program stops reading input.
    bool quitRequested = false;
    // The message of the first SAVE or SAVEAS that failed on its file: a batch run must not end
    // as if the drawing had been saved.
    std::string saveError;
    // Extra lines LIST prints for an entity after its extension dictionary (the module's object
    // data in readable form); empty text adds nothing.
    std::function<std::wstring(host::Database&, host::ObjectId)> listObjectData;
    // Asks a window that shows the drawing to draw it again (REGEN); unset on the command line.
    std::function<void()> redrawView;
};

// The command group of the workbench's own commands.
inline constexpr wchar_t kHostGroup[] = L"WORKBENCH";

// Registers every host command of the workbench.
void registerHostCommands(HostSession& session);

// Each file's commands; registerHostCommands() calls them in this order.
void registerDrawingCommands(HostSession& session);    // NEW, OPEN, RECOVER, SAVE, SAVEAS, QUIT
void registerUndoCommands(HostSession& session);       // UNDO, U, REDO
void registerSelectionCommands(HostSession& session);  // SELECT, ERASE
void registerListCommand(HostSession& session);        // LIST
void registerLayerCommand(HostSession& session);       // -LAYER
void registerScriptCommand(HostSession& session);      // SCRIPT
void registerHelpCommand(HostSession& session);        // HELP
void registerAuditCommand(HostSession& session);       // AUDIT
void registerAttsyncCommand(HostSession& session);     // ATTSYNC
void registerRegenCommand(HostSession& session);       // REGEN
void registerChpropCommand(HostSession& session);      // CHPROP

// What a script is known by when it might start itself: its canonical path (the path as given
// when that cannot be found), so that "./a.scr" and a symlink to it are the same script.
std::wstring scriptIdentity(const std::string& path);

}  // namespace veltarn::cad
