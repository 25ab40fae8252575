#include "cad/db/kinds/Multileader.h"
#include "cad/db/kinds/Kinds.h"

#include "cad/db/EntityFactory.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"
#include "cad/dxf/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace veltarn::db {
namespace {

constexpr std::size_t npos = TagList::npos;
constexpr std::string_view kMarker = "AcDbMLeader";

// Group brackets. 304 is also the text contents at context level: a line opens only inside a leader.
constexpr int kContextOpen = 300, kContextClose = 301, kLeaderOpen = 302, kLeaderClose = 303, kLineOpen = 304,
              kLineClose = 305;
constexpr std::string_view kContextText = "CONTEXT_DATA{", kLeaderText = "LEADER{", kLineText = "LEADER_LINE{";
// The context's own values.
constexpr int kScale = 40, kBasePoint = 10, kTextHeight = 41, kArrowSize = 140, kLandingGap = 145;
constexpr int kHasText = 290, kHasBlock = 296, kPlaneOrigin = 110, kPlaneReversed = 297, kContextTopAttachment = 272;
// MTEXT content.
constexpr int kText = 304, kTextLocation = 12, kTextDirection = 13, kTextRotation = 42, kTextAttachment = 171;
// Block content.
constexpr int kBlock = 341, kBlockPosition = 15, kBlockScale = 16, kBlockRotation = 46;
// Leaders and lines.
constexpr int kConnection = 10, kDoglegDirection = 11, kLeaderIndex = 90, kDoglegLength = 40,
              kAttachmentDirection = 271;
constexpr int kLeaderBreakStart = 12, kLeaderBreakEnd = 13;
constexpr int kVertex = 10, kLineBreakIndex = 90, kLineBreakStart = 11, kLineBreakEnd = 12, kLineIndex = 91;
// The entity's own settings after the context.
constexpr int kContentType = 172, kEntityScale = 45, kEntityArrowSize = 42, kEntityBlock = 344, kEntityBlockColor = 93;
constexpr int kEntityBlockScale = 10, kEntityBlockRotation = 43, kEntityTextStyle = 343;
constexpr std::string_view kByBlockColor = "-1056964608";  // raw colour value of ByBlock
constexpr std::string_view kWindowColor = "-939524096";    // raw colour value of the window background

// Where the groups of one multileader's tags are. Spans run from the opening tag to past the closing one.
struct Span {
    std::size_t begin = 0, end = 0;
};
struct LeaderSpan : Span {
    std::vector<Span> lines;
};
struct Layout {
    std::size_t context = 0, close = 0;                         // the 300 and 301 tags
    std::size_t hasText = npos, hasBlock = npos, plane = npos;  // 290, 296, 110 at context level
    std::size_t leadersAt = 0, leadersEnd = 0;                  // where the leaders are, or would go
    std::vector<LeaderSpan> leaders;
    std::size_t ownEnd = 0;  // the end of the subclass before any xdata
    bool r2010 = false;      // the context carries 272/273: leaders carry 271
};

std::string label(const TagList& tags) {
    std::string handle(dxf::trimSpaces(tags.text(gc::kHandle).value_or("")));
    return "multileader" + (handle.empty() ? std::string() : " " + handle);
}

dxf::Error fault(const TagList& tags, const std::string& what) { return dxf::makeError(label(tags) + ": " + what); }

std::string_view valueAt(const TagList& tags, std::size_t i) { return dxf::trimSpaces(tags[i].value); }

Result<Layout> locate(const TagList& tags) {
    std::string_view type = tags.type();
    if (type != "MULTILEADER" && type != "MLEADER") return dxf::makeError("not a multileader: " + std::string(type));
    auto [from, to] = tags.subclass(kMarker);
    if (from == npos) return fault(tags, "no AcDbMLeader subclass");
    for (std::size_t i = from; i < to; ++i)
        if (tags[i].code >= gc::kXdataFirst) to = i;  // xdata is no part of the geometry
    Layout at;
    at.ownEnd = to;
    at.context = tags.find(kContextOpen, from, to);
    if (at.context == npos) return fault(tags, "no CONTEXT_DATA group");
    if (valueAt(tags, at.context) != kContextText) return fault(tags, "300 tag is not CONTEXT_DATA{");

    LeaderSpan* leader = nullptr;
    Span* line = nullptr;
    at.close = npos;
    for (std::size_t i = at.context + 1; i < to && at.close == npos; ++i) {
        int code = tags[i].code;
        bool bracket = code >= kContextOpen && code <= kLineClose;
        if (line) {
            if (code == kLineClose) {
                line->end = i + 1;
                line = nullptr;
            } else if (bracket) {
                return fault(tags, "leader line open at tag " + std::to_string(code));
            }
        } else if (leader) {
            if (code == kLeaderClose) {
                leader->end = i + 1;
                leader = nullptr;
            } else if (code == kLineOpen && valueAt(tags, i) == kLineText) {
                leader->lines.push_back({i, 0});
                line = &leader->lines.back();
            } else if (bracket) {
                return fault(tags, "leader open at tag " + std::to_string(code));
            }
        } else if (code == kContextClose) {
            at.close = i;
        } else if (code == kLeaderOpen && valueAt(tags, i) == kLeaderText) {
            at.leaders.push_back({});
            at.leaders.back().begin = i;
            leader = &at.leaders.back();
        } else if (code == kLeaderOpen || code == kLeaderClose || code == kLineClose || code == kContextOpen) {
            return fault(tags, "unexpected tag " + std::to_string(code) + " in the context");
        } else if (at.leaders.empty()) {
            if (code == kHasText && at.hasText == npos) at.hasText = i;
            if (code == kHasBlock && at.hasBlock == npos) at.hasBlock = i;
            if (code == kPlaneOrigin && at.plane == npos) at.plane = i;
        }
    }
    if (line) return fault(tags, "leader line not closed");
    if (leader) return fault(tags, "leader not closed");
    if (at.close == npos) return fault(tags, "context not closed");

    // The content flags and the plane come in this order, before the leaders.
    std::size_t last = at.context;
    for (std::size_t cut : {at.hasText, at.hasBlock, at.plane}) {
        if (cut == npos) continue;
        if (cut < last) return fault(tags, "context values out of order");
        last = cut;
    }
    std::size_t after = last + 1;
    at.r2010 = tags.find(kContextTopAttachment, after, at.close) != npos;
    if (!at.leaders.empty()) {
        at.leadersAt = at.leaders.front().begin;
        at.leadersEnd = at.leaders.back().end;
    } else {
        std::size_t reversed = tags.find(kPlaneReversed, after, at.close);
        std::size_t top = tags.find(kContextTopAttachment, after, at.close);
        at.leadersAt = reversed != npos ? reversed + 1 : top != npos ? top : at.close;
        at.leadersEnd = at.leadersAt;
    }
    return at;
}

// The next cut of the context after `start`: the end of the piece that starts there.
std::size_t pieceEnd(const Layout& at, std::size_t start) {
    std::size_t end = at.leadersAt;
    for (std::size_t cut : {at.hasText, at.hasBlock, at.plane})
        if (cut != npos && cut > start) end = std::min(end, cut);
    return end;
}

// Reads values and remembers the first one that does not parse.
class Reader {
public:
    explicit Reader(const TagList& tags) : tags_(tags) {}

