#include "module/ModuleDialogs.h"

#include "host/Format.h"
#include "host/NumberRules.h"
#include "module/ModuleState.h"
#include "res/DialogTexts.h"

namespace veltarn {

bool PromptDialogs::askFlag(const std::wstring& caption, bool& value) {
    std::wstring answer;
    if (editor_.getString(host::format(L"%s [0/1]<%i>: ", caption, value ? 1 : 0), false, answer) !=
        host::PromptStatus::kNormal)
        return false;
    if (!answer.empty()) value = host::wtoi(answer) > 0;
    return true;
}

bool PromptDialogs::classificationParameters(ClassificationParameters& parameters) {
    ClassificationParameters shown = parameters;
    if (!askFlag(dialog_texts::kAssignGraphicalProperties, shown.assignGraphicalProperties)) return false;
    if (!askFlag(dialog_texts::kAttachOd, shown.attachObjectData)) return false;
    if (shown.attachObjectData) {
        if (!askFlag(dialog_texts::kChangeObject, shown.changeObject)) return false;
        if (!askFlag(dialog_texts::kDefineFieldOd, shown.defineFieldValues)) return false;
    }
    parameters = shown;
    return true;
}

bool PromptDialogs::chooseForRemoval(const std::vector<std::wstring>& names, std::vector<std::wstring>& chosen) {
    bool all = false;
    if (!askFlag(dialog_texts::kSelectAll, all)) return false;
    std::vector<std::wstring> marked;
    for (const std::wstring& name : names) {
        bool remove = all;
        if (!all && !askFlag(L"Remove " + name + L"?", remove)) return false;
        if (remove) marked.push_back(name);
    }
    chosen = std::move(marked);
    return true;
}

ModuleDialogs& moduleDialogs(ModuleState& state, host::Editor& editor) {
    if (state.windowDialogs) return *state.windowDialogs;
    if (!state.promptDialogs) state.promptDialogs = std::make_unique<PromptDialogs>(editor);
    return *state.promptDialogs;
}

}  // namespace veltarn
