#include "commands/SortCommand.h"

#include <algorithm>
#include <climits>
#include <numeric>

#include "commands/ClassTests.h"
#include "commands/CommandEnd.h"
#include "commands/ObjectGathering.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

// The draw order is honoured for every purpose (selection, snap, regeneration, plot, ...) only
// when SORTENTS has its seven lowest bits set.
void raiseSortents(host::SystemVariables& variables) {
    const std::optional<host::VariableValue> value = variables.get(L"SORTENTS");
    const int current = value ? value->integer : 0;
    if ((current & 127) < 127) variables.set(L"SORTENTS", host::VariableValue::ofShort(static_cast<std::int16_t>(current | 127)));
}

}  // namespace

void sortCommand(CommandContext& context) {
    host::Host& host = context.host;
    std::optional<CandidateList> gathered =
        gatherCandidates(host, GetImpliedSelection(host), WhenNothingPicked::kPromptThenModelSpace);
    if (!gathered) return;
    CandidateList& list = *gathered;
    if (list.empty()) return;
    raiseSortents(host.systemVariables());

    host::Database& db = *host.workingDatabase();
    ClassTests tests(db, *context.state.classifier);
    // Each object's priority from its own records: the greatest number among the classes whose
    // data it carries; the lowest for an object without one.
    std::vector<std::int64_t> priority(list.size(), INT_MIN);
    for (std::size_t i = 0; i < list.size(); ++i) {
        const std::vector<ObjectDataRecord>& records = tests.records(list[i]);
        for (const ObjectDataRecord& record : records) {
            const ClassDef* def = tests.index().classOfRecord(record);
            if (def && def->number > priority[i] && tests.objectData().holds(records, *def, ValueCheck::kOff))
                priority[i] = def->number;
        }
    }
    std::vector<std::size_t> order(list.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return priority[a] < priority[b]; });
    CandidateList sorted;
    sorted.reserve(list.size());
    for (std::size_t i : order) sorted.push_back(list[i]);

    host::Document* document = host.documents().current();
    host::DocumentLock lock;
    if (document) lock = host.documents().lock(*document, host::LockMode::kExclusiveWrite);
    if (!db.setRelativeDrawOrder(db.modelSpace(), sorted)) return;
    sendFollowUpCommands(host, {}, true);
}

}  // namespace veltarn
