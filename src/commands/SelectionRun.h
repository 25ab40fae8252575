// The frame the selection and check commands share: gather the candidates, keep those a test
// accepts, make them the pick-first set and say how many there are.
#pragma once

#include <functional>
#include <optional>

#include "commands/ObjectGathering.h"

namespace veltarn {

// The pick-first set, else per `how`; then the layer and openable filters. Prints "Error: no
// objects selected.\n" when there is nothing to gather and "Selected: 0" when the filters leave
// nothing; nullopt then, and when the user cancelled.
std::optional<CandidateList> gatherForSelection(host::Host& host, WhenNothingPicked how);

// Keeps the candidates `keep` accepts (the last one moves into a rejected one's place), makes
// them the pick-first set and prints "Selected: %i" (no line end).
void selectWhere(host::Host& host, CandidateList& list, const std::function<bool(host::ObjectId)>& keep);

// Makes `list` the pick-first set and prints "Selected: %i".
void finishSelection(host::Host& host, const CandidateList& list);

}  // namespace veltarn
