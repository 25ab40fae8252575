#include "classifier/ClassifierLines.h"

#include "base/Trim.h"
#include "host/Utf8.h"

#include "base/RegularFile.h"

#include <algorithm>

namespace veltarn {

bool ClassifierLines::open(const std::wstring& path) {
    line_.clear();
    piece_ = 0;
    position_ = 0;
    // Only a regular file: a folder, a FIFO or a device is no classifier.
    FileBytes file = readRegularFile(host::toUtf8(path), kMaxTextFileBytes);
    bytes_ = std::move(file.bytes);
    if (!file.ok()) return false;
    if (bytes_.starts_with("\xEF\xBB\xBF")) position_ = 3;
    return true;
}

bool ClassifierLines::next(std::wstring_view& line) {
    if (piece_ >= line_.size()) {
        if (position_ >= bytes_.size()) return false;
        // A line end never lies inside a UTF-8 sequence, so decoding line by line decodes as the
        // whole file would.
        std::size_t end = bytes_.find('\n', position_);
        end = end == std::string::npos ? bytes_.size() : end + 1;
        line_ = host::fromUtf8(std::string_view(bytes_).substr(position_, end - position_));
        position_ = end;
        piece_ = 0;
        // Text mode: a CR that ends a line is not part of it.
        if (line_.size() >= 2 && line_.back() == L'\n' && line_[line_.size() - 2] == L'\r') line_.erase(line_.size() - 2, 1);
    }
    const std::size_t length = std::min(line_.size() - piece_, kBufferSize - 1);
    line = std::wstring_view(line_).substr(piece_, length);
    piece_ += length;
    return true;
}

std::vector<std::wstring> splitColumns(std::wstring_view line) {
    line = line.substr(0, line.find(L'#'));
    std::vector<std::wstring> columns;
    std::wstring column;
    for (;;) {
        std::size_t tab = line.find(L'\t');
        column.append(line.substr(0, tab));
        if (tab == std::wstring_view::npos) break;
        line.remove_prefix(tab + 1);
        if (!column.empty() && column.back() == L'\\') {
            column.back() = L'\t';
        } else if (!column.empty()) {
            columns.push_back(std::move(column));
            column.clear();
        }
    }
    if (!column.empty()) columns.push_back(std::move(column));

    if (!columns.empty()) columns.front().erase(0, columns.front().find_first_not_of(kBlanks));
    if (!columns.empty()) {
        std::wstring& last = columns.back();
        std::size_t end = last.find_last_not_of(kBlanksAndLineEnds);
        last.erase(end == std::wstring::npos ? 0 : end + 1);
    }
    std::erase_if(columns, [](const std::wstring& c) { return c.empty(); });
    return columns;
}

}  // namespace veltarn
