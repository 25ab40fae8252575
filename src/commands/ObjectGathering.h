// How the commands over classified objects find their objects: the pick-first set, else a
// selection by the user, else all of model space; then the entities the user cannot work on are
// dropped. The names are the ones the palettes' documentation and the command transcripts use.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "host/DbEntity.h"
#include "host/Host.h"

namespace veltarn {

// Entities, in the order they were gathered. Removing one moves the last into its place: only
// membership and count matter, and this keeps every filter linear.
using CandidateList = std::vector<host::ObjectId>;

// The pick-first set; empty when nothing is selected.
CandidateList GetImpliedSelection(host::Host& host);

// Lets the user select objects and appends them to `list`. False only when the user cancelled;
// a selection that ends without input appends nothing and is not a cancel.
bool PromptSelection(host::Host& host, CandidateList& list);

// Every entity of model space in its order, whatever space is current; empty without a drawing.
CandidateList CollectModelSpace(host::Host& host);

// Drops entities that cannot be opened and those on layers that are off, frozen, locked or hidden.
void FilterUsableLayers(host::Host& host, CandidateList& list);

// Drops entities that cannot be opened, and those the acceptance hook refuses. The hook accepts
// every entity unless a caller installs another: it is where a front end can keep its own
// objects out of the module's commands.
using EntityAcceptance = std::function<bool(const host::DbEntity&)>;
void FilterOpenable(host::Host& host, CandidateList& list, const EntityAcceptance& accept = {});

// FilterUsableLayers and FilterOpenable in one pass over the list, each entity opened once: what
// the commands run, as the two filters in a row would open every entity twice.
void FilterUsable(host::Host& host, CandidateList& list, const EntityAcceptance& accept = {});

// Where the objects come from when nothing was picked first.
enum class WhenNothingPicked {
    kModelSpace,            // straight to all of model space, without asking
    kPromptThenModelSpace,  // ask; all of model space when the user picks nothing
    kPromptOnly,            // ask; nothing picked is nothing to work on
};

// The objects most commands work on: `picked` (the pick-first set, taken by the caller before its
// prompts), else per `how`; then FilterUsable. nullopt when the user cancelled the selection, and,
// after "Error: no objects selected.\n", when there was nothing to gather. The list the filter
// leaves may be empty: each command says what that means.
std::optional<CandidateList> gatherCandidates(host::Host& host, CandidateList picked, WhenNothingPicked how);

// Makes `list` the pick-first set; an empty list leaves nothing selected.
void SetPickFirst(host::Host& host, const CandidateList& list);

// Removes list[index] by moving the last element into its place.
inline void removeCandidate(CandidateList& list, std::size_t index) {
    list[index] = list.back();
    list.pop_back();
}

}  // namespace veltarn
