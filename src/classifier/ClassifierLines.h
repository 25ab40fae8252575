// The text level of a classifier file: its lines as the reader receives them, and the columns of
// one line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace veltarn {

// Hands out the lines of a UTF-8 file (byte-order mark accepted, CR LF read as LF) the way a
// line buffer of 10,240 characters does: a line of more than 10,239 characters, its line end
// included, comes in pieces, and each piece is a line of its own.
class ClassifierLines {
public:
    static constexpr std::size_t kBufferSize = 10240;

    // False when the file cannot be opened or read: one that is no regular file, or is larger
    // than host::kMaxTextFileBytes.
    bool open(const std::wstring& path);
    // Sets `line` to the next piece (line end included when it has one); false at the end. The
    // view stays valid until the next call.
    bool next(std::wstring_view& line);

private:
    // The file's bytes, decoded a line at a time: the whole file decoded would take four times
    // its size again.
    std::string bytes_;
    std::size_t position_ = 0;  // in bytes_
    std::wstring line_;         // the decoded line that pieces are handed out of
    std::size_t piece_ = 0;     // in line_
};

// The columns of one line: everything from the first "#" dropped; split at tabs, a run of tabs
// counting as one; a backslash right before a tab escapes it (the two pieces join with a tab in
// place of the backslash); the first column trimmed of leading blanks, the last of trailing
// blanks and line ends; columns left empty dropped.
std::vector<std::wstring> splitColumns(std::wstring_view line);

}  // namespace veltarn
