#include "cad/audit/Recover.h"

#include "base/RegularFile.h"
#include "cad/dxf/GroupCode.h"
#include "cad/dxf/NumberText.h"
#include "cad/dxf/TagFile.h"
#include "cad/dxf/TagScanners.h"

#include <cmath>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace veltarn::audit {
namespace {

// One tag of the damaged file, or the place where reading it went wrong.
struct Piece {
    enum class Kind { Tag, BadCode, Cut } kind = Kind::Tag;
    int code = 0;
    std::string_view value;          // raw, as the file holds it
    std::size_t start = 0, end = 0;  // the bytes of the tag, line ends included
    std::size_t at = 0;              // line of the group code (ASCII), byte offset (binary)
    std::string problem;             // BadCode and Cut: what was found
    std::size_t resumeAt = 0;        // BadCode: the line reading went on at (0: nowhere, the file ended)
};

// What the repair needs to know of the file's form; the pieces go to it one by one as they are
// read, so that no list of every tag is kept (a tag list of a large drawing is near its size again).
using PieceSink = std::function<void(const Piece&)>;
struct Scan {
    std::string prefix;  // the byte-order mark or the binary sentinel
    bool binary = false;
    bool oneByteCodes = false;
};

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view trim(std::string_view text) { return dxf::trimSpaces(text); }

std::optional<int> groupCodeOf(std::string_view line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
        line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
        line.remove_prefix(1);
    bool negative = !line.empty() && line.front() == '-';
    if (negative) line.remove_prefix(1);
    if (line.empty() || line.size() > 5) return std::nullopt;
    int value = 0;
    for (char c : line) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    if (value > (negative ? 32768 : 32767)) return std::nullopt;
    return negative ? -value : value;
}

bool onlySpace(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

// An object type as a `0` tag names it: capitals, digits and underscores.
bool looksLikeType(std::string_view text) {
    text = trim(text);
    if (text.empty()) return false;
    for (char c : text)
        if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_')) return false;
    return true;
}

// Lines of an ASCII file, read as pairs; a line that is no group code is skipped up to the next
// `0` line followed by an object type, where the pairs are in step again.
void scanAscii(const std::string& bytes, const PieceSink& each) {
    std::size_t pos = bytes.compare(0, 3, kByteOrderMark) == 0 ? kByteOrderMark.size() : 0;
    std::size_t line = 1;
    auto lineAt = [&](std::size_t from) {
        std::size_t end = bytes.find('\n', from);
        return std::pair{std::string_view(bytes).substr(from, (end == std::string::npos ? bytes.size() : end) - from),
                         end};
    };
    while (pos < bytes.size()) {
        auto [codeLine, codeEnd] = lineAt(pos);
        std::optional<int> code = groupCodeOf(codeLine);
        if (!code) {
            if (onlySpace(std::string_view(bytes).substr(pos))) break;  // blank lines at the end
            Piece bad;
            bad.kind = Piece::Kind::BadCode;
            bad.at = line;
            bad.problem = "expected a group code, found " + dxf::quoteForMessage(codeLine);
            // Resynchronise: a `0` line followed by a type, after the bad line.
            std::size_t scanPos = codeEnd == std::string::npos ? bytes.size() : codeEnd + 1, scanLine = line + 1;
            bool found = false;
            while (scanPos < bytes.size()) {
                auto [text, end] = lineAt(scanPos);
                if (end == std::string::npos) break;
                if (groupCodeOf(text) == 0 && looksLikeType(lineAt(end + 1).first)) {
                    found = true;
                    break;
                }
                scanPos = end + 1;
                ++scanLine;
            }
            bad.resumeAt = found ? scanLine : 0;
            each(std::move(bad));
            if (!found) break;
            pos = scanPos;
            line = scanLine;
            continue;
        }
        if (codeEnd == std::string::npos) {
            each(Piece{Piece::Kind::Cut, *code, std::string_view{}, pos, bytes.size(), line,
                       "group code " + std::to_string(*code) + " without its value", 0});
            break;
        }
        auto [value, valueEnd] = lineAt(codeEnd + 1);
        if (!value.empty() && value.back() == '\r') value.remove_suffix(1);
        if (valueEnd == std::string::npos && codeEnd + 1 >= bytes.size()) {
            each(Piece{Piece::Kind::Cut, *code, std::string_view{}, pos, bytes.size(), line,
                       "group code " + std::to_string(*code) + " without its value", 0});
            break;
        }
        Piece tag{Piece::Kind::Tag,
                  *code,
                  value,
                  pos,
                  valueEnd == std::string::npos ? bytes.size() : valueEnd + 1,
                  line,
                  {},
                  0};
        if (valueEnd == std::string::npos) {
            // The last line has no line end: a whole word when it ends the file properly, else cut.
            std::string_view word = trim(value);
            if (*code != dxf::code::kStructure || (word != "EOF" && word != "ENDSEC")) {
                tag.kind = Piece::Kind::Cut;
                tag.problem =
                    "group code " + std::to_string(*code) + " with a value cut short, " + dxf::quoteForMessage(value);
                each(std::move(tag));
                break;
            }
        }
        each(tag);
        if (*code == dxf::code::kStructure && trim(value) == "EOF") break;
        pos = tag.end;
        line += 2;
    }
}

// A binary file: the strict scanner hands over every whole tag before the fault, which is where
// the file was cut (a binary file has no lines to get back in step at).
class BinaryCollector final : public dxf::TagSink {
public:
    BinaryCollector(Scan& scan, const std::string& bytes, const PieceSink& each)
        : scan_(scan), bytes_(bytes), each_(each) {}
    void take(const dxf::TagFile& file, std::span<const dxf::ScannedTag> tags) override {
        scan_.oneByteCodes = file.oneByteGroupCodes();
        for (const dxf::ScannedTag& tag : tags) {
            // Views into our own copy of the bytes: the scanner's file does not outlive the scan.
            Piece piece{Piece::Kind::Tag,
                        tag.code,
                        std::string_view(bytes_).substr(tag.value, tag.length),
                        tag.start,
                        tag.end,
                        tag.start,
                        {},
                        0};
            if (first_) piece.start = dxf::kBinarySentinel.size();  // the sentinel is the prefix
            first_ = false;
            lastWasEof_ = piece.code == dxf::code::kStructure && trim(piece.value) == "EOF";
            each_(piece);
        }
        lastEnd_ = tags.empty() ? lastEnd_ : tags.back().end;
    }
    std::size_t lastEnd_ = dxf::kBinarySentinel.size();
    bool lastWasEof_ = false;

private:
    Scan& scan_;
    const std::string& bytes_;
    const PieceSink& each_;
    bool first_ = true;
};

void scanBinary(const std::string& bytes, const std::string& name, Scan& scan, const PieceSink& each) {
    BinaryCollector collector(scan, bytes, each);
    auto file = dxf::TagFile::parse(bytes, name, collector);
    bool endsWithEof = collector.lastWasEof_;
    if (!file && !endsWithEof && collector.lastEnd_ < bytes.size()) {
        // The scanner's own words for the cut, without the file name it starts with.
        std::string message = file.message();
        if (message.starts_with(name + ":@")) {
            std::size_t colon = message.find(": ", name.size() + 2);
            if (colon != std::string::npos) message = message.substr(colon + 2);
        }
        each(Piece{Piece::Kind::Cut, 0, std::string_view{}, collector.lastEnd_, bytes.size(), collector.lastEnd_,
                   message, 0});
    }
}

bool isNumberText(int code, std::string_view value) {
    dxf::ValueKind kind = dxf::valueKindOf(code);
    if (!dxf::isNumericKind(kind)) return true;
    value = trim(value);
    if (kind == dxf::ValueKind::Real) {
        auto number = dxf::parseReal(value);
        return number && std::isfinite(*number);
    }
    return dxf::parseInteger(value).has_value();
}

// Types whose tag opens or closes a part of the file: dropping one drops the structure around it,
// so a fault inside one costs only the bad tag.
bool isMarker(std::string_view type) {
    return type == "SECTION" || type == "ENDSEC" || type == "TABLE" || type == "ENDTAB" || type == "BLOCK" ||
           type == "ENDBLK" || type == "EOF";
}

class Repairer {
public:
    Repairer(const std::string& bytes, const std::string& name, const Scan& scan)
        : bytes_(bytes), name_(name), scan_(scan) {
        out_ = scan_.prefix;
    }

    void take(const Piece& piece) {
        if (eof_) return;
        switch (piece.kind) {
            case Piece::Kind::Tag:
                tag(piece);
                break;
            case Piece::Kind::BadCode:
                badCode(piece);
                break;
            case Piece::Kind::Cut:
                cut(piece);
                lastWasCut_ = true;
                break;
        }
    }

    RepairedText finish() {
        if (!eof_) {
            flushStray();
            if (state_ == State::Name) dropSectionStart("the file ends");
            if (state_ == State::Inside) {
                if (inObject_ && objectFault_.empty() && !lastWasCut_)
                    dropUnfinished(name_ + ":" + endWhere() + ": the file ends inside " + objectName() +
                                   ", which may be incomplete");
                endObject();
                if (sequenceOpen_) closeSequence(name_ + ":" + endWhere());
                closeSection(name_ + ":" + endWhere() + ": the file ends inside section " + sectionName_ +
                             " (opened at " + whereText(sectionAt_) + "); closed");
            }
            add("missing-eof", name_ + ":" + endWhere() + ": the file ends without 0 EOF; added");
            synth(dxf::code::kStructure, "EOF");
        }
        return RepairedText{std::move(out_), std::move(findings_), std::move(dropped_)};
    }

    std::size_t kept() const { return kept_; }

private:
    enum class State { Outside, Name, Inside };

    std::string whereText(std::size_t at) const {
        return scan_.binary ? "@" + std::to_string(at) : "line " + std::to_string(at);
    }
    std::string where(std::size_t at) const {
        return name_ + ":" + (scan_.binary ? "@" + std::to_string(at) : std::to_string(at));
    }
    std::string endWhere() const {
        if (scan_.binary) return "@" + std::to_string(bytes_.size());
        std::size_t lines = 1;
        for (char c : bytes_)
            lines += c == '\n';
        return std::to_string(lines);
    }

    void add(std::string code, std::string message) {
        findings_.push_back(Finding{std::move(code), std::move(message), db::kNoHandle, true});
    }

    void emit(const Piece& piece) {
        out_.append(bytes_, piece.start, piece.end - piece.start);
        if (!scan_.binary && (out_.empty() || out_.back() != '\n')) out_ += lineEnd();
        ++kept_;
    }
    std::string lineEnd() const { return bytes_.find("\r\n") != std::string::npos ? "\r\n" : "\n"; }
    // A tag written anew, in the file's own form.
    void synth(int code, std::string_view text) {
        if (scan_.binary) {
            if (scan_.oneByteCodes) {
                out_ += static_cast<char>(code);
            } else {
                out_ += static_cast<char>(code & 0xFF);
                out_ += static_cast<char>((code >> 8) & 0xFF);
            }
            out_.append(text);
            out_ += '\0';
        } else {
            std::string number = std::to_string(code);
            out_ += std::string(number.size() < 3 ? 3 - number.size() : 0, ' ') + number + lineEnd();
            out_.append(text);
            out_ += lineEnd();
        }
    }

    // --- objects: the tags from one `0` (a header variable: one `9`) to the next ---------------
    void startObject(const Piece& piece) {
        endObject();
        previousType_ = inObjectKept_ ? objectType_ : "";
        previousAt_ = objectAt_;
        inObjectKept_ = true;
        objectStart_ = out_.size();
        objectAt_ = piece.at;
        objectType_ = std::string(trim(piece.value));
        objectIsVariable_ = piece.code == dxf::code::kVariableName;
        inObject_ = true;
        objectFault_.clear();
        objectHandle_.clear();
    }
    std::string objectName() const { return objectIsVariable_ ? "header variable " + objectType_ : objectType_; }
    void endObject() {
        if (inObject_ && !objectFault_.empty()) {
            out_.resize(objectStart_);
            if (auto handle = db::parseHandle(objectHandle_); handle && *handle != db::kNoHandle)
                dropped_.push_back(*handle);
            add(objectFaultCode_, objectFault_ + "; " + objectName() + " at " + whereText(objectAt_) + " dropped");
            if (objectType_ == "POLYLINE" && sequenceOpen_ && sequenceAt_ == objectAt_)
                sequenceOpen_ = false;                                                    // its head went
            if (objectType_ == "SEQEND" && !sequenceType_.empty()) sequenceOpen_ = true;  // its end went: written anew
            inObjectKept_ = false;
        }
        inObject_ = false;
        objectFault_.clear();
    }
    bool objectDroppable() const { return inObject_ && !isMarker(objectType_); }

    void tag(const Piece& piece) {
        switch (state_) {
            case State::Outside:
                outside(piece);
                return;
            case State::Name:
                if (piece.code != dxf::code::kName) {
                    dropSectionStart("found " + std::to_string(piece.code) + " " +
                                     dxf::quoteForMessage(trim(piece.value)));
                    outside(piece);
                    return;
                }
                sectionName_ = dxf::quoteForMessage(trim(piece.value));
                header_ = trim(piece.value) == "HEADER";
                tables_ = trim(piece.value) == "TABLES";
                blocks_ = trim(piece.value) == "BLOCKS";
                emit(piece);
                state_ = State::Inside;
                return;
            case State::Inside:
                inside(piece);
                return;
        }
    }

    void outside(const Piece& piece) {
        if (piece.code == dxf::code::kStructure && trim(piece.value) == "SECTION") {
            flushStray();
            sectionStart_ = out_.size();
            sectionAt_ = piece.at;
            emit(piece);
            state_ = State::Name;
        } else if (piece.code == dxf::code::kStructure && trim(piece.value) == "EOF") {
            flushStray();
            emit(piece);
            eof_ = true;
        } else if (piece.code == dxf::code::kComment) {
            emit(piece);
        } else {
            if (strayCount_++ == 0) strayAt_ = piece.at;
        }
    }
    void flushStray() {
        if (strayCount_ == 0) return;
        add("stray-tags", where(strayAt_) + ": " + std::to_string(strayCount_) + (strayCount_ == 1 ? " tag" : " tags") +
                              " outside any section; dropped");
        strayCount_ = 0;
    }
    void dropSectionStart(const std::string& found) {
        out_.resize(sectionStart_);
        add("section-without-name", where(sectionAt_) + ": 0 SECTION without its name (" + found + "); dropped");
        state_ = State::Outside;
    }

    void closeSection(std::string message) {
        if (inBlock_) {
            add("block-not-closed", where(blockAt_) + ": block is not closed by 0 ENDBLK; closed");
            closeBlock();
        }
        if (inTable_) {
            add("table-not-closed", where(tableAt_) + ": table is not closed by 0 ENDTAB; closed");
            synth(dxf::code::kStructure, "ENDTAB");
            inTable_ = false;
        }
        if (!message.empty()) {
            add("section-not-closed", std::move(message));
            synth(dxf::code::kStructure, "ENDSEC");
        }
        state_ = State::Outside;
        header_ = tables_ = blocks_ = false;
    }
    // A polyline's vertices or an insert's attributes the file ends in, or that another object
    // follows, get their SEQEND: readers take every entity up to one as part of the sequence.
    void closeSequence(const std::string& at) {
        add("sequence-not-closed",
            at + ": the " + sequenceType_ + " at " + whereText(sequenceAt_) + " has no SEQEND; added");
        synth(dxf::code::kStructure, "SEQEND");
        if (version_ != "AC1009") synth(dxf::code::kSubclass, "AcDbEntity");
        synth(8, "0");
        sequenceOpen_ = false;
    }
    void closeBlock() {
        synth(dxf::code::kStructure, "ENDBLK");
        if (version_ != "AC1009") synth(dxf::code::kSubclass, "AcDbEntity");
        synth(8, "0");
        if (version_ != "AC1009") synth(dxf::code::kSubclass, "AcDbBlockEnd");
        inBlock_ = false;
    }

    void inside(const Piece& piece) {
        const std::string_view word = trim(piece.value);
        if (piece.code == dxf::code::kStructure && sequenceOpen_ && word != "VERTEX" && word != "ATTRIB" &&
            word != "SEQEND") {
            endObject();
            closeSequence(where(piece.at));
        }
        if (piece.code == dxf::code::kStructure) {
            if (word == "ENDSEC") {
                endObject();
                closeSection("");
                emit(piece);
                return;
            }
            if (word == "SECTION" || word == "EOF") {
                endObject();
                closeSection(where(piece.at) + ": section " + sectionName_ + " (opened at " + whereText(sectionAt_) +
                             ") is not closed before 0 " + std::string(word) + "; closed");
                outside(piece);
                return;
            }
            startObject(piece);
            // Vertices and attributes follow their polyline or insert up to a SEQEND.
            if (word == "POLYLINE") {
                sequenceOpen_ = true;
                sequenceAt_ = piece.at;
                sequenceType_ = "POLYLINE";
            } else if (word == "ATTRIB" && !sequenceOpen_ && previousType_ == "INSERT") {
                sequenceOpen_ = true;
                sequenceAt_ = previousAt_;
                sequenceType_ = "INSERT";
            } else if (word == "SEQEND") {
                sequenceOpen_ = false;
            }
            if (tables_ && word == "TABLE") {
                if (inTable_) {
                    add("table-not-closed", where(tableAt_) + ": table is not closed by 0 ENDTAB; closed");
                    out_.resize(objectStart_);
                    synth(dxf::code::kStructure, "ENDTAB");
                    objectStart_ = out_.size();
                }
                inTable_ = true;
                tableAt_ = piece.at;
            } else if (tables_ && word == "ENDTAB") {
                inTable_ = false;
            } else if (blocks_ && word == "BLOCK") {
                if (inBlock_) {
                    add("block-not-closed", where(blockAt_) + ": block is not closed by 0 ENDBLK; closed");
                    out_.resize(objectStart_);
                    closeBlock();
                    objectStart_ = out_.size();
                }
                inBlock_ = true;
                blockAt_ = piece.at;
            } else if (blocks_ && word == "ENDBLK") {
                inBlock_ = false;
            }
            emit(piece);
            return;
        }
        if (header_ && piece.code == dxf::code::kVariableName) {
            startObject(piece);
            readingVersion_ = word == "$ACADVER";
            emit(piece);
            return;
        }
        if (inObject_ && objectHandle_.empty() &&
            (piece.code == dxf::code::kHandle || piece.code == dxf::code::kDimStyleHandle))
            objectHandle_ = std::string(word);
        if (readingVersion_ && piece.code == 1) version_ = std::string(word);
        readingVersion_ = false;
        if (!scan_.binary && !isNumberText(piece.code, piece.value)) {
            std::string problem = where(piece.at) + ": group code " + std::to_string(piece.code) + " holds " +
                                  dxf::quoteForMessage(trim(piece.value)) + ", not a number";
            if (objectDroppable() || (inObject_ && objectIsVariable_)) {
                if (objectFault_.empty()) {
                    objectFault_ = problem;
                    objectFaultCode_ = "bad-number";
                }
            } else {
                add("bad-number", problem + "; the tag dropped");
                return;
            }
        }
        emit(piece);
    }

    void badCode(const Piece& piece) {
        std::string message = where(piece.at) + ": " + piece.problem;
        std::string resumed =
            piece.resumeAt ? ", reading resumed at " + whereText(piece.resumeAt) : ", nothing after it could be read";
        if (state_ == State::Inside && (objectDroppable() || (inObject_ && objectIsVariable_))) {
            if (objectFault_.empty()) {
                objectFault_ = message + resumed;
                objectFaultCode_ = "bad-group-code";
            }
            endObject();
            return;
        }
        add("bad-group-code", message + "; the lines up to it skipped" + resumed);
    }

    void cut(const Piece& piece) {
        std::string message = where(piece.at) + ": the file ends inside a tag (" + piece.problem + ")";
        if (state_ != State::Inside || !dropUnfinished(message)) add("truncated", message + "; the tag dropped");
    }

    // The object the file ends in may lack tags its readers require (a 20 after its 10): it is
    // dropped. A block or table header goes with its block or table, a cut ENDBLK is written anew.
    bool dropUnfinished(const std::string& message) {
        if (!inObject_) return false;
        if (objectDroppable() || objectIsVariable_) {
            objectFault_ = message;
            objectFaultCode_ = "truncated";
            endObject();
            return true;
        }
        if (objectType_ != "BLOCK" && objectType_ != "ENDBLK" && objectType_ != "TABLE") return false;
        out_.resize(objectStart_);
        add("truncated", message + "; " + objectType_ + " at " + whereText(objectAt_) + " dropped");
        if (objectType_ == "BLOCK") inBlock_ = false;
        if (objectType_ == "ENDBLK") inBlock_ = true;
        if (objectType_ == "TABLE") inTable_ = false;
        inObject_ = false;
        return true;
    }

    const std::string& bytes_;
    const std::string& name_;
    const Scan& scan_;
    std::string out_;
    std::vector<Finding> findings_;
    std::size_t kept_ = 0;
    bool eof_ = false;

    State state_ = State::Outside;
    std::string sectionName_;
    std::size_t sectionStart_ = 0, sectionAt_ = 0;
    bool header_ = false, tables_ = false, blocks_ = false;
    bool inTable_ = false, inBlock_ = false;
    std::size_t tableAt_ = 0, blockAt_ = 0;
    std::size_t strayCount_ = 0, strayAt_ = 0;
    std::string version_ = "AC1009";
    bool readingVersion_ = false;

    bool inObject_ = false, objectIsVariable_ = false;
    std::size_t objectStart_ = 0, objectAt_ = 0;
    std::string objectType_, objectFault_, objectFaultCode_, objectHandle_;
    std::vector<db::Handle> dropped_;
    bool lastWasCut_ = false;
    bool inObjectKept_ = false, sequenceOpen_ = false;
    std::string previousType_, sequenceType_;
    std::size_t previousAt_ = 0, sequenceAt_ = 0;
};

// Objects a dropped object owned (its extension dictionary, the xrecords in that) would be left
// without an owner: they go with it, as their owner's data.
void eraseOrphans(db::Database& drawing, std::vector<db::Handle> dropped, std::vector<Finding>& findings) {
    std::set<db::Handle> gone(dropped.begin(), dropped.end());
    for (bool erased = true; erased && !gone.empty();) {
        erased = false;
        for (db::Handle handle : drawing.liveHandles()) {
            const db::Handle owner = drawing.ownerOf(handle);
            if (owner == db::kNoHandle || !gone.contains(owner) || gone.contains(handle)) continue;
            if (drawing.erase(handle) != db::OpenStatus::Ok) continue;
            gone.insert(handle);
            erased = true;
            findings.push_back(Finding{"owner-dropped",
                                       "object " + db::formatHandle(handle) + " belonged to " +
                                           db::formatHandle(owner) + ", which was dropped; erased",
                                       handle, true});
        }
    }
}

}  // namespace

Result<RepairedText> repairTagStream(std::string bytes, const std::string& name) {
    if (bytes.empty()) return makeError(name + ": the file is empty, nothing to recover");
    const bool binary = bytes.compare(0, dxf::kBinarySentinel.size(), dxf::kBinarySentinel) == 0;
    Scan scan;
    scan.binary = binary;
    scan.prefix = binary                              ? std::string(dxf::kBinarySentinel)
                  : bytes.starts_with(kByteOrderMark) ? std::string(kByteOrderMark)
                                                      : "";
    Repairer repairer(bytes, name, scan);
    const PieceSink each = [&repairer](const Piece& piece) { repairer.take(piece); };
    if (binary)
        scanBinary(bytes, name, scan, each);
    else
        scanAscii(bytes, each);
    RepairedText repaired = repairer.finish();
    if (repairer.kept() == 0) return makeError(name + ": no DXF tags could be read, nothing to recover");
    return repaired;
}

Result<Recovery> recoverBytes(std::string bytes, const std::string& name) {
    auto repaired = repairTagStream(std::move(bytes), name);
    if (!repaired) return repaired.error();
    auto drawing = db::Database::parse(std::move(repaired.value().bytes), name);
    if (!drawing) return makeError(name + ": the drawing could not be recovered: " + drawing.message());
    Recovery recovery{std::move(drawing).value(), std::move(repaired.value().skipped), {}};
    eraseOrphans(recovery.drawing, std::move(repaired.value().dropped), recovery.skipped);
    recovery.audit = auditAndFix(recovery.drawing);
    return recovery;
}

Result<Recovery> recoverDrawing(const std::filesystem::path& path) {
    FileBytes file = readRegularFile(path.string(), kMaxDrawingBytes);
    if (!file.ok()) return makeError(std::move(file.error));
    return recoverBytes(std::move(file.bytes), path.string());
}

}  // namespace veltarn::audit
