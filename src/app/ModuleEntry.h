// The module's entry point: the one function a host calls to load, notify and unload the module.
#pragma once

#include "app/CVeltarnApp.h"

namespace veltarn {

// kInitApp creates the application object over `host` and the process's ModuleState; kUnloadApp
// tears it down and destroys it. Messages before kInitApp or after kUnloadApp are ignored
// (kRetOK); a second kInitApp while loaded is refused (kRetError) and changes nothing.
AppResult veltarnEntryPoint(AppMessage message, host::Host& host);

// The loaded application object; null when not loaded.
CVeltarnApp* loadedApp();

}  // namespace veltarn
