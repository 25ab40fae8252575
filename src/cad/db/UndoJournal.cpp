#include "cad/db/UndoJournal.h"

#include <algorithm>

namespace veltarn::db {

void UndoJournal::begin(std::string name) {
    if (depth_++ > 0 || !enabled_) return;
    // A new command makes what was undone unreachable.
    if (done_ < commands_.size()) {
        changes_.resize(done_ > 0 ? commands_[done_ - 1].last : 0);
        commands_.resize(done_);
    }
    commands_.push_back({std::move(name), changes_.size(), changes_.size()});
    ++done_;
}

void UndoJournal::end() {
    if (depth_ == 0) return;
    if (--depth_ > 0 || !enabled_) return;
    Command& command = commands_.back();
    command.last = changes_.size();
    // A command that changed nothing leaves nothing to undo.
    if (command.first == command.last) {
        commands_.pop_back();
        --done_;
    }
}

void UndoJournal::setEnabled(bool enabled) {
    enabled_ = enabled;
    if (!enabled) {
        changes_.clear();
        commands_.clear();
        done_ = 0;
    }
}

void UndoJournal::forgetHistory() {
    std::string open = depth_ > 0 && enabled_ && !commands_.empty() ? commands_.back().name : std::string();
    changes_.clear();
    commands_.clear();
    done_ = 0;
    if (depth_ > 0 && enabled_) {
        commands_.push_back({std::move(open), 0, 0});
        done_ = 1;
    }
}

void UndoJournal::record(std::uint32_t slot, State before, State after) {
    if (!recording()) return;
    changes_.push_back({slot, before, after});
    commands_.back().last = changes_.size();
}

void UndoJournal::truncate(std::size_t mark) {
    if (mark >= changes_.size()) return;
    changes_.resize(mark);
    if (!commands_.empty() && commands_.back().last > mark) commands_.back().last = std::max(mark, commands_.back().first);
}

const std::string& UndoJournal::nextUndoName() const {
    static const std::string none;
    return done_ > 0 ? commands_[done_ - 1].name : none;
}

}  // namespace veltarn::db
