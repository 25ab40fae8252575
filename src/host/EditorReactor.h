// Notifications of the command line: commands starting and ending, the pick-first set changing.
#pragma once

#include <string>

namespace veltarn::host {

// Added with Editor::addReactor() and removed with removeReactor(), in pairs. `command` is the
// command's global name in upper case, as the command line reports it ("LINE", "VELTARN_DRAW",
// "-HATCH"). A transparent command nested in another one reports its own start and end.
class EditorReactor {
public:
    virtual ~EditorReactor() = default;
    virtual void commandWillStart(const std::wstring& /*command*/) {}
    virtual void commandEnded(const std::wstring& /*command*/) {}
    virtual void commandCancelled(const std::wstring& /*command*/) {}
    // The command could not run or stopped on an error of its own.
    virtual void commandFailed(const std::wstring& /*command*/) {}
    // The pick-first set is now another one (a selection made, or the set cleared): the properties
    // palette shows the new set's values.
    virtual void pickFirstModified() {}
};

}  // namespace veltarn::host
