#include "base/TextFileWrite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace veltarn {

std::string writeTextFile(const std::string& path, const std::string& bytes) {
    struct stat existing {};
    if (::stat(path.c_str(), &existing) == 0 && !S_ISREG(existing.st_mode)) return path + ": is not a regular file";
    std::string temporary = path + ".XXXXXX";
    const int fd = ::mkstemp(temporary.data());
    if (fd < 0) return path + ": " + std::strerror(errno);
    ::fchmod(fd, 0644);
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            const std::string error = path + ": " + std::strerror(errno);
            ::close(fd);
            ::unlink(temporary.c_str());
            return error;
        }
        written += static_cast<std::size_t>(n);
    }
    const bool synced = ::fsync(fd) == 0;
    const bool closed = ::close(fd) == 0;
    if (!synced || !closed || ::rename(temporary.c_str(), path.c_str()) != 0) {
        const std::string error = path + ": " + std::strerror(errno);
        ::unlink(temporary.c_str());
        return error;
    }
    return {};
}

}  // namespace veltarn
