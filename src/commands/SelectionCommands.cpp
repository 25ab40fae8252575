#include "commands/SelectionCommands.h"

#include "commands/ClassTests.h"
#include "commands/CommandPrompts.h"
#include "commands/SelectionRun.h"

namespace veltarn {
namespace {

// The name-driven commands: the object-data test of `target` decides.
void selectByTarget(CommandContext& context, bool groupsOnly) {
    host::Host& host = context.host;
    const std::optional<std::wstring> name = askClassName(host.editor(), kSelectionNameLength);
    if (!name) return;
    std::optional<CandidateList> list = gatherForSelection(host, WhenNothingPicked::kModelSpace);
    if (!list) return;
    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    const ObjectDataTest::Target target =
        groupsOnly ? tests.objectData().group(*name) : tests.objectData().classOrGroup(*name);
    selectWhere(host, *list, [&](host::ObjectId id) {
        return tests.objectData().holds(tests.records(id), target, ValueCheck::kOff);
    });
}

// Asks "use properties" and "use objects", then "match" unless both are 0. False when the
// command ends here.
bool askSelectionOptions(host::Editor& editor, SelectionOptions& options) {
    if (!askYesNo(editor, StringId::kPromptUseProperties, options.useProperties)) return false;
    if (!askYesNo(editor, StringId::kPromptUseObjects, options.useObjects)) return false;
    if (!options.useProperties && !options.useObjects) return false;
    return askYesNo(editor, StringId::kPromptMatch, options.match);
}

}  // namespace

void selectCommand(CommandContext& context) { selectByTarget(context, false); }

void selectClassCommand(CommandContext& context) { selectByTarget(context, true); }

void selectExtendedCommand(CommandContext& context) {
    host::Host& host = context.host;
    const std::optional<std::wstring> name = askClassName(host.editor(), kSelectionNameLength);
    if (!name) return;
    SelectionOptions& options = context.state.options.selectExtended;
    if (!askSelectionOptions(host.editor(), options)) return;
    std::optional<CandidateList> list = gatherForSelection(host, WhenNothingPicked::kPromptThenModelSpace);
    if (!list) return;

    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    const ObjectDataTest::Target target = tests.objectData().classOrGroup(*name);
    // The property test names a class; a group name never passes it.
    const ClassDef* def = tests.index().findClass(*name);
    // The object-data test goes first in both senses.
    selectWhere(host, *list, [&](host::ObjectId id) {
        const bool dataFails = options.useObjects && !tests.objectData().holds(tests.records(id), target, ValueCheck::kOff);
        if (options.match) {
            if (dataFails) return false;
            return !options.useProperties || (def && tests.propertiesHold(id, *def));
        }
        return dataFails || (options.useProperties && !(def && tests.propertiesHold(id, *def)));
    });
}

void selectAllCommand(CommandContext& context) {
    host::Host& host = context.host;
    SelectionOptions& options = context.state.options.selectAll;
    if (!askSelectionOptions(host.editor(), options)) return;
    std::optional<CandidateList> list = gatherForSelection(host, WhenNothingPicked::kPromptThenModelSpace);
    if (!list) return;

    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    // Each object against the classes its own records name; matched at the first record that passes.
    auto matched = [&](host::ObjectId id) {
        const std::vector<ObjectDataRecord>& records = tests.records(id);
        for (const ObjectDataRecord& record : records) {
            const ClassDef* def = tests.index().classOfRecord(record);
            if (!def) continue;
            if (options.useProperties && !tests.propertiesHold(id, *def)) continue;
            if (!options.useObjects || tests.objectData().holds(records, *def, ValueCheck::kOff)) return true;
        }
        return false;
    };
    selectWhere(host, *list, [&](host::ObjectId id) { return matched(id) == (options.match != 0); });
}

void selectNullCommand(CommandContext& context) {
    host::Host& host = context.host;
    int& checkNonRequired = context.state.options.selectNullCheckNonRequired;
    if (!askYesNo(host.editor(), StringId::kPromptCheckNonRequired, checkNonRequired)) return;
    std::optional<CandidateList> list = gatherForSelection(host, WhenNothingPicked::kPromptThenModelSpace);
    if (!list) return;

    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    selectWhere(host, *list, [&](host::ObjectId id) {
        for (const ObjectDataRecord& record : tests.records(id)) {
            const TableDef* table = tests.index().tableOf(record);
            if (!table) continue;
            for (const FieldValue& value : record.fields) {
                if (value.type() != FieldType::Character || !value.text().empty()) continue;
                if (checkNonRequired) return true;
                const FieldDef* field = table->findField(value.name());
                if (field && (field->attributes & kAttributeRequired)) return true;
            }
        }
        return false;
    });
}

void selectClassifiedCommand(CommandContext& context) {
    host::Host& host = context.host;
    int& match = context.state.options.selectClassifiedMatch;
    if (!askYesNo(host.editor(), StringId::kPromptMatch, match)) return;
    std::optional<CandidateList> list = gatherForSelection(host, WhenNothingPicked::kPromptThenModelSpace);
    if (!list) return;

    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    auto classified = [&](host::ObjectId id) {
        const std::vector<ObjectDataRecord>& records = tests.records(id);
        for (const ObjectDataRecord& record : records) {
            const ClassDef* def = tests.index().classOfRecord(record);
            if (def && tests.objectData().holds(records, *def, ValueCheck::kOff)) return true;
        }
        return false;
    };
    // Survivors keep their order here.
    CandidateList survivors;
    for (host::ObjectId id : *list)
        if (classified(id) == (match != 0)) survivors.push_back(id);
    finishSelection(host, survivors);
}

}  // namespace veltarn
