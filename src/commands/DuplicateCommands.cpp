#include "commands/DuplicateCommands.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <memory>
#include <optional>
#include <unordered_map>

#include "commands/ClassIndex.h"
#include "commands/DuplicateFinder.h"
#include "commands/EntityRecords.h"
#include "commands/ObjectGathering.h"
#include "commands/SelectionRun.h"
#include "host/Format.h"
#include "host/LowerCase.h"
#include "host/NumberRules.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

// Enter keeps the remembered value; so do a negative answer and one that is no number.
bool askTolerance(host::Editor& editor, double& tolerance) {
    std::wstring answer;
    if (editor.getString(host::format(L"Tolerance<%g>: ", tolerance), false, answer) != host::PromptStatus::kNormal)
        return false;
    const auto start = std::find_if_not(answer.begin(), answer.end(), [](wchar_t c) { return std::iswspace(c); });
    const bool number = start != answer.end() && (std::iswdigit(*start) || *start == L'.' || *start == L'+');
    const double value = host::wtof(answer);
    if (number && value >= 0 && std::isfinite(value)) tolerance = value;
    return true;
}

// The objects as VELTARN_ASSERT gathers them; nullopt when the command ends here.
std::optional<CandidateList> gather(host::Host& host) {
    return gatherCandidates(host, GetImpliedSelection(host), WhenNothingPicked::kPromptThenModelSpace);
}

// A record set as one text: tables (any case) and typed values, record order left aside, so that
// equal texts mean the same records.
std::wstring recordsText(const std::vector<ObjectDataRecord>& records) {
    std::vector<std::wstring> each;
    for (const ObjectDataRecord& record : records) {
        std::wstring text = host::toLower(record.table);
        for (const FieldValue& value : record.fields) {
            text += L'\x1' + std::to_wstring(static_cast<int>(value.type())) + L'\x2';
            if (value.type() == FieldType::Real) {
                text += host::format(L"%.17g", value.realValue());
            } else if (value.type() == FieldType::Point) {
                const FieldPoint p = value.pointValue();
                text += host::format(L"%.17g,%.17g,%.17g", p.x, p.y, p.z);
            } else {
                text += value.displayText();
            }
        }
        each.push_back(std::move(text));
    }
    std::sort(each.begin(), each.end());
    std::wstring out;
    for (const std::wstring& text : each)
        out += text + L'\x3';
    return out;
}

// The objects of `list` that can go, in the order of `list`.
CandidateList duplicatesToErase(CommandContext& context, const CandidateList& list, double tolerance) {
    host::Host& host = context.host;
    host::Database& db = *host.workingDatabase();
    DuplicateFinder finder(tolerance);
    CandidateList objects;
    objects.reserve(list.size());
    for (host::ObjectId id : list) {
        const std::unique_ptr<host::DbEntity> entity = db.openEntity(id, host::OpenMode::kRead);
        if (!entity) continue;
        const std::optional<host::EntityShape> shape = entity->shape();
        if (!shape) continue;
        finder.add(static_cast<int>(entity->entityClass()), entity->layer(), *shape);
        objects.push_back(id);
    }
    const std::vector<std::vector<std::size_t>> groups = finder.groups();
    if (groups.empty()) return {};

    // Model space's order, of the few objects that have twins only.
    std::unordered_map<host::ObjectId, std::size_t> order;
    for (const auto& group : groups)
        for (std::size_t k : group)
            order.emplace(objects[k], static_cast<std::size_t>(-1));
    std::size_t position = 0;
    for (host::ObjectId id : CollectModelSpace(host)) {
        if (auto at = order.find(id); at != order.end()) at->second = position;
        ++position;
    }

    std::optional<ClassIndex> index;
    if (context.state.classifier) index.emplace(*context.state.classifier);
    EntityRecords reader(db);
    std::unordered_map<std::wstring, int> recordSets;
    std::vector<std::size_t> erased;
    for (const auto& group : groups) {
        std::vector<DuplicateData> data(group.size());
        for (std::size_t k = 0; k < group.size(); ++k) {
            const host::ObjectId id = objects[group[k]];
            const std::vector<ObjectDataRecord>& records = reader.read(id);
            data[k].order = order.at(id);
            if (records.empty()) continue;
            const bool known = index && std::any_of(records.begin(), records.end(), [&](const ObjectDataRecord& r) {
                                   return index->classOfRecord(r) != nullptr;
                               });
            data[k].rank = known ? 2 : 1;
            data[k].records =
                recordSets.try_emplace(recordsText(records), static_cast<int>(recordSets.size())).first->second;
        }
        for (std::size_t k : erasedOfGroup(finder, group, data))
            erased.push_back(k);
    }
    std::sort(erased.begin(), erased.end());
    CandidateList out;
    out.reserve(erased.size());
    for (std::size_t k : erased)
        out.push_back(objects[k]);
    return out;
}

}  // namespace

void selectDuplicatesCommand(CommandContext& context) {
    host::Host& host = context.host;
    if (!askTolerance(host.editor(), context.state.options.duplicateTolerance)) return;
    std::optional<CandidateList> list = gather(host);
    if (!list) return;
    finishSelection(host, duplicatesToErase(context, *list, context.state.options.duplicateTolerance));
}

void deleteDuplicatesCommand(CommandContext& context) {
    host::Host& host = context.host;
    if (!askTolerance(host.editor(), context.state.options.duplicateTolerance)) return;
    std::optional<CandidateList> list = gather(host);
    if (!list) return;
    host::Database& db = *host.workingDatabase();
    int count = 0;
    for (host::ObjectId id : duplicatesToErase(context, *list, context.state.options.duplicateTolerance)) {
        const std::unique_ptr<host::DbEntity> entity = db.openEntity(id, host::OpenMode::kWrite);
        if (entity && entity->erase()) ++count;
    }
    host.editor().print(host::format(loadString(StringId::kCompletedCount), count));
}

}  // namespace veltarn
