#include "cad/dxf/OutputSink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace veltarn::dxf {
namespace {

// Buffers small writes; large ones (whole unchanged runs of a drawing, a long text) go straight to
// the file, after what the buffer holds: bytes must reach the file in the order they were written.
class FileSink final : public OutputSink {
public:
    explicit FileSink(int fd) : fd_(fd) { buffer_.reserve(kSaveBufferSize); }

    void write(std::string_view bytes) override {
        if (errno_ != 0) return;
        if (bytes.size() >= kSaveBufferSize / 2) {
            flush();
            writeAll(bytes);
            return;
        }
        if (buffer_.size() + bytes.size() > kSaveBufferSize) flush();
        buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    }

    // Returns errno of the first failure, 0 when all went well.
    int finish() {
        flush();
        if (errno_ == 0 && ::fsync(fd_) != 0) errno_ = errno;
        return errno_;
    }

private:
    void flush() {
        writeAll(std::string_view(buffer_.data(), buffer_.size()));
        buffer_.clear();
    }

    void writeAll(std::string_view bytes) {
        while (!bytes.empty() && errno_ == 0) {
            ssize_t written = ::write(fd_, bytes.data(), bytes.size());
            if (written < 0) {
                if (errno == EINTR) continue;
                errno_ = errno;
                return;
            }
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    int fd_;
    std::vector<char> buffer_;
    int errno_ = 0;
};

mode_t modeForNewFile(const std::filesystem::path& target) {
    struct stat existing {};
    if (::stat(target.c_str(), &existing) == 0) return existing.st_mode & 07777;
    mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

}  // namespace

Result<void> saveAtomically(const std::filesystem::path& target, const std::function<Result<void>(OutputSink&)>& produce) {
    std::filesystem::path folder = target.parent_path().empty() ? std::filesystem::path(".") : target.parent_path();
    std::string pattern = (folder / ("." + target.filename().string() + ".XXXXXX")).string();
    int fd = ::mkstemp(pattern.data());
    if (fd < 0) return makeError("cannot save '" + target.string() + "': cannot create a file in '" + folder.string() + "': " + std::strerror(errno));

    auto abandon = [&](const std::string& why) {
        ::close(fd);
        ::unlink(pattern.c_str());
        return makeError("cannot save '" + target.string() + "': " + why);
    };

    FileSink sink(fd);
    if (auto produced = produce(sink); !produced) return abandon(produced.message());
    if (int error = sink.finish(); error != 0) return abandon(std::strerror(error));
    if (::fchmod(fd, modeForNewFile(target)) != 0) return abandon(std::strerror(errno));
    if (::close(fd) != 0) {
        int error = errno;
        ::unlink(pattern.c_str());
        return makeError("cannot save '" + target.string() + "': " + std::strerror(error));
    }
    if (::rename(pattern.c_str(), target.c_str()) != 0) {
        int error = errno;
        ::unlink(pattern.c_str());
        return makeError("cannot save '" + target.string() + "': " + std::strerror(error));
    }
    // The rename itself lives in the folder: flush it too, or a crash may still bring back the old file.
    if (int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY); dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return {};
}

}  // namespace veltarn::dxf
