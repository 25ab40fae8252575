#include "commands/ClassifyCommands.h"

#include <algorithm>
#include <climits>
#include <set>

#include "classifier/EntityType.h"
#include "commands/AutoClassIndex.h"
#include "commands/ClassApplication.h"
#include "commands/ClassTests.h"
#include "commands/CommandEnd.h"
#include "commands/CommandPrompts.h"
#include "commands/ObjectGathering.h"
#include "commands/RecordRemoval.h"
#include "host/Format.h"
#include "host/LowerCase.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

// The block a reference shows, lower-cased; empty for other objects.
std::wstring referencedBlock(host::Database& db, host::ObjectId id) {
    auto entity = db.openEntity(id, host::OpenMode::kRead);
    if (!entity || entity->entityClass() != host::EntityClass::kBlockReference) return {};
    return host::toLower(entity->textProperty(host::EntityProperty::kBlockName));
}

// After the class gave a reference its block: the new block's attributes need synchronising.
void noteBlockChange(const std::wstring& before, const ClassDef& def, std::set<std::wstring>& blocks) {
    if (before.empty() || !def.properties.blockName.isSet()) return;
    if (before != host::toLower(def.properties.blockName.value())) blocks.insert(def.properties.blockName.value());
}

// The distinct classes of the candidates' records, by display name, in the order first met.
std::vector<std::wstring> classesCarried(ClassTests& tests, const CandidateList& list) {
    std::vector<std::wstring> names;
    for (host::ObjectId id : list) {
        for (const ObjectDataRecord& record : tests.records(id)) {
            const ClassDef* def = tests.index().classOfRecord(record);
            if (def && std::find(names.begin(), names.end(), def->name) == names.end()) names.push_back(def->name);
        }
    }
    return names;
}

}  // namespace

void classifyCommand(CommandContext& context) {
    host::Host& host = context.host;
    ModuleState& state = context.state;
    CandidateList list = GetImpliedSelection(host);
    const std::optional<std::wstring> name = askClassName(host.editor(), kNameLength);
    if (!name) return;
    const ClassDef* def = state.classifier->find(host::toLower(*name));
    if (!def) {
        host.editor().print(loadString(StringId::kErrorObjectNotFound));
        return;
    }
    ClassApplication application(host, *state.classifier);
    if (!application.loadResources(*def)) {
        host.editor().print(loadString(StringId::kErrorUnableToLoadObjectDependencies));
        return;
    }

    ClassificationParameters shown = state.options.classification;
    if (!moduleDialogs(state, host.editor()).classificationParameters(shown)) return;
    // "Change object" never holds without "Attach OD".
    shown.changeObject = shown.attachObjectData && shown.changeObject;
    state.options.classification = shown;
    if (!shown.assignGraphicalProperties && !shown.attachObjectData) return;

    // Never all of model space: classifying everything by accident is too easy.
    std::optional<CandidateList> gathered = gatherCandidates(host, std::move(list), WhenNothingPicked::kPromptOnly);
    if (!gathered) return;
    list = std::move(*gathered);

    host::Database& db = *host.workingDatabase();
    ClassTests tests(db, *state.classifier);
    std::vector<const ClassDef*> toRemove;
    if (shown.changeObject) {
        const std::vector<std::wstring> carried = classesCarried(tests, list);
        if (!carried.empty()) {
            std::vector<std::wstring> chosen;
            if (!moduleDialogs(state, host.editor()).chooseForRemoval(carried, chosen)) return;
            for (const std::wstring& chosenName : chosen)
                if (const ClassDef* other = tests.index().findClass(chosenName)) toRemove.push_back(other);
        }
    }

    std::set<std::wstring> blocksToSynchronise;
    int done = 0;
    for (host::ObjectId id : list) {
        {
            auto entity = db.openEntity(id, host::OpenMode::kRead);
            // The type must be one the class names, exactly as written.
            const std::wstring type = entity ? entityTypeOf(*entity) : std::wstring();
            if (type.empty() || std::find(def->types.begin(), def->types.end(), type) == def->types.end()) continue;
        }
        for (const ClassDef* other : toRemove) removeClassData(tests, id, *other);
        const std::wstring blockBefore = shown.assignGraphicalProperties ? referencedBlock(db, id) : std::wstring();
        const bool carries = shown.attachObjectData && tests.objectData().holds(tests.records(id), *def, ValueCheck::kOff);
        const int defined = application.tablesDefined();
        const bool applied = application.applyClass(def->name, id, shown.assignGraphicalProperties,
                                                    shown.attachObjectData && !carries, ApplyMode::kAll);
        if (application.tablesDefined() != defined) tests.refreshTables();
        if (!applied) continue;
        ++done;
        noteBlockChange(blockBefore, *def, blocksToSynchronise);
    }
    sendFollowUpCommands(host, blocksToSynchronise, done > 0);

    CandidateList classified;
    for (host::ObjectId id : list)
        if (tests.objectData().holds(tests.records(id), *def, ValueCheck::kOff)) classified.push_back(id);
    SetPickFirst(host, classified);
    if (state.paletteSet && state.paletteSet->hasRecentPage()) state.paletteSet->addRecent(def->name);
    host.editor().print(host::format(loadString(StringId::kCompletedCount), done));
}

