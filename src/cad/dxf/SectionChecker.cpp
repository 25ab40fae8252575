#include "cad/dxf/SectionChecker.h"

#include "cad/dxf/NumberText.h"
#include "cad/dxf/TagScanners.h"

namespace veltarn::dxf {

bool SectionChecker::is(const ScannedTag& tag, int code, std::string_view word) const {
    return tag.code == code && trimSpaces(file_.bytes().substr(tag.value, tag.length)) == word;
}

std::string SectionChecker::where(const ScannedTag& tag, std::size_t index) const {
    if (file_.form() == FileForm::Binary) return file_.name() + ":@" + std::to_string(tag.start);
    return file_.name() + ":" + std::to_string(lineOf(index));
}

std::string SectionChecker::describe(const ScannedTag& tag) const {
    // Quoted as UTF-8 whatever the header's code page: a message reads the same in every file.
    return std::to_string(tag.code) + " " +
           quoteForMessage(valueText(file_.form(), TextCodec(), tag.code, file_.bytes().substr(tag.value, tag.length)));
}

std::string SectionChecker::unclosed() const {
    return "expected 0 ENDSEC closing section " + sectionName_ + " (opened at " +
           (file_.form() == FileForm::Binary ? "@" + std::to_string(section_.start) : "line " + std::to_string(lineOf(sectionIndex_))) +
           "), found ";
}

void SectionChecker::fail(std::string message) {
    error_ = std::move(message);
    state_ = State::Done;
}

void SectionChecker::take(std::span<const ScannedTag> tags) {
    for (std::size_t i = 0; i < tags.size(); ++i) {
        const ScannedTag& tag = tags[i];
        const std::size_t index = index_ + i;
        switch (state_) {
            case State::Done: return;
            case State::Outside: {
                if (is(tag, code::kStructure, "EOF")) {
                    state_ = State::Done;
                    return;
                }
                bool stray = afterSection_ && (tag.code != code::kStructure || is(tag, code::kStructure, "ENDSEC"));
                if (tag.code == code::kComment || stray) break;
                if (!is(tag, code::kStructure, "SECTION"))
                    return fail(where(tag, index) + ": expected 0 SECTION or 0 EOF, found " + describe(tag));
                section_ = tag;
                sectionIndex_ = index;
                state_ = State::Name;
                break;
            }
            case State::Name:
                if (tag.code != code::kName)
                    return fail(where(tag, index) + ": expected the section name (group code 2) after 0 SECTION, found " + describe(tag));
                sectionName_ = quoteForMessage(valueText(file_.form(), TextCodec(), tag.code, file_.bytes().substr(tag.value, tag.length)));
                state_ = State::Inside;
                break;
            case State::Inside: {
                if (tag.code != code::kStructure) break;
                std::string_view type = trimSpaces(file_.bytes().substr(tag.value, tag.length));
                if (type == "ENDSEC") {
                    state_ = State::Outside;
                    afterSection_ = true;
                } else if (type == "SECTION" || type == "EOF") {
                    return fail(where(tag, index) + ": " + unclosed() + describe(tag));
                }
                break;
            }
        }
    }
    index_ += tags.size();
}

Result<void> SectionChecker::finish() const {
    if (!error_.empty()) return makeError(error_);
    if (state_ == State::Name)
        return makeError(file_.whereEnd() + ": expected the section name (group code 2) after 0 SECTION, found the end of the file");
    if (state_ == State::Inside) return makeError(file_.whereEnd() + ": " + unclosed() + "the end of the file");
    return {};
}

}  // namespace veltarn::dxf
