// The application object: registers the module's commands at load and tears the module down at
// unload, in a fixed order.
#pragma once

#include <array>
#include <string_view>

#include "app/CommandTable.h"
#include "app/ModuleState.h"
#include "host/Host.h"

namespace veltarn {

// The messages a host sends to a loaded module.
enum class AppMessage { kInitApp, kUnloadApp, kLoadDwg, kUnloadDwg, kInvokeSubroutine };
enum class AppResult { kRetOK = 0, kRetError = 3 };

class CVeltarnApp {
public:
    CVeltarnApp(host::Host& host, ModuleState& state) : host_(host), state_(state) {}
    CVeltarnApp(const CVeltarnApp&) = delete;
    CVeltarnApp& operator=(const CVeltarnApp&) = delete;

    // Sends `message` to its handler; messages without one of ours get the base behaviour.
    AppResult dispatch(AppMessage message);

    // The sample group first, then the 28 commands in table order, each with flags 70.
    AppResult On_kInitAppMsg();
    // Saves the palette lists (with a classifier), ends the palette sets, frees the classifier and
    // the resource library, removes the group "VELTARN", then the sample group.
    AppResult On_kUnloadAppMsg();
    // Per document: the sample lisp function is defined on load and undefined on unload.
    AppResult On_kLoadDwgMsg();
    AppResult On_kUnloadDwgMsg();
    void RegisterServerComponents() {}

    // Connects the handler of a command whose feature is built; until then the command says that
    // it is not available yet (or, when it needs a classifier and none is loaded, "Error: no file
    // loaded.\n", as it will once built). False for a name that is not one of the 28.
    bool setHandler(std::wstring_view name, host::CommandHandler handler);

private:
    void run(std::size_t index);

    host::Host& host_;
    ModuleState& state_;
    std::array<host::CommandHandler, kCommandTable.size()> handlers_;
};

}  // namespace veltarn