    double real(int code, std::size_t from, std::size_t to, double fallback) {
        std::size_t i = tags_.find(code, from, to);
        return i == npos ? fallback : realAt(i);
    }
    int integer(int code, std::size_t from, std::size_t to, int fallback) {
        std::size_t i = tags_.find(code, from, to);
        if (i == npos) return fallback;
        auto v = dxf::parseInteger(tags_[i].value);
        if (!v || *v < INT32_MIN || *v > INT32_MAX) fail(i);
        return v ? static_cast<int>(*v) : fallback;
    }
    Point3 point(int code, std::size_t from, std::size_t to, const Point3& fallback) {
        std::size_t i = tags_.find(code, from, to);
        return i == npos ? fallback : pointAt(i);
    }
    // X at `i`; Y and Z from the tags 10 and 20 codes above when they follow.
    Point3 pointAt(std::size_t i) {
        Point3 p{realAt(i), 0, 0};
        int code = tags_[i].code;
        if (i + 1 < tags_.size() && tags_[i + 1].code == code + 10) {
            p.y = realAt(i + 1);
            if (i + 2 < tags_.size() && tags_[i + 2].code == code + 20) p.z = realAt(i + 2);
        }
        return p;
    }
    double realAt(std::size_t i) {
        auto v = dxf::parseReal(tags_[i].value);
        if (!v) fail(i);
        return v.value_or(0);
    }
    void fail(std::size_t i) {
        if (bad_.empty())
            bad_ = "tag " + std::to_string(tags_[i].code) + " holds \"" + tags_[i].value + "\", not a number";
    }
    Handle handle(int code, std::size_t from, std::size_t to) {
        std::size_t i = tags_.find(code, from, to);
        if (i == npos) return kNoHandle;
        auto h = parseHandle(tags_[i].value);
        if (!h && bad_.empty())
            bad_ = "tag " + std::to_string(code) + " holds \"" + tags_[i].value + "\", not a handle";
        return h.value_or(kNoHandle);
    }
    const std::string& bad() const { return bad_; }

private:
    const TagList& tags_;
    std::string bad_;
};

// The own values of a leader lie before its first line.
std::size_t leaderHeadEnd(const LeaderSpan& span) {
    return span.lines.empty() ? span.end - 1 : span.lines.front().begin;
}
// Its closing part (271, 303) follows its last line.
std::size_t leaderTailBegin(const LeaderSpan& span) {
    return span.lines.empty() ? leaderHeadEnd(span) : span.lines.back().end;
}

Multileader::Line readLine(Reader& r, const TagList& tags, const Span& span) {
    Multileader::Line line;
    line.index = r.integer(kLineIndex, span.begin + 1, span.end - 1, 0);
    for (std::size_t i = span.begin + 1; i + 1 < span.end; ++i)
        if (tags[i].code == kVertex) line.vertices.push_back(r.pointAt(i));
    return line;
}

Multileader::Leader readLeader(Reader& r, const TagList& tags, const LeaderSpan& span) {
    Multileader::Leader leader;
    std::size_t from = span.begin + 1, to = leaderHeadEnd(span);
    leader.connection = r.point(kConnection, from, to, {});
    leader.doglegDirection = r.point(kDoglegDirection, from, to, {1, 0, 0});
    leader.doglegLength = r.real(kDoglegLength, from, to, 0);
    leader.index = r.integer(kLeaderIndex, from, to, 0);
    for (const Span& line : span.lines)
        leader.lines.push_back(readLine(r, tags, line));
    return leader;
}

Result<Multileader> read(const TagList& tags, const Layout& at) {
    Reader r(tags);
    Multileader m;
    std::size_t from = at.context + 1, to = pieceEnd(at, at.context);
    m.scale = r.real(kScale, from, to, 1);
    m.basePoint = r.point(kBasePoint, from, to, {});
    m.textHeight = r.real(kTextHeight, from, to, 0);
    m.arrowSize = r.real(kArrowSize, from, to, 0);
    m.landingGap = r.real(kLandingGap, from, to, 0);
    bool hasText = at.hasText != npos && r.integer(kHasText, at.hasText, at.hasText + 1, 0) != 0;
    bool hasBlock = at.hasBlock != npos && r.integer(kHasBlock, at.hasBlock, at.hasBlock + 1, 0) != 0;
    if (hasText) {
        from = at.hasText + 1, to = pieceEnd(at, at.hasText);
        m.content = Multileader::Content::Mtext;
        m.text = std::string(tags.text(kText, from, to).value_or(""));
        m.textLocation = r.point(kTextLocation, from, to, {});
        m.textDirection = r.point(kTextDirection, from, to, {1, 0, 0});
        m.textAttachment = r.integer(kTextAttachment, from, to, 1);
    }
    if (hasBlock) {
        from = at.hasBlock + 1, to = pieceEnd(at, at.hasBlock);
        if (!hasText) m.content = Multileader::Content::Block;
        m.block = r.handle(kBlock, from, to);
        m.blockPosition = r.point(kBlockPosition, from, to, {});
        m.blockScale = r.point(kBlockScale, from, to, {1, 1, 1});
        m.blockRotation = r.real(kBlockRotation, from, to, 0);
    }
    if (at.plane != npos) m.planeOrigin = r.pointAt(at.plane);
    for (const LeaderSpan& span : at.leaders)
        m.leaders.push_back(readLeader(r, tags, span));
    if (!r.bad().empty()) return fault(tags, r.bad());
    return m;
}

// --- Writing -------------------------------------------------------------------------------------------

void append(TagList& out, const TagList& part) {
    for (const TagValue& tag : part)
        out.add(tag.code, tag.value);
}

// Setters on one piece of the tags: the first tag of the code is replaced, or one inserted at `at`.
// A number that reads as the value already keeps its text, so only what changed is rewritten.
void putText(TagList& t, int code, std::string value, std::size_t at = npos) {
    std::size_t i = t.find(code);
    if (i != npos)
        t[i].value = std::move(value);
    else
        t.insert(std::min(at, t.size()), code, std::move(value));
}
void putRealAt(TagList& t, std::size_t i, double value) {
    if (dxf::parseReal(t[i].value) != value) t[i].value = dxf::formatReal(value);
}
void putReal(TagList& t, int code, double value, std::size_t at = npos) {
    std::size_t i = t.find(code);
    if (i != npos)
        putRealAt(t, i, value);
    else
        t.insert(std::min(at, t.size()), code, dxf::formatReal(value));
}
void putInteger(TagList& t, int code, std::int64_t value, std::size_t at = npos) {
    std::size_t i = t.find(code);
    if (i != npos && dxf::parseInteger(t[i].value) == value) return;
    putText(t, code, std::to_string(value), at);
}

// The point whose X is at `i`: each coordinate replaced, a missing Y or Z inserted.
void putPointAt(TagList& t, std::size_t i, const Point3& p) {
    int code = t[i].code;
    putRealAt(t, i, p.x);
    if (i + 1 < t.size() && t[i + 1].code == code + 10)
        putRealAt(t, i + 1, p.y);
    else
        t.insert(i + 1, code + 10, dxf::formatReal(p.y));
    if (i + 2 < t.size() && t[i + 2].code == code + 20)
        putRealAt(t, i + 2, p.z);
    else
        t.insert(i + 2, code + 20, dxf::formatReal(p.z));
}

void addPoints(TagList& t, std::size_t at, int code, const Point3* first, const Point3* last) {
    for (; first != last; ++first) {
        t.insert(at++, code, dxf::formatReal(first->x));
        t.insert(at++, code + 10, dxf::formatReal(first->y));
        t.insert(at++, code + 20, dxf::formatReal(first->z));
    }
}

void putPoint(TagList& t, int code, const Point3& p, std::size_t at = npos) {
    std::size_t i = t.find(code);
    if (i != npos)
        putPointAt(t, i, p);
    else
        addPoints(t, std::min(at, t.size()), code, &p, &p + 1);
}

// Where the point at `i` ends: past its Y and Z.
std::size_t pointEnd(const TagList& t, std::size_t i) {
    int code = t[i].code;
    std::size_t end = i + 1;
    if (end < t.size() && t[end].code == code + 10) ++end;
    if (end < t.size() && t[end].code == code + 20) ++end;
    return end;
}

// Replaces the points of one code: those there are changed in place, the rest removed or added
// after the last (at `at` when there is none).
void putPoints(TagList& t, int code, const std::vector<Point3>& points, std::size_t at) {
    std::size_t n = 0, after = npos;
    for (std::size_t i = 0; i < t.size();) {
        if (t[i].code != code) {
            ++i;
        } else if (n < points.size()) {
            putPointAt(t, i, points[n++]);
            after = i = pointEnd(t, i);
        } else {
            t.erase(i, pointEnd(t, i) - i);
        }
    }
    addPoints(t, after == npos ? std::min(at, t.size()) : after, code, points.data() + n,
              points.data() + points.size());
}

// Removes every point of the code, with its Y and Z.
void removePoints(TagList& t, int code) { putPoints(t, code, {}, 0); }

bool finite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// What makes a value unwritable; empty when it can be written.
std::string check(const Multileader& v) {
    bool ok = std::isfinite(v.scale) && finite(v.basePoint) && std::isfinite(v.textHeight) &&
              std::isfinite(v.arrowSize) && std::isfinite(v.landingGap) && finite(v.planeOrigin) &&
              finite(v.textLocation) && finite(v.textDirection) && finite(v.blockPosition) && finite(v.blockScale) &&
              std::isfinite(v.blockRotation);
    for (const Multileader::Leader& leader : v.leaders) {
        ok = ok && finite(leader.connection) && finite(leader.doglegDirection) && std::isfinite(leader.doglegLength);
        for (const Multileader::Line& line : leader.lines)
            for (const Point3& p : line.vertices)
                ok = ok && finite(p);
    }
    if (!ok) return "a number that is not finite";
    if (v.text.find_first_of("\r\n") != std::string::npos) return "a text holding a line break (use \\P)";
    if (v.content == Multileader::Content::Block && v.block == kNoHandle) return "block content without a block";
    return {};
}

// The text's rotation (radians) kept with its direction.
double rotationOf(const Point3& direction) { return std::atan2(direction.y, direction.x); }

// The content groups as a CAD program writes them new.
TagList defaultText(const Multileader& v, std::string_view textStyle) {
    TagList t;
    t.add(kHasText, "1");
    t.add(kText, v.text);
    t.addPoint(11, {0, 0, 1});  // normal
    t.add(340, std::string(textStyle));
    t.addPoint(kTextLocation, v.textLocation);
    t.addPoint(kTextDirection, v.textDirection);
    t.addReal(kTextRotation, rotationOf(v.textDirection));
    t.add(43, "0");   // width: none, no wrapping
    t.add(44, "0");   // defined height
    t.add(45, "1");   // line spacing factor
    t.add(170, "1");  // line spacing: at least
    t.add(90, std::string(kByBlockColor));
    t.addInteger(kTextAttachment, v.textAttachment);
    t.add(172, "1");                       // flow: left to right
    t.add(91, std::string(kWindowColor));  // background colour
    t.add(141, "1.5");                     // background scale
    t.add(92, "0");                        // background transparency
    t.add(291, "0");                       // background colour off
    t.add(292, "0");                       // background fill off
    t.add(173, "0");                       // no columns
    t.add(293, "0");                       // no auto height
    t.add(142, "0");
    t.add(143, "0");
    t.add(294, "0");
    t.add(295, "1");  // word break
    return t;
}

TagList defaultBlock(const Multileader& v) {
    TagList t;
    t.add(kHasBlock, "1");
    t.add(kBlock, formatHandle(v.block));
    t.addPoint(14, {0, 0, 1});  // normal
    t.addPoint(kBlockPosition, v.blockPosition);
    t.addPoint(kBlockScale, v.blockScale);
    t.addReal(kBlockRotation, v.blockRotation);
    t.add(93, std::string(kByBlockColor));
    for (int i = 0; i < 16; ++i)
        t.add(47, i % 5 == 0 ? "1" : "0");  // the identity, as writers leave it
    return t;
}

TagList defaultPlane(const Point3& origin) {
    TagList t;
    t.addPoint(kPlaneOrigin, origin);
    t.addPoint(111, {1, 0, 0});
    t.addPoint(112, {0, 1, 0});
    t.add(kPlaneReversed, "0");
    return t;
}

// Where new leaders and lines take their layout from: the first existing ones, without their
// breaks, or the defaults.
struct Templates {
    TagList leaderHead, leaderTail, line;

