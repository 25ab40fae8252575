// Reads a classifier file into a Classifier, with the diagnostics a user sees on the command line.
#pragma once

#include "classifier/Classifier.h"
#include "classifier/ClassifierDrawing.h"
#include "host/SystemVariables.h"

#include <functional>
#include <string>

namespace veltarn {

class ClassifierReader {
public:
    // Where the messages go: the command line, as they stand (each ends with its own "\n").
    using Print = std::function<void(const std::wstring&)>;

    // `variables` types the "variable" lines; without it every variable is unknown. `drawing` is
    // the drawing the classifier is loaded into; without it tables are not checked against a
    // drawing and no resources are looked up or imported.
    explicit ClassifierReader(Print print, const host::SystemVariables* variables = nullptr,
                              ClassifierDrawing* drawing = nullptr);

    // The classifier of the file `path`. The first error prints its message and stops reading,
    // and the result is empty (its path kept); warnings are printed and reading goes on. A file
    // that cannot be opened gives an empty classifier without a message.
    Classifier read(const std::wstring& path);

    // Whether the last read() stopped on an error (an unopenable file counts as one).
    bool failed() const { return failed_; }

private:
    Print print_;
    const host::SystemVariables* variables_;
    ClassifierDrawing* drawing_;
    bool failed_ = false;
};

}  // namespace veltarn
