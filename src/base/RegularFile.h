// The one way files are read: whole, only when they are regular files (symlinks followed), and
// never past a size limit, so that a folder, a FIFO or a device given as input gets a message
// instead of a hang or an endless read.
#pragma once

#include <cstdint>
#include <string>

namespace veltarn {

// Size limits by kind of file. A drawing's offsets are 32-bit; text files this large are a
// mistake (a log, a dump) and would take many times their size in memory once decoded.
inline constexpr std::uintmax_t kMaxDrawingBytes = 0xFFFFFFEFu;               // just under 4 GiB
inline constexpr std::uintmax_t kMaxTextFileBytes = std::uintmax_t{256} << 20;  // classifiers, scripts
inline constexpr std::uintmax_t kMaxSupportFileBytes = std::uintmax_t{64} << 20;  // .lin, .mln, .pat
inline constexpr std::uintmax_t kMaxSettingsBytes = std::uintmax_t{1} << 20;

enum class FileProblem {
    kNone,
    kCannotOpen,  // missing, or not allowed: callers keep their own words for this everyday case
    kNotRegular,  // a folder, a FIFO, a device, a socket
    kTooLarge,
    kCannotRead,
};

// A whole file, or why it was not read.
struct FileBytes {
    std::string bytes;
    FileProblem problem = FileProblem::kNone;
    // Empty when the file was read; else "PATH: is a directory", "PATH: is a FIFO", "PATH: is
    // a device", "PATH: cannot open: No such file or directory", "PATH: is larger than 64 MiB" ...
    std::string error;

    bool ok() const { return problem == FileProblem::kNone; }
};

// Reads the file at `path` (UTF-8) whole. Opens without waiting (a FIFO with no writer would
// block the open) and checks what was opened, so no other process can swap the file in between.
FileBytes readRegularFile(const std::string& path, std::uintmax_t maxBytes);

// What readRegularFile would say of opening `path`, without reading it (bytes stay empty): for
// readers that only need to know the file is there.
FileBytes checkRegularFile(const std::string& path);

}  // namespace veltarn
