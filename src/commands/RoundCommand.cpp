#include "commands/RoundCommand.h"

#include <algorithm>

#include "commands/ClassTests.h"
#include "commands/ObjectGathering.h"
#include "data/ObjectData.h"
#include "host/Format.h"
#include "host/NumberRules.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

constexpr int kMaxDecimals = 15;

// At first the drawing's own precision, then what the user last answered.
int& rememberedDecimals(CommandContext& context) {
    int& decimals = context.state.options.roundDecimals;
    if (decimals < 0) {
        const auto luprec = context.host.systemVariables().get(L"LUPREC");
        decimals = std::clamp(luprec ? luprec->integer : 4, 0, kMaxDecimals);
    }
    return decimals;
}

// Rounds the real values of `entity`'s records of tables the classifier defines; true when one
// changed.
bool roundRecords(ClassTests& tests, host::ObjectId entity, int decimals) {
    ObjectData cursor(tests.db());
    cursor.useDirectory(&tests.tables());
    if (cursor.open(entity) != kOdOk) return false;
    bool changed = false;
    ObjectDataRecord record;
    do {
        for (; !cursor.atEnd(); cursor.next()) {
            if (cursor.read(record) != kOdOk) break;
            if (!tests.index().findTable(record.table)) continue;
            bool recordChanged = false;
            for (FieldValue& value : record.fields) {
                if (value.type() != FieldType::Real) continue;
                const double rounded = roundReal(value.realValue(), decimals);
                if (rounded == value.realValue()) continue;
                value.setReal(rounded);
                recordChanged = true;
            }
            if (recordChanged && cursor.update(record) == kOdOk) changed = true;
        }
    } while (cursor.nextTable());
    return changed;
}

}  // namespace

void roundCommand(CommandContext& context) {
    host::Host& host = context.host;
    int& decimals = rememberedDecimals(context);
    std::wstring answer;
    if (host.editor().getString(host::format(L"Decimals<%i>: ", decimals), false, answer) != host::PromptStatus::kNormal)
        return;
    if (!answer.empty()) decimals = std::clamp(host::wtoi(answer), 0, kMaxDecimals);

    std::optional<CandidateList> gathered =
        gatherCandidates(host, GetImpliedSelection(host), WhenNothingPicked::kPromptThenModelSpace);
    if (!gathered) return;
    CandidateList& list = *gathered;

    ClassTests tests(*host.workingDatabase(), *context.state.classifier);
    int changed = 0;
    for (host::ObjectId id : list)
        if (roundRecords(tests, id, decimals)) ++changed;
    host.editor().print(host::format(loadString(StringId::kCompletedRatio), changed, static_cast<int>(list.size())));
}

}  // namespace veltarn
