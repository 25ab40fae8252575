// The application object: registers the module's commands at load and tears the module down at
// unload, in a fixed order.
#pragma once

#include <span>

#include "app/CommandTable.h"
#include "module/ModuleState.h"
#include "host/Host.h"

namespace veltarn {

// The messages a host sends to a loaded module.
enum class AppMessage { kInitApp, kUnloadApp, kLoadDwg, kUnloadDwg, kInvokeSubroutine };
enum class AppResult { kRetOK = 0, kRetError = 3 };

class CVeltarnApp {
public:
    // `commands` is the module's table; a test may register a table of its own.
    CVeltarnApp(host::Host& host, ModuleState& state, std::span<const CommandEntry> commands = kCommandTable)
        : host_(host), state_(state), commands_(commands) {}
    CVeltarnApp(const CVeltarnApp&) = delete;
    CVeltarnApp& operator=(const CVeltarnApp&) = delete;

    // Sends `message` to its handler; messages without one of ours get the base behaviour.
    AppResult dispatch(AppMessage message);

    // The sample group first, then the commands in table order, each with flags 70 and the
    // handler of its entry.
    AppResult On_kInitAppMsg();
    // Saves the palette lists (with a classifier), ends the palette sets, frees the classifier and
    // the resource library, removes the group "VELTARN", then the sample group.
    AppResult On_kUnloadAppMsg();
    // Per document: the sample lisp function is defined on load and undefined on unload.
    AppResult On_kLoadDwgMsg();
    AppResult On_kUnloadDwgMsg();
    void RegisterServerComponents() {}

private:
    // Checks for a classifier when the entry needs one, then runs its handler; a command without
    // one says that it is not available yet.
    void run(const CommandEntry& entry);

    host::Host& host_;
    ModuleState& state_;
    std::span<const CommandEntry> commands_;
};

}  // namespace veltarn
