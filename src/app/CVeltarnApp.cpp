#include "app/CVeltarnApp.h"

#include "app/SampleCommands.h"
#include "host/Format.h"
#include "res/StringTable.h"

namespace veltarn {

AppResult CVeltarnApp::dispatch(AppMessage message) {
    switch (message) {
        case AppMessage::kInitApp: return On_kInitAppMsg();
        case AppMessage::kUnloadApp: return On_kUnloadAppMsg();
        case AppMessage::kLoadDwg: return On_kLoadDwgMsg();
        case AppMessage::kUnloadDwg: return On_kUnloadDwgMsg();
        case AppMessage::kInvokeSubroutine: return AppResult::kRetOK;  // functions are called directly
    }
    return AppResult::kRetOK;
}

AppResult CVeltarnApp::On_kInitAppMsg() {
    registerSampleGroup(host_);
    const std::wstring group(kCommandGroup);
    for (const CommandEntry& entry : commands_) {
        const std::wstring name(entry.name);
        // The command stack is asked for afresh each time, as the host may hand out a new one.
        host_.commandStack().addCommand(group, name, name, kCommandFlags, [this, &entry] { run(entry); });
    }
    return AppResult::kRetOK;
}

AppResult CVeltarnApp::On_kUnloadAppMsg() {
    if (state_.paletteSet) {
        // Lists are written only for a loaded classifier: they live beside its file.
        if (state_.classifier) {
            if (state_.paletteSet->hasFavoritesPage()) state_.paletteSet->saveFavorites(state_.classifierPath + L".favorites");
            if (state_.paletteSet->hasRecentPage()) state_.paletteSet->saveRecent(state_.classifierPath + L".recent");
        }
        state_.paletteSet->destroyWindow();
        state_.paletteSet.reset();
    }
    if (state_.propertiesPaletteSet) {
        state_.propertiesPaletteSet->destroyWindow();
        state_.propertiesPaletteSet.reset();
    }
    state_.classifier.reset();
    if (state_.freeResourceLibrary) {
        state_.freeResourceLibrary();
        state_.freeResourceLibrary = nullptr;
    }
    host_.commandStack().removeGroup(std::wstring(kCommandGroup));
    removeSampleGroup(host_);
    return AppResult::kRetOK;
}

AppResult CVeltarnApp::On_kLoadDwgMsg() {
    defineSampleFunction(host_);
    return AppResult::kRetOK;
}

AppResult CVeltarnApp::On_kUnloadDwgMsg() {
    undefineSampleFunction(host_);
    return AppResult::kRetOK;
}

void CVeltarnApp::run(const CommandEntry& entry) {
    // Each command of the module uses the module's own texts; they are built in, so there is no
    // resource handle to switch for the command's duration.
    if (entry.needsClassifier && !state_.classifier) {
        host_.editor().print(loadString(StringId::kErrorNoFileLoaded));
        return;
    }
    if (!entry.handler) {
        host_.editor().print(host::format(loadString(StringId::kErrorNotAvailable), std::wstring(entry.name)));
        return;
    }
    CommandContext context{host_, state_};
    entry.handler(context);
}

}  // namespace veltarn
