#include "commands/RestoreCommand.h"

#include <climits>

#include "commands/ClassApplication.h"
#include "commands/ClassTests.h"
#include "commands/CommandPrompts.h"
#include "commands/ObjectGathering.h"
#include "host/Format.h"
#include "host/LowerCase.h"
#include "host/NumberRules.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

void printRatio(host::Host& host, int count, int total) {
    host.editor().print(host::format(loadString(StringId::kCompletedRatio), count, total));
}

// "Mode [0 (all)/1 (default)]<M>: ": a positive answer is 1, any other 0, Enter keeps it.
bool askRestoreMode(host::Editor& editor, int& mode) {
    const std::wstring prompt = loadString(StringId::kPromptRestoreModeStart) + (mode ? L"1" : L"0") +
                                loadString(StringId::kPromptRestoreModeEnd);
    std::wstring answer;
    if (editor.getString(prompt, false, answer) != host::PromptStatus::kNormal) return false;
    if (!answer.empty()) mode = host::wtoi(answer) > 0 ? 1 : 0;
    return true;
}

}  // namespace

void restoreCommand(CommandContext& context) {
    host::Host& host = context.host;
    ModuleState& state = context.state;
    CandidateList list = GetImpliedSelection(host);
    const std::optional<std::wstring> name = askClassName(host.editor(), kNameLength);
    if (!name) return;
    if (!askRestoreMode(host.editor(), state.options.restoreMode)) return;
    const ApplyMode mode = state.options.restoreMode ? ApplyMode::kDefault : ApplyMode::kAll;
    ClassApplication application(host, *state.classifier);

    if (!name->empty()) {
        const ClassDef* def = state.classifier->find(host::toLower(*name));
        if (!def) {
            host.editor().print(loadString(StringId::kErrorObjectNotFound));
            return;
        }
        if (!application.loadResources(*def)) {
            host.editor().print(loadString(StringId::kErrorUnableToLoadObjectDependencies));
            return;
        }
        std::optional<CandidateList> gathered = gatherCandidates(host, std::move(list), WhenNothingPicked::kPromptOnly);
        if (!gathered) return;
        list = std::move(*gathered);
        if (list.empty()) {
            host.editor().print(loadString(StringId::kErrorNoObjectsSelected));
            return;
        }
        ClassTests tests(*host.workingDatabase(), *state.classifier);
        int count = 0;
        for (host::ObjectId id : list) {
            if (!tests.objectData().holds(tests.records(id), *def, ValueCheck::kOff)) continue;
            // Counted whether or not every property could be set: the object is one of the class.
            application.applyClass(def->name, id, true, false, mode);
            ++count;
        }
        printRatio(host, count, static_cast<int>(list.size()));
        return;
    }

    if (list.empty() && !PromptSelection(host, list)) return;
    if (list.empty()) list = CollectModelSpace(host);
    FilterUsable(host, list);
    if (list.empty()) {
        printRatio(host, 0, 0);
        return;
    }
    ClassTests tests(*host.workingDatabase(), *state.classifier);
    int count = 0;
    for (host::ObjectId id : list) {
        // The class of the object's own data with the greatest number; the first met on a tie.
        const ClassDef* chosen = tests.highestClass(tests.records(id));
        if (!chosen) continue;
        application.assignProperties(id, *chosen, mode);
        ++count;
    }
    printRatio(host, count, static_cast<int>(list.size()));
}

}  // namespace veltarn
