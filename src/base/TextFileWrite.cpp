#include "base/TextFileWrite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace veltarn {

AtomicTextFile::~AtomicTextFile() { discard(); }

void AtomicTextFile::discard() {
    if (fd_ >= 0) ::close(fd_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
    fd_ = -1;
    temporary_.clear();
}

std::string AtomicTextFile::open(const std::string& path) {
    discard();
    path_ = path;
    error_.clear();
    struct stat existing {};
    if (::stat(path.c_str(), &existing) == 0 && !S_ISREG(existing.st_mode)) return error_ = path + ": is not a regular file";
    std::string temporary = path + ".XXXXXX";
    fd_ = ::mkstemp(temporary.data());
    if (fd_ < 0) return error_ = path + ": " + std::strerror(errno);
    temporary_ = std::move(temporary);
    ::fchmod(fd_, 0644);
    return {};
}

bool AtomicTextFile::write(const std::string& bytes) {
    if (fd_ < 0) {
        if (error_.empty()) error_ = path_ + ": not open";
        return false;
    }
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::write(fd_, bytes.data() + written, bytes.size() - written);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            error_ = path_ + ": " + std::strerror(n < 0 ? errno : ENOSPC);
            discard();
            return false;
        }
        written += static_cast<std::size_t>(n);
    }
    return true;
}

std::string AtomicTextFile::commit() {
    if (fd_ < 0) return error_.empty() ? error_ = path_ + ": not open" : error_;
    const bool synced = ::fsync(fd_) == 0;
    const bool closed = ::close(fd_) == 0;
    fd_ = -1;
    if (!synced || !closed || ::rename(temporary_.c_str(), path_.c_str()) != 0) {
        error_ = path_ + ": " + std::strerror(errno);
        discard();
        return error_;
    }
    temporary_.clear();
    return {};
}

std::string writeTextFile(const std::string& path, const std::string& bytes) {
    AtomicTextFile file;
    if (std::string error = file.open(path); !error.empty()) return error;
    if (!file.write(bytes)) return file.error();
    return file.commit();
}

}  // namespace veltarn
