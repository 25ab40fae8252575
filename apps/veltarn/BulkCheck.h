// veltarn check: one drawing read, the classifier read against it as loading it would read it,
// and every object of model space tested; the findings, for a CAD manager's script.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace veltarn::app {

// One thing at fault. Text is UTF-8; what does not concern an object has an empty handle.
struct CheckFinding {
    std::string drawing, handle, type, layer, className, code, message, expected;
};

// The objects of one drawing, counted. Every object is one of valid, faulty, unclassified or
// foreign (records, none of a known class).
struct DrawingTally {
    std::string drawing;
    bool read = false;     // false: the drawing could not be read, and nothing else was counted
    bool checked = false;  // false: the classifier could not be read against it; only objects and audit counted
    int objects = 0, valid = 0, faulty = 0, unclassified = 0, foreign = 0, audit = 0;
};

struct DrawingCheck {
    DrawingTally tally;
    std::vector<CheckFinding> findings;
    bool unreadable = false;  // the drawing, or the classifier against it, could not be read
};

// Checks `drawing` against the classifier file `classifier` (which the caller has found to be a
// readable file). Nothing is written to the drawing. Drawings may be checked on several threads
// at once, each with its own workbench; `readingClassifier`, when given, is held while the
// classifier is read, since reading it brings patterns into the user's own files. Each object
// checked is counted into `objectsChecked` when given, for a progress bar.
DrawingCheck checkDrawing(const std::string& drawing, const std::filesystem::path& classifier,
                          std::mutex* readingClassifier = nullptr,
                          std::atomic<std::uint64_t>* objectsChecked = nullptr);

}  // namespace veltarn::app