    Templates(const TagList& tags, const Layout& at) {
        if (!at.leaders.empty()) {
            const LeaderSpan& s = at.leaders.front();
            leaderHead = tags.slice(s.begin, leaderHeadEnd(s));
            removePoints(leaderHead, kLeaderBreakStart);
            removePoints(leaderHead, kLeaderBreakEnd);
            leaderTail = tags.slice(leaderTailBegin(s), s.end);
        } else {
            leaderHead = {{kLeaderOpen, std::string(kLeaderText)}, {290, "1"}, {291, "1"}};
            leaderTail = {{kLeaderClose, "}"}};
            if (at.r2010) leaderTail.insert(0, kAttachmentDirection, "0");
        }
        for (const LeaderSpan& s : at.leaders) {
            if (s.lines.empty()) continue;
            line = tags.slice(s.lines.front().begin, s.lines.front().end);
            removePoints(line, kVertex);
            removePoints(line, kLineBreakStart);
            removePoints(line, kLineBreakEnd);
            line.removeAll(kLineBreakIndex);
            break;
        }
        if (line.empty())
            line = {{kLineOpen, std::string(kLineText)},
                    {kLineIndex, "0"},
                    {92, std::string(kByBlockColor)},
                    {kLineClose, "}"}};
    }

    TagList newLine(const Multileader::Line& want, int index) const {
        TagList t = line;
        putPoints(t, kVertex, want.vertices, 1);
        putInteger(t, kLineIndex, index, t.size() - 1);
        return t;
    }
};

// The next index above all others (the highest int stays: a file that holds it gets no new one past it).
struct Indices {
    int nextLeader = 0, nextLine = 0;
    static int above(int index) { return index < INT32_MAX ? index + 1 : index; }
    void see(const std::vector<Multileader::Leader>& leaders) {
        for (const Multileader::Leader& leader : leaders) {
            nextLeader = std::max(nextLeader, above(leader.index));
            for (const Multileader::Line& line : leader.lines)
                nextLine = std::max(nextLine, above(line.index));
        }
    }
    int takeLeader() { return std::exchange(nextLeader, above(nextLeader)); }
    int takeLine() { return std::exchange(nextLine, above(nextLine)); }
};

// The index of the first unused entry of `had` with the index `index`; -1 when none.
template <class T>
int match(const std::vector<T>& had, std::vector<bool>& used, int index) {
    if (index < 0) return -1;
    for (std::size_t k = 0; k < had.size(); ++k) {
        if (used[k] || had[k].index != index) continue;
        used[k] = true;
        return static_cast<int>(k);
    }
    return -1;
}

void writeLeader(TagList& out, const TagList& tags, const LeaderSpan& span, const Multileader::Leader& had,
                 const Multileader::Leader& want, const Templates& templates, Indices& indices) {
    TagList head = tags.slice(span.begin, leaderHeadEnd(span));
    if (want.connection != had.connection) putPoint(head, kConnection, want.connection);
    if (want.doglegDirection != had.doglegDirection) putPoint(head, kDoglegDirection, want.doglegDirection);
    if (want.doglegLength != had.doglegLength) putReal(head, kDoglegLength, want.doglegLength);
    append(out, head);
    std::vector<bool> used(span.lines.size());
    for (const Multileader::Line& line : want.lines) {
        int k = match(had.lines, used, line.index);
        if (k < 0) {
            append(out, templates.newLine(line, indices.takeLine()));
            continue;
        }
        const Span& s = span.lines[static_cast<std::size_t>(k)];
        TagList t = tags.slice(s.begin, s.end);
        if (line.vertices != had.lines[static_cast<std::size_t>(k)].vertices) putPoints(t, kVertex, line.vertices, 1);
        append(out, t);
    }
    for (std::size_t k = 1; k < span.lines.size(); ++k)
        append(out, tags.slice(span.lines[k - 1].end, span.lines[k].begin));
    append(out, tags.slice(leaderTailBegin(span), span.end));
}

void writeNewLeader(TagList& out, const Multileader::Leader& want, const Templates& templates, Indices& indices) {
    TagList head = templates.leaderHead;
    putPoint(head, kConnection, want.connection);
    putPoint(head, kDoglegDirection, want.doglegDirection);
    putInteger(head, kLeaderIndex, indices.takeLeader());
    putReal(head, kDoglegLength, want.doglegLength);
    append(out, head);
    for (const Multileader::Line& line : want.lines)
        append(out, templates.newLine(line, indices.takeLine()));
    append(out, templates.leaderTail);
}

TagList writeLeaders(const TagList& tags, const Layout& at, const Multileader& had, const Multileader& want) {
    Templates templates(tags, at);
    Indices indices;
    indices.see(had.leaders);
    indices.see(want.leaders);
    std::vector<bool> used(at.leaders.size());
    TagList out;
    for (const Multileader::Leader& leader : want.leaders) {
        int k = match(had.leaders, used, leader.index);
        if (k < 0)
            writeNewLeader(out, leader, templates, indices);
        else
            writeLeader(out, tags, at.leaders[static_cast<std::size_t>(k)], had.leaders[static_cast<std::size_t>(k)],
                        leader, templates, indices);
    }
    // Whatever lay between leaders stays, after them.
    for (std::size_t k = 1; k < at.leaders.size(); ++k)
        append(out, tags.slice(at.leaders[k - 1].end, at.leaders[k].begin));
    return out;
}

int contentType(Multileader::Content content) {
    return content == Multileader::Content::Mtext ? 2 : content == Multileader::Content::Block ? 1 : 0;
}

}  // namespace

