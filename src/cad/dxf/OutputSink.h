// Where written DXF goes: a string (tests, in-memory copies) or a file written in large blocks.
#pragma once

#include "cad/dxf/Result.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace veltarn::dxf {

class OutputSink {
public:
    virtual ~OutputSink() = default;
    virtual void write(std::string_view bytes) = 0;
};

class StringSink final : public OutputSink {
public:
    void write(std::string_view bytes) override { text_.append(bytes); }
    const std::string& text() const { return text_; }
    std::string take() { return std::move(text_); }

private:
    std::string text_;
};

// A save collects small writes in a buffer of this size and hands larger ones to the file at once.
inline constexpr std::size_t kSaveBufferSize = std::size_t{1} << 20;

// Writes a file safely: the bytes go to a temporary file beside `target`, which is flushed to
// disk and renamed over `target` only when everything was written. On any failure the old file
// is left as it was, the temporary one is removed, and the error says why. A symbolic link is
// followed (its target is written, the link stays); a directory, device, FIFO or socket is
// refused. The old file's owner, group and mode stay where this user may keep them. Temporary
// files a killed save of the same file left (".NAME.veltarn-save-PID-XXXXXX", their process
// gone, older than this save) are removed.
Result<void> saveAtomically(const std::filesystem::path& target, const std::function<Result<void>(OutputSink&)>& produce);

}  // namespace veltarn::dxf
