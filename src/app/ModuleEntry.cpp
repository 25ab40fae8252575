#include "app/ModuleEntry.h"

#include <memory>

namespace veltarn {
namespace {

std::unique_ptr<CVeltarnApp>& app() {
    static std::unique_ptr<CVeltarnApp> instance;
    return instance;
}

}  // namespace

AppResult veltarnEntryPoint(AppMessage message, host::Host& host) {
    std::unique_ptr<CVeltarnApp>& instance = app();
    if (message == AppMessage::kInitApp) {
        if (instance) return AppResult::kRetError;
        instance = std::make_unique<CVeltarnApp>(host, moduleState());
        return instance->On_kInitAppMsg();
    }
    if (!instance) return AppResult::kRetOK;
    const AppResult result = instance->dispatch(message);
    if (message == AppMessage::kUnloadApp) instance.reset();
    return result;
}

CVeltarnApp* loadedApp() { return app().get(); }

}  // namespace veltarn
