#include "base/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace veltarn {
namespace {

// Closes the descriptor on every way out.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

std::string kindOf(mode_t mode) {
    if (S_ISDIR(mode)) return "is a directory";
    if (S_ISFIFO(mode)) return "is a FIFO";
    if (S_ISCHR(mode) || S_ISBLK(mode)) return "is a device";
    if (S_ISSOCK(mode)) return "is a socket";
    return "is not a regular file";
}

std::string sizeText(std::uintmax_t bytes) {
    // Rounded: the drawing limit, a few bytes short of 4 GiB, reads as 4 GiB.
    if (bytes >= (std::uintmax_t{1} << 30)) return std::to_string((bytes + (std::uintmax_t{1} << 29)) >> 30) + " GiB";
    if (bytes >= (std::uintmax_t{1} << 20)) return std::to_string((bytes + (std::uintmax_t{1} << 19)) >> 20) + " MiB";
    return std::to_string(bytes) + " bytes";
}

// Opens `path` for reading if it is a regular file; else says why in `file`.
int openRegular(const std::string& path, FileBytes& file) {
    // O_NONBLOCK: opening a FIFO for reading would otherwise wait for a writer.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) {
        file.problem = FileProblem::kCannotOpen;
        file.error = path + ": cannot open: " + std::strerror(errno);
        return -1;
    }
    struct stat status {};
    if (::fstat(fd, &status) != 0) {
        file.problem = FileProblem::kCannotRead;
        file.error = path + ": cannot read: " + std::strerror(errno);
        ::close(fd);
        return -1;
    }
    if (!S_ISREG(status.st_mode)) {
        file.problem = FileProblem::kNotRegular;
        file.error = path + ": " + kindOf(status.st_mode);
        ::close(fd);
        return -1;
    }
    return fd;
}

}  // namespace

FileBytes readRegularFile(const std::string& path, std::uintmax_t maxBytes) {
    FileBytes file;
    Descriptor fd(openRegular(path, file));
    if (fd.get() < 0) return file;
    struct stat status {};
    ::fstat(fd.get(), &status);
    const auto tooLarge = [&] {
        file.bytes.clear();
        file.problem = FileProblem::kTooLarge;
        file.error = path + ": is larger than " + sizeText(maxBytes) + ", the limit for such files";
        return file;
    };
    if (static_cast<std::uintmax_t>(status.st_size) > maxBytes) return tooLarge();
    // Some regular files (under /proc) say 0 and still have bytes: read to the end, capped.
    file.bytes.reserve(static_cast<std::size_t>(status.st_size));
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
        if (got == 0) break;
        if (got < 0) {
            if (errno == EINTR) continue;
            file.bytes.clear();
            file.problem = FileProblem::kCannotRead;
            file.error = path + ": cannot read: " + std::strerror(errno);
            return file;
        }
        if (file.bytes.size() + static_cast<std::size_t>(got) > maxBytes) return tooLarge();
        file.bytes.append(buffer, static_cast<std::size_t>(got));
    }
    return file;
}

FileBytes checkRegularFile(const std::string& path) {
    FileBytes file;
    Descriptor fd(openRegular(path, file));
    return file;
}

}  // namespace veltarn
