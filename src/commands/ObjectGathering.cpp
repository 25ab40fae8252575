#include "commands/ObjectGathering.h"

#include <string>
#include <unordered_map>

#include "host/LowerCase.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

// Layer names as entities spell them, resolved once each against the layer table. DXF compares
// layer names without regard to case, so "road" on an entity is the layer "ROAD".
class UsableLayers {
public:
    explicit UsableLayers(const host::Database& db) {
        for (const host::LayerInfo& layer : db.layers()) byLowerName_[host::toLower(layer.name)] = layer.usable();
    }

    bool usable(const std::wstring& name) {
        if (auto known = byName_.find(name); known != byName_.end()) return known->second;
        auto found = byLowerName_.find(host::toLower(name));
        // A layer the table lacks is one the drawing creates with default state (on, thawed,
        // unlocked) when it is read, as every reader of such files does.
        const bool result = found == byLowerName_.end() || found->second;
        byName_.emplace(name, result);
        return result;
    }

private:
    std::unordered_map<std::wstring, bool> byLowerName_;
    std::unordered_map<std::wstring, bool> byName_;
};

}  // namespace

CandidateList GetImpliedSelection(host::Host& host) {
    CandidateList list;
    host.editor().select(host::SelectionMode::kImplied, list);
    return list;
}

bool PromptSelection(host::Host& host, CandidateList& list) {
    CandidateList chosen;
    const host::PromptStatus status = host.editor().select(host::SelectionMode::kInteractive, chosen);
    if (status == host::PromptStatus::kCancel) return false;
    if (status == host::PromptStatus::kNormal) list.insert(list.end(), chosen.begin(), chosen.end());
    return true;
}

CandidateList CollectModelSpace(host::Host& host) {
    host::Database* db = host.workingDatabase();
    if (!db) return {};
    return db->blockEntities(db->modelSpace());
}

void FilterUsableLayers(host::Host& host, CandidateList& list) { FilterUsable(host, list, [](const host::DbEntity&) { return true; }); }

void FilterUsable(host::Host& host, CandidateList& list, const EntityAcceptance& accept) {
    host::Database* db = host.workingDatabase();
    if (!db) {
        list.clear();
        return;
    }
    UsableLayers layers(*db);
    for (std::size_t i = 0; i < list.size();) {
        std::unique_ptr<host::DbEntity> entity = db->openEntity(list[i], host::OpenMode::kRead);
        if (!entity || !layers.usable(entity->layer()) || (accept && !accept(*entity))) {
            removeCandidate(list, i);
            continue;
        }
        ++i;
    }
}

void FilterOpenable(host::Host& host, CandidateList& list, const EntityAcceptance& accept) {
    host::Database* db = host.workingDatabase();
    if (!db) {
        list.clear();
        return;
    }
    for (std::size_t i = 0; i < list.size();) {
        std::unique_ptr<host::DbEntity> entity = db->openEntity(list[i], host::OpenMode::kRead);
        if (!entity || (accept && !accept(*entity))) {
            removeCandidate(list, i);
            continue;
        }
        ++i;
    }
}

std::optional<CandidateList> gatherCandidates(host::Host& host, CandidateList picked, WhenNothingPicked how) {
    CandidateList list = std::move(picked);
    if (list.empty() && how != WhenNothingPicked::kModelSpace && !PromptSelection(host, list)) return std::nullopt;
    if (list.empty() && how != WhenNothingPicked::kPromptOnly) list = CollectModelSpace(host);
    if (list.empty()) {
        host.editor().print(loadString(StringId::kErrorNoObjectsSelected));
        return std::nullopt;
    }
    FilterUsable(host, list);
    return list;
}

void SetPickFirst(host::Host& host, const CandidateList& list) {
    host.editor().setPickFirst({});
    host.editor().setPickFirst(list);
}

}  // namespace veltarn
