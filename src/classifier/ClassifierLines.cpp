#include "classifier/ClassifierLines.h"

#include "classifier/Trim.h"
#include "host/Utf8.h"

#include "host/RegularFile.h"

namespace veltarn {

bool ClassifierLines::open(const std::wstring& path) {
    text_.clear();
    position_ = 0;
    // Only a regular file: a folder, a FIFO or a device is no classifier.
    host::FileBytes file = host::readRegularFile(host::toUtf8(path), host::kMaxTextFileBytes);
    if (!file.ok()) return false;

    std::wstring decoded = host::fromUtf8(file.bytes);
    std::size_t start = !decoded.empty() && decoded.front() == L'\uFEFF' ? 1 : 0;
    // Text mode: a CR that ends a line is not part of it.
    text_.reserve(decoded.size());
    for (std::size_t i = start; i < decoded.size(); ++i) {
        if (decoded[i] == L'\r' && i + 1 < decoded.size() && decoded[i + 1] == L'\n') continue;
        text_.push_back(decoded[i]);
    }
    return true;
}

bool ClassifierLines::next(std::wstring_view& line) {
    if (position_ >= text_.size()) return false;
    std::size_t limit = std::min(text_.size() - position_, kBufferSize - 1);
    std::wstring_view rest(text_.data() + position_, limit);
    std::size_t end = rest.find(L'\n');
    std::size_t length = end == std::wstring_view::npos ? limit : end + 1;
    line = rest.substr(0, length);
    position_ += length;
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
