// The section structure of a DXF file, checked tag by tag while it is scanned. Internal to the
// tag layer.
#pragma once

#include "cad/dxf/TagFile.h"

#include <span>
#include <string>

namespace veltarn::dxf {

// Outside sections only comments may stand, and after the first section stray tags, which some
// writers leave (dxflib ends the header early, then writes more variables and a second ENDSEC).
// A section is "0 SECTION", its name (group code 2), its tags and "0 ENDSEC". "0 EOF" ends the
// checks. Only the first fault counts, as a message naming where it is.
class SectionChecker {
public:
    explicit SectionChecker(const TagFile& file) : file_(file) {}

    void take(std::span<const ScannedTag> tags);
    // After the last tag: the first fault, which may be a section the file left open.
    Result<void> finish() const;

private:
    enum class State { Outside, Name, Inside, Done };

    bool is(const ScannedTag& tag, int code, std::string_view word) const;
    std::string where(const ScannedTag& tag, std::size_t index) const;
    // Line of an ASCII tag's group code: every tag before it took two lines.
    static std::size_t lineOf(std::size_t index) { return 2 * index + 1; }
    std::string describe(const ScannedTag& tag) const;
    std::string unclosed() const;  // the start of the message for a section without ENDSEC
    void fail(std::string message);

    const TagFile& file_;
    State state_ = State::Outside;
    bool afterSection_ = false;
    std::size_t index_ = 0;  // of the next tag
    ScannedTag section_{};   // the "0 SECTION" of the open section
    std::size_t sectionIndex_ = 0;
    std::string sectionName_;  // quoted
    std::string error_;
};

}  // namespace veltarn::dxf
