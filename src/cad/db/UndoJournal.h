// The record of changes per command: for every object a command changed, created or erased, its
// state before and after. An object's state is three numbers (where its tags are and its flags),
// and tags are never overwritten in place, so undo and redo restore object data exactly.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace veltarn::db {

class UndoJournal {
public:
    struct State {
        std::uint32_t begin = 0, size = 0;
        std::uint8_t flags = 0;
        bool operator==(const State&) const = default;
    };
    // The slot of a change that is no object's: the drawing changed form (R12 to 2018).
    static constexpr std::uint32_t kFormChange = 0xFFFFFFFEu;
    struct Change {
        std::uint32_t slot;
        State before, after;
    };
    struct Command {
        std::string name;
        std::size_t first = 0, last = 0;  // changes [first, last)
    };

    // Opens a command; nested begins join the outer command (a command run inside another).
    void begin(std::string name);
    void end();
    bool recording() const { return depth_ > 0 && enabled_; }
    // Bulk loaders switch recording off; switching it off also forgets what can be undone.
    void setEnabled(bool enabled);
    // Forgets every change recorded so far (the objects they name are gone); a command that is
    // open stays open and records what follows.
    void forgetHistory();

    void record(std::uint32_t slot, State before, State after);
    // Forgets the changes from `mark` on (they were reverted), within the open command.
    void truncate(std::size_t mark);

    bool canUndo() const { return done_ > 0; }
    bool canRedo() const { return done_ < commands_.size(); }
    const std::string& nextUndoName() const;
    // The command to undo / redo; the caller applies its changes and then calls markUndone/Redone.
    const Command& undoCommand() const { return commands_[done_ - 1]; }
    const Command& redoCommand() const { return commands_[done_]; }
    void markUndone() { --done_; }
    void markRedone() { ++done_; }
    const std::vector<Change>& changes() const { return changes_; }
    std::size_t commandCount() const { return done_; }

private:
    std::vector<Change> changes_;
    std::vector<Command> commands_;
    std::size_t done_ = 0;
    int depth_ = 0;
    bool enabled_ = true;
};

}  // namespace veltarn::db
