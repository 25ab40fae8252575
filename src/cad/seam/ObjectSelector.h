// Object selection over the current drawing, for the command line: "Select objects: " with all,
// last, previous, window and crossing by two points, handles, and Enter to finish.
#pragma once

#include <functional>
#include <vector>

#include "cad/editor/CommandLine.h"
#include "cad/seam/WorkbenchDatabase.h"

namespace veltarn::seam {

class ObjectSelector {
public:
    // `drawing` gives the current drawing (null when none is open).
    ObjectSelector(editor::CommandLine& commandLine, std::function<WorkbenchDatabase*()> drawing)
        : commandLine_(commandLine), drawing_(std::move(drawing)) {}

    // What CommandLine::setSelector() takes. kAll: every entity of model space. kInteractive: asks
    // until Enter; kNormal with the entities chosen (maybe none), kCancel, or kError when the input
    // ends or no drawing is open.
    host::PromptStatus select(host::SelectionMode mode, std::vector<host::ObjectId>& ids);

    // The set the last interactive selection ended with ("previous"); a new drawing empties it.
    const std::vector<host::ObjectId>& previous() const { return previous_; }
    void forgetPrevious() { previous_.clear(); }

private:
    enum class BoxMode { kWindow, kCrossing };
    // The entities of model space the user can see, in drawing order.
    std::vector<db::Handle> visibleEntities(const WorkbenchDatabase& drawing) const;
    // Asks for the two corners; false when the user cancelled or the input ended (`status` says).
    bool askCorners(const std::wstring& first, host::Point3d& a, host::Point3d& b, host::PromptStatus& status);
    std::vector<db::Handle> inBox(const WorkbenchDatabase& drawing, host::Point3d a, host::Point3d b, BoxMode mode) const;

    editor::CommandLine& commandLine_;
    std::function<WorkbenchDatabase*()> drawing_;
    std::vector<host::ObjectId> previous_;
};

}  // namespace veltarn::seam
