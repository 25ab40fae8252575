#include "cad/db/MlineExplode.h"

#include "cad/db/ExplodeSupport.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/MlineStyle.h"
#include "cad/db/Transform.h"
#include "cad/dxf/NumberText.h"

#include <algorithm>

namespace veltarn::db {

using namespace explode_support;

namespace {

// MLINE flags (71) and MLINESTYLE flags (70).
constexpr int kMlineClosed = 2, kSuppressStartCaps = 4, kSuppressEndCaps = 8;
constexpr int kShowMiters = 2, kStartSquare = 16, kStartInnerArcs = 32, kStartRound = 64;
constexpr int kEndSquare = 256, kEndInnerArcs = 512, kEndRound = 1024;
constexpr int kVertex = gc::kX2, kDirection = gc::kX3, kMiter = gc::kX4, kParamCount = 74, kParam = 41;
constexpr double kTiny = 1e-12;

using Element = MlineElement;

struct MlineVertex {
    Point3 point, direction, miter;
    std::vector<std::vector<double>> params;  // per element: its offset along the miter, then its breaks
};

std::vector<MlineVertex> vertices(const TagList& tags, std::size_t from, std::size_t to) {
    std::vector<MlineVertex> out;
    std::size_t left = 0;  // parameters the current element still expects
    for (std::size_t i = from; i < to; ++i) {
        int code = tags[i].code;
        if (code == kVertex) {
            out.emplace_back().point = tags.pointAt(i).value_or(Point3{});
            left = 0;
        } else if (out.empty()) {
            continue;
        } else if (code == kDirection) {
            out.back().direction = tags.pointAt(i).value_or(Point3{});
        } else if (code == kMiter) {
            out.back().miter = tags.pointAt(i).value_or(Point3{});
        } else if (code == kParamCount) {
            out.back().params.emplace_back();
            left = static_cast<std::size_t>(std::max<std::int64_t>(0, dxf::parseInteger(tags[i].value).value_or(0)));
        } else if (code == kParam && left > 0) {
            out.back().params.back().push_back(dxf::parseReal(tags[i].value).value_or(0));
            --left;
        }
    }
    return out;
}

class MlinePieces {
public:
    MlinePieces(const TagList& source, std::vector<Element> elements, const Point3& normal)
        : source_(source), elements_(std::move(elements)), normal_(normal), ocs_(normal) {
        order_.resize(elements_.size());
        for (std::size_t k = 0; k < order_.size(); ++k) order_[k] = k;
        std::stable_sort(order_.begin(), order_.end(), [&](std::size_t a, std::size_t b) { return elements_[a].offset < elements_[b].offset; });
    }

    std::size_t bottom() const { return order_.front(); }
    std::size_t top() const { return order_.back(); }
    const std::vector<std::size_t>& order() const { return order_; }

    static Point3 at(const MlineVertex& v, std::size_t element) {
        double offset = element < v.params.size() && !v.params[element].empty() ? v.params[element][0] : 0;
        return v.point + v.miter * offset;
    }

    // One element along a segment, drawn between its breaks: distances from the start along it,
    // alternately where a dash starts and where it ends (the last dash runs to the segment's end).
    void segment(const MlineVertex& a, const MlineVertex& b, std::size_t element) {
        Point3 from = at(a, element), to = at(b, element);
        double span = length(to - from);
        if (span < kTiny) return;
        Point3 along = (to - from) * (1 / span);
        std::vector<double> breaks;
        if (element < a.params.size() && a.params[element].size() > 1) breaks.assign(a.params[element].begin() + 1, a.params[element].end());
        if (breaks.empty()) breaks.push_back(0);
        for (std::size_t i = 0; i < breaks.size(); i += 2) {
            double start = std::clamp(breaks[i], 0.0, span);
            double end = i + 1 < breaks.size() ? std::clamp(breaks[i + 1], 0.0, span) : span;
            if (end - start > kTiny) line(from + along * start, from + along * end, element);
        }
    }

    // Across the multiline at a vertex, each half in the look of the outer element it starts from.
    void across(const MlineVertex& v) {
        Point3 high = at(v, top()), low = at(v, bottom());
        Point3 middle = (high + low) * 0.5;
        line(high, middle, top());
        line(low, middle, bottom());
    }

    // A half circle from one element's end to another's, bulging towards `outward`.
    void arc(const MlineVertex& v, std::size_t first, std::size_t second, const Point3& outward) {
        Point3 a = ocs_.fromWcs(at(v, first)), b = ocs_.fromWcs(at(v, second));
        Point3 out = ocs_.fromWcs(outward);
        Point3 center = (a + b) * 0.5;
        double radius = length(b - a) * 0.5;
        if (radius < kTiny) return;
        double start = std::atan2(out.y, out.x) * kDegrees - 90;
        // The element whose end lies at the start angle owns the first quarter.
        Point3 startPoint{center.x + radius * std::cos(start / kDegrees), center.y + radius * std::sin(start / kDegrees), center.z};
        std::size_t firstOwner = length(startPoint - a) <= length(startPoint - b) ? first : second;
        std::size_t secondOwner = firstOwner == first ? second : first;
        if (sameLook(firstOwner, secondOwner)) {
            arcPiece(center, radius, start, start + 180, firstOwner);
        } else {
            arcPiece(center, radius, start, start + 90, firstOwner);
            arcPiece(center, radius, start + 90, start + 180, secondOwner);
        }
    }

