#include "commands/SelectionRun.h"

#include "host/Format.h"
#include "res/StringTable.h"

namespace veltarn {

std::optional<CandidateList> gatherForSelection(host::Host& host, WhenNothingPicked how) {
    std::optional<CandidateList> list = gatherCandidates(host, GetImpliedSelection(host), how);
    if (list && list->empty()) {
        // The pick-first set is left as it was: nothing was tested.
        host.editor().print(host::format(loadString(StringId::kSelectedCount), 0));
        return std::nullopt;
    }
    return list;
}

void selectWhere(host::Host& host, CandidateList& list, const std::function<bool(host::ObjectId)>& keep) {
    for (std::size_t i = 0; i < list.size();) {
        if (keep(list[i])) ++i;
        else removeCandidate(list, i);
    }
    finishSelection(host, list);
}

void finishSelection(host::Host& host, const CandidateList& list) {
    SetPickFirst(host, list);
    host.editor().print(host::format(loadString(StringId::kSelectedCount), static_cast<int>(list.size())));
}

}  // namespace veltarn
