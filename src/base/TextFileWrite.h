// Writing a whole text file so that a reader never sees half of it: into a temporary file beside
// the target, then renamed over it. A failed write leaves the target as it was.
#pragma once

#include <string>

namespace veltarn {

// Writes `bytes` to `path` (UTF-8). Empty on success, else why not ("PATH: No such file or
// directory"). A target that exists and is not a regular file is refused.
std::string writeTextFile(const std::string& path, const std::string& bytes);

// The same, piece by piece, for a file too large to hold in memory at once: the pieces go into
// the temporary file as they come, and commit() renames it over the target. Destroyed without a
// commit (or after a failed write), the temporary file is removed and the target left alone.
class AtomicTextFile {
public:
    AtomicTextFile() = default;
    ~AtomicTextFile();
    AtomicTextFile(const AtomicTextFile&) = delete;
    AtomicTextFile& operator=(const AtomicTextFile&) = delete;

    // Empty on success, else why not, as writeTextFile says it.
    std::string open(const std::string& path);
    // False once a write has failed; error() then says why, and later writes do nothing.
    bool write(const std::string& bytes);
    std::string commit();
    const std::string& error() const { return error_; }

private:
    void discard();

    std::string path_, temporary_, error_;
    int fd_ = -1;
};

}  // namespace veltarn