    std::vector<TagList> take() { return std::move(pieces_); }

private:
    bool sameLook(std::size_t a, std::size_t b) const {
        return sameName(elements_[a].color, elements_[b].color) && sameName(elements_[a].linetype, elements_[b].linetype);
    }

    // The piece's colour and linetype: the element's own, or the multiline's for ByBlock.
    TagList start(std::string_view type, std::size_t element) const {
        TagList tags = pieceStart(source_, type);
        const Element& look = elements_[element];
        if (look.color != "0") {
            for (int code : {gc::kTrueColor, gc::kColorName}) tags.removeAll(code);
            tags.set(gc::kColor, look.color, 1, tags.size());
        }
        if (!sameName(look.linetype, "BYBLOCK")) {
            if (sameName(look.linetype, "BYLAYER")) tags.removeAll(gc::kLinetypeName);
            else tags.set(gc::kLinetypeName, look.linetype, 1, tags.size());
        }
        return tags;
    }

    void line(const Point3& from, const Point3& to, std::size_t element) {
        TagList tags = start("LINE", element);
        tags.add(gc::kSubclass, "AcDbLine");
        tags.addPoint(gc::kX, from);
        tags.addPoint(gc::kX2, to);
        addNormal(tags, normal_);
        pieces_.push_back(std::move(tags));
    }

    void arcPiece(const Point3& center, double radius, double from, double to, std::size_t element) {
        TagList tags = start("ARC", element);
        tags.add(gc::kSubclass, "AcDbCircle");
        tags.addPoint(gc::kX, center);
        tags.addReal(gc::kReal, radius);
        addNormal(tags, normal_);
        tags.add(gc::kSubclass, "AcDbArc");
        tags.addReal(gc::kAngle, std::fmod(from + 720, 360));
        tags.addReal(gc::kAngle2, std::fmod(to + 720, 360));
        pieces_.push_back(std::move(tags));
    }

    const TagList& source_;
    std::vector<Element> elements_;
    Point3 normal_;
    Ocs ocs_;
    std::vector<std::size_t> order_;
    std::vector<TagList> pieces_;
};

}  // namespace

Result<std::vector<TagList>> explodeMline(const Database& db, const TagList& tags) {
    auto [from, to] = tags.subclass("AcDbMline");
    if (from == TagList::npos) return fail("an MLINE without its AcDbMline data");
    auto style = mlineStyleOf(db, tags);
    int styleFlags = style ? style->flags : 0;
    std::vector<Element> elements = style ? style->elements : std::vector<Element>{};
    std::vector<MlineVertex> points = vertices(tags, from, to);
    if (points.size() < 2) return fail("cannot explode a multiline with fewer than two vertices");
    // Without its style, the elements are what the vertices hold, in the multiline's own look.
    std::size_t count = 0;
    for (const MlineVertex& v : points) count = std::max(count, v.params.size());
    for (std::size_t k = elements.size(); k < count; ++k) {
        const auto& first = points[0].params;
        elements.emplace_back().offset = k < first.size() && !first[k].empty() ? first[k][0] : 0;
    }
    if (elements.empty()) return fail("cannot explode a multiline without elements");
    int flags = static_cast<int>(tags.integer(gc::kInt71, from, to).value_or(0));
    bool closed = (flags & kMlineClosed) != 0;
    MlinePieces pieces(tags, elements, normalIn(tags, from, to));

    auto caps = [&](const MlineVertex& v, const Point3& outward, int square, int round, int inner) {
        if (styleFlags & square) pieces.across(v);
        if (styleFlags & round) pieces.arc(v, pieces.top(), pieces.bottom(), outward);
        if (styleFlags & inner) {
            const auto& order = pieces.order();
            for (std::size_t i = 1; i + 1 < order.size() - i; ++i) pieces.arc(v, order[order.size() - 1 - i], order[i], outward);
        }
    };
    if (!closed && !(flags & kSuppressStartCaps))
        caps(points.front(), points.front().direction * -1, kStartSquare, kStartRound, kStartInnerArcs);
    std::size_t segments = closed ? points.size() : points.size() - 1;
    for (std::size_t i = 0; i < segments; ++i)
        for (std::size_t k = 0; k < elements.size(); ++k) pieces.segment(points[i], points[(i + 1) % points.size()], k);
    if (styleFlags & kShowMiters)
        for (std::size_t i = closed ? 0 : 1; i < (closed ? points.size() : points.size() - 1); ++i) pieces.across(points[i]);
    if (!closed && !(flags & kSuppressEndCaps)) caps(points.back(), points.back().direction, kEndSquare, kEndRound, kEndInnerArcs);
    return pieces.take();
}

}  // namespace veltarn::db
