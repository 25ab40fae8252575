// Carries tags from a scanner to their readers a window at a time: short enough to stay in the
// cache, long enough that each reader runs a loop over tags rather than a call per tag.
#pragma once

#include "cad/dxf/TagFile.h"

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <utility>

namespace veltarn::dxf {

class TagWindow {
public:
    using Reader = std::function<void(std::span<const ScannedTag>)>;
    explicit TagWindow(Reader reader) : reader_(std::move(reader)) {}

    void push(const ScannedTag& tag) {
        tags_[filled_++] = tag;
        if (filled_ == tags_.size()) flush();
    }
    // Hands on the tags pushed since the last flush; the reader of the file flushes once more after the scan.
    void flush() {
        if (filled_ == 0) return;
        reader_(std::span<const ScannedTag>(tags_.data(), filled_));
        filled_ = 0;
    }

private:
    Reader reader_;
    std::array<ScannedTag, 2048> tags_;
    std::size_t filled_ = 0;
};

}  // namespace veltarn::dxf