void classifyAutoCommand(CommandContext& context) {
    host::Host& host = context.host;
    ModuleState& state = context.state;
    CandidateList list = GetImpliedSelection(host);
    if (!askYesNo(host.editor(), StringId::kPromptAutoMode, state.options.autoMode)) return;
    if (!askYesNo(host.editor(), StringId::kPromptUndrawable, state.options.autoUndrawable)) return;
    if (list.empty() && !PromptSelection(host, list)) return;
    if (list.empty()) list = CollectModelSpace(host);
    FilterUsable(host, list);
    if (list.empty()) return;

    host::Database& db = *host.workingDatabase();
    ClassTests tests(db, *state.classifier);
    ClassApplication application(host, *state.classifier);
    const bool undrawable = state.options.autoUndrawable != 0;
    auto eligible = [undrawable](const ClassDef& def) { return undrawable || def.flag; };
    std::set<std::wstring> blocksToSynchronise;
    int done = 0;

    if (state.options.autoMode == 1) {
        // Each object takes the class of its own data with the greatest number.
        for (std::size_t i = 0; i < list.size();) {
            const host::ObjectId id = list[i];
            const ClassDef* chosen = tests.highestClass(tests.records(id), eligible);
            if (!chosen) {
                ++i;
                continue;
            }
            const std::wstring blockBefore = referencedBlock(db, id);
            if (!application.applyClass(chosen->name, id, true, false, ApplyMode::kAll)) {
                removeCandidate(list, i);
                continue;
            }
            ++done;
            noteBlockChange(blockBefore, *chosen, blocksToSynchronise);
            ++i;
        }
    } else {
        // Each object takes the eligible class whose prescription it already meets, the greatest
        // number first, equal numbers in key order.
        const AutoClassIndex index(*state.classifier, eligible);
        for (host::ObjectId id : list) {
            auto entity = db.openEntity(id, host::OpenMode::kRead);
            if (!entity) continue;
            const ClassDef* chosen = index.firstMatch(*entity);
            entity.reset();
            if (!chosen || tests.objectData().holds(tests.records(id), *chosen, ValueCheck::kOff)) continue;
            const int defined = application.tablesDefined();
            if (application.applyClass(chosen->name, id, false, true, ApplyMode::kAll)) ++done;
            if (application.tablesDefined() != defined) tests.refreshTables();
        }
    }
    sendFollowUpCommands(host, blocksToSynchronise, false);
    host.editor().print(host::format(loadString(StringId::kCompletedRatio), done, static_cast<int>(list.size())));
}

}  // namespace veltarn
