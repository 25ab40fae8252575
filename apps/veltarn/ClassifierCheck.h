// --check-classifier: a classifier file read against a drawing, as loading it would read it, for a
// CAD manager to check in a script before anyone loads it.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "cad/seam/WorkbenchHost.h"

namespace veltarn::app {

struct ClassifierCheck {
    bool opened = false;  // false: the file could not be opened, and the reader said nothing
    std::string problem;  // why not: "roads.txt: is a directory", "roads.txt: cannot open: ..."
    bool failed = false;  // reading stopped on an error (or the file could not be opened)
    int classes = 0, objects = 0, tables = 0;  // all 0 after an error
};

// Reads `file` against the host's working drawing (its tables checked, its resources imported),
// printing the reader's messages through `print` exactly as the command line shows them, then the
// line "%i classes, %i objects, %i tables\n".
ClassifierCheck checkClassifier(seam::WorkbenchHost& host, const std::filesystem::path& file,
                                const std::function<void(const std::wstring&)>& print);

}  // namespace veltarn::app
