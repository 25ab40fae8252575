// Makes each command one step of the drawing's undo: every command run at the command line is
// wrapped in the database's beginCommand / endCommand, and a command that changed the drawing
// marks it modified.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "cad/seam/WorkbenchDatabase.h"
#include "host/EditorReactor.h"

namespace veltarn::seam {

class CommandJournal : public host::EditorReactor {
public:
    // `drawing` gives the current drawing (null when none is open).
    explicit CommandJournal(std::function<WorkbenchDatabase*()> drawing) : drawing_(std::move(drawing)) {}

    // Commands that are no step of their own: undo and redo themselves, and the commands that
    // replace the drawing (the step would be begun on one drawing and ended on another).
    void exempt(const std::wstring& command) { exempt_.insert(command); }

    void commandWillStart(const std::wstring& command) override;
    void commandEnded(const std::wstring& command) override { finish(command); }
    void commandCancelled(const std::wstring& command) override { finish(command); }
    void commandFailed(const std::wstring& command) override { finish(command); }

private:
    struct Open {
        WorkbenchDatabase* drawing = nullptr;  // null for an exempt command
        std::size_t stepsBefore = 0;
        bool wasR12 = false;  // a conversion forgets the changes counted before it
    };
    void finish(const std::wstring& command);

    std::function<WorkbenchDatabase*()> drawing_;
    std::set<std::wstring> exempt_;
    std::vector<Open> open_;
};

}  // namespace veltarn::seam
