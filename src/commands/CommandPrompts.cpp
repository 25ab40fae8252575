#include "commands/CommandPrompts.h"

#include <algorithm>

#include "host/Format.h"
#include "host/NumberRules.h"
#include "res/StringTable.h"

namespace veltarn {

std::optional<std::wstring> askClassName(host::Editor& editor, std::size_t maxLength) {
    std::wstring name;
    if (editor.getString(loadString(StringId::kPromptObject), true, name, maxLength) != host::PromptStatus::kNormal)
        return std::nullopt;
    return name;
}

bool askYesNo(host::Editor& editor, StringId prompt, int& value) {
    std::wstring answer;
    // The match prompt has no placeholder (it always shows "<1>"); format leaves it as it is.
    if (editor.getString(host::format(loadString(prompt), value), false, answer) != host::PromptStatus::kNormal)
        return false;
    if (!answer.empty()) value = std::clamp(host::wtoi(answer), 0, 1);
    return true;
}

}  // namespace veltarn
