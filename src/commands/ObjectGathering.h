// How the commands over classified objects find their objects: the pick-first set, else a
// selection by the user, else all of model space; then the entities the user cannot work on are
// dropped. The names are the ones the palettes' documentation and the command transcripts use.
#pragma once

#include <functional>
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

// Makes `list` the pick-first set; an empty list leaves nothing selected.
void SetPickFirst(host::Host& host, const CandidateList& list);

// Removes list[index] by moving the last element into its place.
inline void removeCandidate(CandidateList& list, std::size_t index) {
    list[index] = list.back();
    list.pop_back();
}

}  // namespace veltarn
