// The classes automatic classification may give, indexed by entity type and layer, so that an
// object is tested only against the few classes that could take it, not against every class.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "classifier/Classifier.h"
#include "host/DbEntity.h"

namespace veltarn {

class AutoClassIndex {
public:
    // Takes the classes `eligible` accepts.
    AutoClassIndex(const Classifier& classifier, const std::function<bool(const ClassDef&)>& eligible);

    // The eligible class with the greatest number (equal numbers: the first in key order) whose
    // property test holds for `entity`; null when none does. A class numbered -2147483648 is never
    // chosen: nothing is greater than the lowest bound.
    const ClassDef* firstMatch(const host::DbEntity& entity) const;

private:
    // Classes in the order they are tried: greatest number first, then key order.
    std::vector<const ClassDef*> ranked_;
    struct Candidates {
        std::unordered_map<std::wstring, std::vector<std::size_t>> byLayer;  // lower-case layer
        std::vector<std::size_t> anyLayer;  // no layer given, or "*"
    };
    std::unordered_map<std::wstring, Candidates> byType_;  // lower-case type name
};

}  // namespace veltarn
