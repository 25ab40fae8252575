#include "classifier/Classifier.h"

#include "host/LowerCase.h"

#include <set>

namespace veltarn {

const ClassDef* Classifier::find(std::wstring_view key) const {
    auto it = objects_.find(std::wstring(key));
    return it == objects_.end() ? nullptr : &it->second;
}

bool Classifier::add(ClassDef def) {
    std::wstring key = def.key;
    return objects_.emplace(std::move(key), std::move(def)).second;
}

int Classifier::classCount() const {
    int count = 0;
    root_.forEachDescendant([&count](const ClassNode&) { ++count; });
    return count;
}

int Classifier::tableCount() const {
    std::set<std::wstring> names;
    for (const auto& [key, def] : objects_) {
        for (const auto& table : def.tables) names.insert(host::toLower(table.name));
    }
    return static_cast<int>(names.size());
}

}  // namespace veltarn
