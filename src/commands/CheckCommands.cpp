#include "commands/CheckCommands.h"

#include <algorithm>
#include <cwctype>
#include <set>

#include "classifier/EntityType.h"
#include "commands/ClassTests.h"
#include "commands/CommandPrompts.h"
#include "commands/SelectionRun.h"
#include "host/Format.h"
#include "res/StringTable.h"

namespace veltarn {

void assertCommand(CommandContext& context) {
    host::Host& host = context.host;
    int& checkNonRequired = context.state.options.assertCheckNonRequired;
    if (!askYesNo(host.editor(), StringId::kPromptCheckNonRequired, checkNonRequired)) return;
    std::optional<CandidateList> list = gatherForSelection(host, WhenNothingPicked::kPromptThenModelSpace);
    if (!list) return;

    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    const ValueCheck check = checkNonRequired ? ValueCheck::kEveryField : ValueCheck::kRequiredFields;
    // Kept at the first record of a known class whose test fails; unknown classes are passed over.
    selectWhere(host, *list, [&](host::ObjectId id) {
        const std::vector<ObjectDataRecord>& records = tests.records(id);
        for (const ObjectDataRecord& record : records) {
            const ClassDef* def = tests.index().classOfRecord(record);
            if (def && !tests.objectData().holds(records, *def, check)) return true;
        }
        return false;
    });
}

void typeCommand(CommandContext& context) {
    host::Host& host = context.host;
    std::optional<CandidateList> gathered =
        gatherCandidates(host, GetImpliedSelection(host), WhenNothingPicked::kPromptThenModelSpace);
    if (!gathered) return;
    CandidateList& list = *gathered;

    // Alphabetical without regard to case: "MLeader", "Mline", "MPolygon", "MText".
    auto alphabetical = [](std::wstring_view a, std::wstring_view b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                            [](wchar_t x, wchar_t y) { return std::towlower(x) < std::towlower(y); });
    };
    std::set<std::wstring_view, decltype(alphabetical)> names(alphabetical);
    host::Database& db = *host.workingDatabase();
    for (host::ObjectId id : list) {
        // Objects of no type (old-style polylines, attribute definitions, ...) have no line.
        if (auto entity = db.openEntity(id, host::OpenMode::kRead)) {
            const std::wstring_view name = entityTypeName(entity->entityClass());
            if (!name.empty()) names.insert(name);
        }
    }
    for (std::wstring_view name : names) host.editor().print(host::format(loadString(StringId::kTypeNameLine), name));
}

}  // namespace veltarn