Result<Multileader> multileader(const TagList& tags) {
    auto at = locate(tags);
    if (!at) return at.error();
    return read(tags, *at);
}

Result<void> setMultileader(TagList& tags, const Multileader& value) {
    auto located = locate(tags);
    if (!located) return located.error();
    const Layout& at = *located;
    auto current = read(tags, at);
    if (!current) return current.error();
    const Multileader& had = *current;
    if (value == had) return {};
    if (std::string why = check(value); !why.empty()) return fault(tags, why);

    using Content = Multileader::Content;
    bool kindChanged = value.content != had.content;
    TagList own = tags.slice(at.close + 1, at.ownEnd);  // the entity's settings after the context

    TagList out;
    out.reserve(tags.size() + 64);
    append(out, tags.slice(0, at.context + 1));

    TagList head = tags.slice(at.context + 1, pieceEnd(at, at.context));
    if (value.scale != had.scale) putReal(head, kScale, value.scale);
    if (value.basePoint != had.basePoint) putPoint(head, kBasePoint, value.basePoint);
    if (value.textHeight != had.textHeight) putReal(head, kTextHeight, value.textHeight);
    if (value.arrowSize != had.arrowSize) putReal(head, kArrowSize, value.arrowSize);
    if (value.landingGap != had.landingGap) putReal(head, kLandingGap, value.landingGap);
    append(out, head);

    TagList text = at.hasText == npos ? TagList{} : tags.slice(at.hasText, pieceEnd(at, at.hasText));
    if (!kindChanged && value.content == Content::Mtext) {
        if (value.text != had.text) putText(text, kText, value.text);
        if (value.textLocation != had.textLocation) putPoint(text, kTextLocation, value.textLocation);
        if (value.textDirection != had.textDirection) {
            putPoint(text, kTextDirection, value.textDirection);
            if (text.find(kTextRotation) != npos) putReal(text, kTextRotation, rotationOf(value.textDirection));
        }
        if (value.textAttachment != had.textAttachment) putInteger(text, kTextAttachment, value.textAttachment);
    } else if (kindChanged && value.content == Content::Mtext) {
        auto style = own.text(kEntityTextStyle);
        if (!style) return fault(tags, "no text style (343) for the new text");
        text = defaultText(value, dxf::trimSpaces(*style));
    } else if (kindChanged && at.hasText != npos) {
        text = {{kHasText, "0"}};
    }
    append(out, text);

    TagList content = at.hasBlock == npos ? TagList{} : tags.slice(at.hasBlock, pieceEnd(at, at.hasBlock));
    if (!kindChanged && value.content == Content::Block) {
        if (value.block != had.block) putText(content, kBlock, formatHandle(value.block));
        if (value.blockPosition != had.blockPosition) putPoint(content, kBlockPosition, value.blockPosition);
        if (value.blockScale != had.blockScale) putPoint(content, kBlockScale, value.blockScale);
        if (value.blockRotation != had.blockRotation) putReal(content, kBlockRotation, value.blockRotation);
    } else if (kindChanged && value.content == Content::Block) {
        content = defaultBlock(value);
    } else if (kindChanged && at.hasBlock != npos) {
        content = {{kHasBlock, "0"}};
    }
    append(out, content);

    if (at.plane != npos) {
        TagList plane = tags.slice(at.plane, at.leadersAt);
        if (value.planeOrigin != had.planeOrigin) putPoint(plane, kPlaneOrigin, value.planeOrigin);
        append(out, plane);
    } else if (value.planeOrigin != had.planeOrigin) {
        append(out, defaultPlane(value.planeOrigin));
    }

    append(out, writeLeaders(tags, at, had, value));
    append(out, tags.slice(at.leadersEnd, at.close + 1));

    if (kindChanged) putInteger(own, kContentType, contentType(value.content));
    if (value.content == Content::Block && (kindChanged || value.block != had.block))
        putText(own, kEntityBlock, formatHandle(value.block), own.find(kEntityBlockColor));
    // The entity's copies of context values follow them where the entity has them.
    if (value.scale != had.scale && own.find(kEntityScale) != npos) putReal(own, kEntityScale, value.scale);
    if (value.arrowSize != had.arrowSize && own.find(kEntityArrowSize) != npos)
        putReal(own, kEntityArrowSize, value.arrowSize);
    bool block = value.content == Content::Block;
    if (block && value.blockScale != had.blockScale && own.find(kEntityBlockScale) != npos)
        putPoint(own, kEntityBlockScale, value.blockScale);
    if (block && value.blockRotation != had.blockRotation && own.find(kEntityBlockRotation) != npos)
        putReal(own, kEntityBlockRotation, value.blockRotation);
    append(out, own);
    append(out, tags.slice(at.ownEnd, tags.size()));
    tags = std::move(out);
    return {};
}

