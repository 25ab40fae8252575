// Writing a whole text file so that a reader never sees half of it: into a temporary file beside
// the target, then renamed over it. A failed write leaves the target as it was.
#pragma once

#include <string>

namespace veltarn {

// Writes `bytes` to `path` (UTF-8). Empty on success, else why not ("PATH: No such file or
// directory"). A target that exists and is not a regular file is refused.
std::string writeTextFile(const std::string& path, const std::string& bytes);

}  // namespace veltarn
