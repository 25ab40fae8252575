#include "commands/AutoClassIndex.h"

#include <algorithm>
#include <climits>

#include "classifier/EntityType.h"
#include "commands/PropertyTest.h"
#include "host/LowerCase.h"

namespace veltarn {

AutoClassIndex::AutoClassIndex(const Classifier& classifier, const std::function<bool(const ClassDef&)>& eligible) {
    for (const auto& [key, def] : classifier.objects())
        if (eligible(def) && def.number > INT_MIN) ranked_.push_back(&def);
    // The objects map is in key order already: a stable sort by number keeps key order within.
    std::stable_sort(ranked_.begin(), ranked_.end(),
                     [](const ClassDef* a, const ClassDef* b) { return a->number > b->number; });
    for (std::size_t rank = 0; rank < ranked_.size(); ++rank) {
        const ClassDef& def = *ranked_[rank];
        std::vector<std::wstring> layers;
        bool anyLayer = !def.properties.layer.isSet();
        for (const auto& layer : def.properties.layer.entries()) {
            if (layer && *layer == L"*") anyLayer = true;
            else if (layer) layers.push_back(host::toLower(*layer));
        }
        std::vector<std::wstring> types;
        for (const std::wstring& type : def.types) {
            std::wstring lower = host::toLower(type);
            if (std::find(types.begin(), types.end(), lower) == types.end()) types.push_back(std::move(lower));
        }
        for (const std::wstring& type : types) {
            Candidates& candidates = byType_[type];
            if (anyLayer) {
                candidates.anyLayer.push_back(rank);
                continue;
            }
            for (const std::wstring& layer : layers) {
                std::vector<std::size_t>& ranks = candidates.byLayer[layer];
                if (ranks.empty() || ranks.back() != rank) ranks.push_back(rank);
            }
        }
    }
}

const ClassDef* AutoClassIndex::firstMatch(const host::DbEntity& entity) const {
    const std::wstring_view type = entityTypeName(entity.entityClass());
    if (type.empty()) return nullptr;
    auto candidates = byType_.find(host::toLower(type));
    if (candidates == byType_.end()) return nullptr;
    static const std::vector<std::size_t> kNone;
    auto layer = candidates->second.byLayer.find(host::toLower(entity.layer()));
    const std::vector<std::size_t>& onLayer = layer == candidates->second.byLayer.end() ? kNone : layer->second;
    const std::vector<std::size_t>& anyLayer = candidates->second.anyLayer;
    // Both lists are in rank order: walk them together, best rank first.
    std::size_t i = 0, j = 0;
    while (i < onLayer.size() || j < anyLayer.size()) {
        std::size_t rank;
        if (j == anyLayer.size() || (i < onLayer.size() && onLayer[i] < anyLayer[j])) rank = onLayer[i++];
        else rank = anyLayer[j++];
        if (propertyTestHolds(entity, *ranked_[rank])) return ranked_[rank];
    }
    return nullptr;
}

}  // namespace veltarn
