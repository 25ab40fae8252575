// The progress bar of veltarn check on a terminal: drawings done, objects checked and the time
// left, redrawn in place on standard error while the workers run.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace veltarn::app {

// What the bar shows, as one line of at most `width` columns:
// "[#####.....]  12/100 drawings  240,000 objects  1:05 left". `secondsLeft` < 0: not known yet.
std::string progressLine(std::size_t done, std::size_t total, std::uint64_t objects, double secondsLeft,
                         std::size_t width);

class CheckProgress {
public:
    // `sizes`: the drawings' file sizes in bytes, which the time left is reckoned by (0 for one
    // that cannot be read).
    explicit CheckProgress(std::vector<std::uintmax_t> sizes);
    ~CheckProgress();
    CheckProgress(const CheckProgress&) = delete;
    CheckProgress& operator=(const CheckProgress&) = delete;

    // Counted by the workers as they go.
    std::atomic<std::uint64_t>& objects() { return objects_; }
    void drawingDone(std::size_t index);
    // Draws the last state and ends the line.
    void finish();

private:
    void run();
    void draw();

    const std::vector<std::uintmax_t> sizes_;
    std::uintmax_t totalBytes_ = 0, doneBytes_ = 0;
    std::size_t done_ = 0;
    std::atomic<std::uint64_t> objects_{0};
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex mutex_;
    std::condition_variable wake_;
    bool finished_ = false;
    std::thread ticker_;
};

}  // namespace veltarn::app
