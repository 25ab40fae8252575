#include "commands/LoadCommands.h"

#include <algorithm>

#include "classifier/ClassifierReader.h"
#include "classifier/DrawingResources.h"
#include "commands/ClassTests.h"
#include "commands/CommandPrompts.h"
#include "commands/ObjectGathering.h"
#include "commands/RecordRemoval.h"
#include "data/ObjectDataTables.h"
#include "host/Format.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

// The classifier of `path`, read against the current drawing (its tables checked, its resources
// brought in); the reader prints its own diagnostics. Installed even when the read failed.
std::unique_ptr<Classifier> readClassifier(host::Host& host, const std::wstring& path) {
    auto print = [&host](const std::wstring& text) { host.editor().print(text); };
    host::Database* db = host.workingDatabase();
    if (!db) return std::make_unique<Classifier>(ClassifierReader(print, &host.systemVariables()).read(path));
    DrawingResources resources(host, *db);
    return std::make_unique<Classifier>(ClassifierReader(print, &host.systemVariables(), &resources).read(path));
}

void printCompleted(host::Host& host, int count) {
    host.editor().print(host::format(loadString(StringId::kCompletedCount), count));
}

}  // namespace

void loadCommand(CommandContext& context) {
    host::Host& host = context.host;
    ModuleState& state = context.state;
    host::FileDialogRequest request;
    request.initialPath = state.classifierPath;
    request.filter = loadString(StringId::kFilterTextFiles);
    const std::optional<std::wstring> path = host.dialogs().openFile(request);
    if (!path) return;

    state.classifierPath = *path;
    host.editor().setPickFirst({});
    // The old classifier's lists are not saved, on purpose: a different file is being loaded.
    state.classifier.reset();
    state.classifier = readClassifier(host, state.classifierPath);
    if (ClassificationPaletteSet* palettes = state.paletteSet.get()) {
        if (palettes->hasClassificationPage()) palettes->setClassifier(state.classifier.get());
        if (palettes->hasRecentPage()) palettes->loadRecent(state.classifierPath + L".recent");
        if (palettes->hasFavoritesPage()) palettes->loadFavorites(state.classifierPath + L".favorites");
    }
    if (state.propertiesPaletteSet) state.propertiesPaletteSet->setClassifier(state.classifier.get());
}

void reloadCommand(CommandContext& context) {
    host::Host& host = context.host;
    ModuleState& state = context.state;
    if (state.classifierPath.empty()) return;
    host.editor().setPickFirst({});
    ClassificationPaletteSet* palettes = state.paletteSet.get();
    if (state.classifier) {
        // The lists of the file being read again are kept: saved now, not read back afterwards.
        if (palettes && palettes->hasRecentPage()) {
            palettes->refreshRecent();
            palettes->saveRecent(state.classifierPath + L".recent");
        }
        if (palettes && palettes->hasFavoritesPage()) {
            palettes->refreshFavorites();
            palettes->saveFavorites(state.classifierPath + L".favorites");
        }
        state.classifier.reset();
    }
    state.classifier = readClassifier(host, state.classifierPath);
    if (palettes && palettes->hasClassificationPage()) palettes->setClassifier(state.classifier.get());
    if (state.propertiesPaletteSet) state.propertiesPaletteSet->setClassifier(state.classifier.get());
}

void removeCommand(CommandContext& context) {
    host::Host& host = context.host;
    CandidateList picked = GetImpliedSelection(host);
    const std::optional<std::wstring> name = askClassName(host.editor(), kNameLength);
    if (!name) return;
    // No fallback to model space here: stripping data off every object by accident is too easy.
    std::optional<CandidateList> gathered = gatherCandidates(host, std::move(picked), WhenNothingPicked::kPromptOnly);
    if (!gathered) return;
    const CandidateList& list = *gathered;
    if (list.empty()) {
        host.editor().print(loadString(StringId::kErrorNoObjectsSelected));
        return;
    }

    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    const ObjectDataTest::Target target = tests.objectData().classOrGroup(*name);
    // A group's classes are all visited, depth first; the object counts once.
    std::vector<const ClassDef*> classes = target.def ? std::vector<const ClassDef*>{target.def} : target.members;
    int count = 0;
    for (host::ObjectId id : list) {
        bool removed = false;
        for (const ClassDef* def : classes) removed = removeClassData(tests, id, *def) || removed;
        if (removed) ++count;
    }
    printCompleted(host, count);
}

void removeAllCommand(CommandContext& context) {
    host::Host& host = context.host;
    std::optional<CandidateList> gathered =
        gatherCandidates(host, GetImpliedSelection(host), WhenNothingPicked::kPromptThenModelSpace);
    // Nothing left after the filters ends the command without a word, on purpose.
    if (!gathered || gathered->empty()) return;
    const CandidateList& list = *gathered;

    host::Database& db = *host.workingDatabase();
    int count = 0;
    // A drawing without "ODEMUDATA" has no records to remove, and asking for it would create it.
    if (!findObjectDataDictionary(db).isNull()) {
        ClassTests tests(db, *context.state.classifier);
        for (host::ObjectId id : list) count += removeResolvedRecords(tests, id);
    }
    printCompleted(host, count);
}

}  // namespace veltarn
