#include "cad/seam/OpenTable.h"

namespace veltarn::seam {

namespace {
constexpr std::size_t kNone = static_cast<std::size_t>(-1);
}

std::size_t OpenTable::indexOf(db::Handle handle) const {
    if (!index_.empty()) {
        auto it = index_.find(handle);
        return it == index_.end() ? kNone : it->second;
    }
    // The most recent opens are at the end and are the ones closed first.
    for (std::size_t i = entries_.size(); i-- > 0;)
        if (entries_[i].handle == handle) return i;
    return kNone;
}

OpenTable::Counts* OpenTable::find(db::Handle handle) {
    const std::size_t at = indexOf(handle);
    return at == kNone ? nullptr : &entries_[at].counts;
}

OpenTable::Counts& OpenTable::add(db::Handle handle) {
    if (const std::size_t at = indexOf(handle); at != kNone) return entries_[at].counts;
    entries_.push_back({handle, {}});
    if (!index_.empty()) {
        index_.emplace(handle, entries_.size() - 1);
    } else if (entries_.size() > kScanned) {
        for (std::size_t i = 0; i < entries_.size(); ++i) index_.emplace(entries_[i].handle, i);
    }
    return entries_.back().counts;
}

void OpenTable::dropIfClosed(db::Handle handle) {
    const std::size_t at = indexOf(handle);
    if (at == kNone || entries_[at].counts.writer || entries_[at].counts.readers > 0) return;
    remove(at);
}

void OpenTable::remove(std::size_t at) {
    // The last entry takes the freed place, so removal is constant time.
    if (!index_.empty()) index_.erase(entries_[at].handle);
    if (at + 1 != entries_.size()) {
        entries_[at] = entries_.back();
        if (!index_.empty()) index_[entries_[at].handle] = at;
    }
    entries_.pop_back();
    if (!index_.empty() && entries_.size() < kScanned / 2) index_.clear();
}

std::size_t OpenTable::openCount() const {
    std::size_t count = 0;
    for (const Entry& entry : entries_) count += static_cast<std::size_t>(entry.counts.readers) + (entry.counts.writer ? 1 : 0);
    return count;
}

}  // namespace veltarn::seam
