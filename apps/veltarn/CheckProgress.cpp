#include "CheckProgress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace veltarn::app {
namespace {

constexpr auto kRedrawEvery = std::chrono::milliseconds(200);
constexpr std::size_t kDefaultWidth = 80;
constexpr std::size_t kCountsRoom = 52;  // "  100/100 drawings  2,000,000 objects  1:05:00 left" and a margin
constexpr std::size_t kLongestBar = 30, kShortestBar = 5;

std::string grouped(std::uint64_t n) {
    std::string digits = std::to_string(n), out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return out;
}

std::string duration(double seconds) {
    const long total = std::lround(seconds);
    char text[32];
    if (total >= 3600) std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", total / 3600, total / 60 % 60, total % 60);
    else std::snprintf(text, sizeof text, "%ld:%02ld", total / 60, total % 60);
    return text;
}

std::size_t terminalWidth() {
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return kDefaultWidth;
}

}  // namespace

std::string progressLine(std::size_t done, std::size_t total, std::uint64_t objects, double secondsLeft,
                         std::size_t width) {
    const std::string counts = "  " + std::to_string(done) + "/" + std::to_string(total) + " drawings  " +
                               grouped(objects) + " objects  " +
                               (secondsLeft < 0 ? std::string("--:--") : duration(secondsLeft)) + " left";
    // The bar's length depends on the terminal only, so that it does not shrink as the counts grow;
    // the counts alone on a narrow terminal.
    const std::size_t bar = std::min<std::size_t>(width > kCountsRoom ? width - kCountsRoom : 0, kLongestBar);
    if (bar < kShortestBar || counts.size() + bar + 2 > width) return counts.substr(2, width ? width - 1 : 0);
    const std::size_t filled = total ? bar * done / total : bar;
    return "[" + std::string(filled, '#') + std::string(bar - filled, '.') + "]" + counts;
}

CheckProgress::CheckProgress(std::vector<std::uintmax_t> sizes) : sizes_(std::move(sizes)) {
    for (const std::uintmax_t size : sizes_) totalBytes_ += size;
    ticker_ = std::thread([this] { run(); });
}

CheckProgress::~CheckProgress() {
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        finished_ = true;
    }
    wake_.notify_all();
    if (ticker_.joinable()) ticker_.join();
}

void CheckProgress::drawingDone(std::size_t index) {
    const std::lock_guard<std::mutex> guard(mutex_);
    ++done_;
    if (index < sizes_.size()) doneBytes_ += sizes_[index];
}

void CheckProgress::finish() {
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        if (finished_) return;
        finished_ = true;
    }
    wake_.notify_all();
    ticker_.join();
    draw();
    std::fputs("\n", stderr);
    std::fflush(stderr);
}

void CheckProgress::run() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!finished_) {
        lock.unlock();
        draw();
        lock.lock();
        wake_.wait_for(lock, kRedrawEvery, [this] { return finished_; });
    }
}

void CheckProgress::draw() {
    std::size_t done;
    double left = -1;
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        done = done_;
        // Reckoned by bytes read, since drawings of one delivery differ in size by orders of magnitude.
        const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
        if (done == sizes_.size()) left = 0;
        else if (doneBytes_ > 0) left = elapsed * static_cast<double>(totalBytes_ - doneBytes_) / doneBytes_;
    }
    const std::string line = progressLine(done, sizes_.size(), objects_.load(), left, terminalWidth());
    // Back to the line's start and clear what a longer line left behind.
    std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
    std::fflush(stderr);
}

}  // namespace veltarn::app