void moveMultileader(Multileader& value, const Point3& offset) {
    auto move = [&](Point3& p) { p = {p.x + offset.x, p.y + offset.y, p.z + offset.z}; };
    move(value.basePoint);
    move(value.planeOrigin);
    move(value.textLocation);
    move(value.blockPosition);
    for (Multileader::Leader& leader : value.leaders) {
        move(leader.connection);
        for (Multileader::Line& line : leader.lines)
            for (Point3& p : line.vertices)
                move(p);
    }
}

Result<TagList> newMultileader(const Database& db, const Point3& textLocation, double height, std::string_view text,
                               const std::vector<Point3>& vertices) {
    if (db.isR12()) return dxf::makeError("an R12 drawing cannot hold a multileader");
    Handle style = namedEntry(db, "ACAD_MLEADERSTYLE", "Standard");
    if (style == kNoHandle) return dxf::makeError("the drawing has no \"Standard\" multileader style");
    TagList styleTags = db.tags(style);
    // Plain variables: clang before 16 cannot capture structured bindings in a lambda.
    const auto range = styleTags.subclass("AcDbMLeaderStyle");
    const std::size_t from = range.first, to = range.second;
    auto styleText = [&](int code, std::string_view fallback) {
        return std::string(dxf::trimSpaces(styleTags.text(code, from, to).value_or(fallback)));
    };
    auto styleReal = [&](int code, double fallback) {
        auto v = dxf::parseReal(styleText(code, ""));
        return v && std::isfinite(*v) ? *v : fallback;
    };
    auto existing = [&](Handle h) { return h != kNoHandle && db.exists(h); };

    Handle textStyle = parseHandle(styleText(342, "")).value_or(kNoHandle);
    if (!existing(textStyle)) textStyle = db.findRecord("STYLE", "Standard");
    if (textStyle == kNoHandle) return dxf::makeError("the drawing has no text style for a multileader");
    Handle linetype = parseHandle(styleText(340, "")).value_or(kNoHandle);
    if (!existing(linetype)) linetype = db.findRecord("LTYPE", "ByBlock");
    Handle arrow = parseHandle(styleText(341, "")).value_or(kNoHandle);

    double scale = styleReal(142, 1);
    if (scale <= 0) scale = 1;
    Multileader v;
    v.content = Multileader::Content::Mtext;
    v.scale = scale;
    v.textHeight = height > 0 ? height : styleReal(45, 4) * scale;
    v.arrowSize = styleReal(44, 4) * scale;
    v.landingGap = styleReal(42, 2) * scale;
    v.text = std::string(text);
    v.textLocation = textLocation;
    bool dogleg = styleText(291, "1") != "0";
    double doglegLength = dogleg ? styleReal(43, 8) * scale : 0;
    // The leader lands on the middle of the top text line, on the left: the attachment written below.
    v.basePoint = {textLocation.x - v.landingGap, textLocation.y - v.textHeight / 2, textLocation.z};
    v.planeOrigin = v.basePoint;
    Multileader::Leader leader;
    leader.connection = {v.basePoint.x - doglegLength, v.basePoint.y, v.basePoint.z};
    leader.doglegLength = doglegLength;
    leader.index = 0;
    leader.lines.push_back({vertices, 0});
    v.leaders.push_back(leader);
    if (!std::isfinite(height) || height < 0) return dxf::makeError("a multileader text height must be 0 or more");
    if (vertices.empty()) return dxf::makeError("a multileader needs a leader vertex");
    if (std::string why = check(v); !why.empty()) return dxf::makeError("new multileader: " + why);

    std::string version(dxf::trimSpaces(db.headerVariable("$ACADVER").value_or("AC1032")));
    bool r2007 = version >= "AC1021", r2010 = version >= "AC1024", r2013 = version >= "AC1027";

    TagList tags = newEntity(db, "MULTILEADER");
    tags.add(gc::kSubclass, std::string(kMarker));
    tags.add(270, "2");
    tags.add(kContextOpen, std::string(kContextText));
    tags.addReal(kScale, v.scale);
    tags.addPoint(kBasePoint, v.basePoint);
    tags.addReal(kTextHeight, v.textHeight);
    tags.addReal(kArrowSize, v.arrowSize);
    tags.addReal(kLandingGap, v.landingGap);
    tags.add(174, "1");  // left attachment: middle of the top line
    tags.add(175, "1");  // right attachment: the same
    tags.add(176, "0");  // text alignment: left
    tags.add(177, "0");  // attached to the content's extents
    append(tags, defaultText(v, formatHandle(textStyle)));
    tags.add(kHasBlock, "0");
    append(tags, defaultPlane(v.planeOrigin));
    tags.add(kLeaderOpen, std::string(kLeaderText));
    tags.add(290, "1");  // has its last leader line point
    tags.add(291, "1");  // has its dogleg vector
    tags.addPoint(kConnection, leader.connection);
    tags.addPoint(kDoglegDirection, leader.doglegDirection);
    tags.add(kLeaderIndex, "0");
    tags.addReal(kDoglegLength, leader.doglegLength);
    tags.add(kLineOpen, std::string(kLineText));
    for (const Point3& p : vertices)
        tags.addPoint(kVertex, p);
    tags.add(kLineIndex, "0");
    tags.add(92, std::string(kByBlockColor));
    tags.add(kLineClose, "}");
    if (r2010) tags.add(kAttachmentDirection, "0");
    tags.add(kLeaderClose, "}");
    if (r2010) {
        tags.add(kContextTopAttachment, "9");
        tags.add(273, "9");
    }
    tags.add(kContextClose, "}");

    // The entity's settings: the style's, so that nothing is overridden (90 is 0).
    tags.add(340, formatHandle(style));
    tags.add(90, "0");
    tags.add(170, styleText(173, "1"));  // leader type: straight
    tags.add(91, styleText(91, kByBlockColor));
    if (linetype != kNoHandle) tags.add(341, formatHandle(linetype));
    tags.add(171, styleText(92, "-2"));  // lineweight
    tags.add(290, styleText(290, "1"));  // landing
    tags.add(291, dogleg ? "1" : "0");
    tags.addReal(41, doglegLength);
    if (existing(arrow)) tags.add(342, formatHandle(arrow));
    tags.addReal(kEntityArrowSize, v.arrowSize);
    tags.addInteger(kContentType, contentType(v.content));
    tags.add(kEntityTextStyle, formatHandle(textStyle));
    tags.add(173, "1");                  // left attachment, as in the context
    tags.add(95, "1");                   // right attachment
    tags.add(174, styleText(175, "1"));  // text angle: horizontal
    tags.add(175, styleText(176, "0"));  // text alignment
    tags.add(92, styleText(93, kByBlockColor));
    tags.add(292, styleText(292, "0"));  // frame
    tags.add(kEntityBlockColor, std::string(kByBlockColor));
    tags.addPoint(kEntityBlockScale, {1, 1, 1});
    tags.add(kEntityBlockRotation, "0");
    tags.add(176, "0");                  // block connection: extents
    tags.add(293, styleText(296, "0"));  // annotative
    if (r2007) {
        tags.add(294, "0");  // text direction not negative
        tags.add(178, "0");
        tags.add(179, "1");  // text attachment point: left
        tags.addReal(kEntityScale, v.scale);
    }
    if (r2010) {
        tags.add(271, "0");  // attachment direction: horizontal
        tags.add(272, "9");
        tags.add(273, "9");
    }
    if (r2013) tags.add(295, "0");
    return tags;
}

// Its leaders and content are read and written by the functions above; it is not placed under a
// block reference or exploded, and its box is the points of its geometry.
const EntityKindOps kinds::kMultileader{
    .kind = EntityKind::Multileader,
};

}  // namespace veltarn::db
