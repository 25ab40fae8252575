#include "gui/AboutCommand.h"

#include "gui/GUITextBox.h"
#include "host/Format.h"
#include "res/StringTable.h"

namespace veltarn {

std::wstring aboutText() {
    const std::string version = VELTARN_VERSION;
    return host::format(loadString(StringId::kAboutText), std::wstring(version.begin(), version.end()));
}

void aboutCommand(CommandContext& context) {
    GUITextBox box(loadString(StringId::kCaptionAbout), aboutText(), 500, 400);
    box.showModal(context.host.dialogs());
}

}  // namespace veltarn
