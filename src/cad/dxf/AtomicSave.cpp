#include "cad/dxf/OutputSink.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
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

namespace fs = std::filesystem;

// Temporary files are named ".NAME.veltarn-save-PID-XXXXXX" beside the file they will become:
// the name and the process tell a killed save's leftover from a save still running.
constexpr std::string_view kTemporaryMark = ".veltarn-save-";

std::string temporaryPrefix(const fs::path& file) { return "." + file.filename().string() + std::string(kTemporaryMark); }

// The file a save of `target` writes: `target`, or where its symbolic links lead (the links stay).
Result<fs::path> fileBehind(const fs::path& target) {
    fs::path path = target;
    for (int links = 0; links < 40; ++links) {  // the kernel's own limit on links in a row
        struct stat info {};
        if (::lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return path;
        std::error_code error;
        fs::path next = fs::read_symlink(path, error);
        if (error) return makeError("cannot save '" + target.string() + "': " + error.message());
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return makeError("cannot save '" + target.string() + "': " + std::strerror(ELOOP));
}

const char* kindOf(mode_t mode) {
    if (S_ISDIR(mode)) return "a directory";
    if (S_ISFIFO(mode)) return "a FIFO";
    if (S_ISCHR(mode) || S_ISBLK(mode)) return "a device";
    if (S_ISSOCK(mode)) return "a socket";
    return "not a file";
}

bool writtenBefore(const struct stat& info, const struct timespec& when) {
    return info.st_mtim.tv_sec < when.tv_sec || (info.st_mtim.tv_sec == when.tv_sec && info.st_mtim.tv_nsec < when.tv_nsec);
}

// Removes what killed saves of `file` left: its temporary files whose process is gone and that
// were last written before this save began (a process of another pid namespace may look gone).
void removeLeftovers(const fs::path& folder, const fs::path& file, const struct timespec& saveStart) {
    const std::string prefix = temporaryPrefix(file);
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        const std::string name = it->path().filename().string();
        if (!name.starts_with(prefix)) continue;
        const char* digits = name.c_str() + prefix.size();
        char* after = nullptr;
        long pid = std::strtol(digits, &after, 10);
        if (after == digits || *after != '-' || std::strlen(after) != 7 || pid <= 0 || pid == ::getpid()) continue;
        if (::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;  // alive, or not ours to ask about
        struct stat info {};
        if (::lstat(it->path().c_str(), &info) == 0 && S_ISREG(info.st_mode) && writtenBefore(info, saveStart)) ::unlink(it->path().c_str());
    }
}

// The new file gets the old one's owner and group where this user may give them, and its mode;
// set-user and set-group bits only with the owner and group they were meant for.
void keepOwnerAndMode(int fd, const struct stat* old) {
    mode_t mode;
    if (!old) {
        mode_t mask = ::umask(0);
        ::umask(mask);
        mode = 0666 & ~mask;
    } else {
        mode = old->st_mode & 07777;
        struct stat mine {};
        ::fstat(fd, &mine);
        if ((mine.st_uid != old->st_uid || mine.st_gid != old->st_gid) && ::fchown(fd, old->st_uid, old->st_gid) != 0)
            (void)::fchown(fd, static_cast<uid_t>(-1), old->st_gid);  // the group alone, if we belong to it
        ::fstat(fd, &mine);
        if (mine.st_uid != old->st_uid) mode &= ~S_ISUID;
        if (mine.st_gid != old->st_gid) mode &= ~S_ISGID;
    }
    (void)::fchmod(fd, mode);
}

}  // namespace

Result<void> saveAtomically(const std::filesystem::path& target, const std::function<Result<void>(OutputSink&)>& produce) {
    struct timespec saveStart {};
    ::clock_gettime(CLOCK_REALTIME, &saveStart);
    auto behind = fileBehind(target);
    if (!behind) return behind.error();
    const fs::path file = *behind;
    struct stat old {};
    const bool exists = ::stat(file.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        std::string what = file == target ? std::string("it") : "'" + file.string() + "'";
        return makeError("cannot save '" + target.string() + "': " + what + " is " + kindOf(old.st_mode) + ", not a regular file");
    }

    fs::path folder = file.parent_path().empty() ? fs::path(".") : file.parent_path();
    removeLeftovers(folder, file, saveStart);
    std::string pattern = (folder / (temporaryPrefix(file) + std::to_string(::getpid()) + "-XXXXXX")).string();
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
    keepOwnerAndMode(fd, exists ? &old : nullptr);
    if (::close(fd) != 0) {
        int error = errno;
        ::unlink(pattern.c_str());
        return makeError("cannot save '" + target.string() + "': " + std::strerror(error));
    }
    if (::rename(pattern.c_str(), file.c_str()) != 0) {
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
