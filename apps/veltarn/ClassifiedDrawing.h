// A drawing read from its file with the classifier read against it, as loading the classifier
// would read it: what veltarn check and veltarn export both start from.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "cad/seam/WorkbenchHost.h"
#include "classifier/Classifier.h"

namespace veltarn::app {

struct ClassifiedDrawing {
    // The workbench holding the drawing; it speaks only through the reader's transcript.
    std::unique_ptr<seam::WorkbenchHost> host;
    host::Database* db = nullptr;
    Classifier classifier;
    std::wstring transcript;        // what the classifier's reader printed
    bool classifierFailed = false;  // reading stopped on an error; `classifier` is not to be used

    // The reader's messages, one a line of the transcript, blank lines left out, in UTF-8.
    std::vector<std::string> readerMessages() const;
};

// Why the classifier file `path` cannot be read, as the subcommands tell it; empty when it can.
// (The reader itself is silent about a file it cannot open.)
std::string classifierFileProblem(const std::string& path);

// Reads `drawing`; the error is the reader's ("roads.dxf:1043: ..."). `beforeClassifier` sees the
// drawing as the file holds it, before the classifier imports anything into it. Drawings may be
// read on several threads at once; `readingClassifier`, when given, is held while the classifier
// is read, since reading it brings patterns into the user's own files.
Result<ClassifiedDrawing> readClassifiedDrawing(
    const std::string& drawing, const std::filesystem::path& classifier, std::mutex* readingClassifier = nullptr,
    const std::function<void(seam::WorkbenchDatabase&)>& beforeClassifier = {});

}  // namespace veltarn::app
