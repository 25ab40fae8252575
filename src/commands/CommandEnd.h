// What the commands that change objects send after them: attribute synchronisation of the blocks
// whose references changed block, and a regeneration. They run as host commands of their own,
// after the command that sends them has ended.
#pragma once

#include <set>
#include <string>

#include "host/Host.h"

namespace veltarn {

// Sends "_.attsync _n NAME\n" per block, then "_.regen\n" when `regenerate`, with "CMDECHO" at 0
// while they are queued and given back its value afterwards.
void sendFollowUpCommands(host::Host& host, const std::set<std::wstring>& blocksToSynchronise, bool regenerate);

}  // namespace veltarn
