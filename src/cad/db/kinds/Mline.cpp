// MLINE: its vertices (11) with their segment directions (12), miters (13) and per-element
// offsets and breaks (74, 41, 75), laid out by its MLINESTYLE; justification (70), scale (40),
// flags (71) and extrusion in AcDbMline.
#include "cad/db/kinds/KindSupport.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/db/kinds/OutlineSupport.h"

#include "cad/db/Dictionary.h"
#include "cad/db/Geometry.h"
#include "cad/db/MlineStyle.h"
#include "cad/db/SymbolTables.h"

#include <algorithm>
#include <numbers>

namespace veltarn::db {

using namespace kind_support;

namespace {

constexpr int kMlineFlags = 71;
constexpr int kMlineStylePointer = 340;

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
        for (std::size_t k = 0; k < order_.size(); ++k)
            order_[k] = k;
        std::stable_sort(order_.begin(), order_.end(),
                         [&](std::size_t a, std::size_t b) { return elements_[a].offset < elements_[b].offset; });
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
        if (element < a.params.size() && a.params[element].size() > 1)
            breaks.assign(a.params[element].begin() + 1, a.params[element].end());
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
        Point3 startPoint{center.x + radius * std::cos(start / kDegrees),
                          center.y + radius * std::sin(start / kDegrees), center.z};
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
        return sameName(elements_[a].color, elements_[b].color) &&
               sameName(elements_[a].linetype, elements_[b].linetype);
    }

    // The piece's colour and linetype: the element's own, or the multiline's for ByBlock.
    TagList start(std::string_view type, std::size_t element) const {
        TagList tags = pieceStart(source_, type);
        const Element& look = elements_[element];
        if (look.color != "0") {
            for (int code : {gc::kTrueColor, gc::kColorName})
                tags.removeAll(code);
            tags.set(gc::kColor, look.color, 1, tags.size());
        }
        if (!sameName(look.linetype, "BYBLOCK")) {
            if (sameName(look.linetype, "BYLAYER"))
                tags.removeAll(gc::kLinetypeName);
            else
                tags.set(gc::kLinetypeName, look.linetype, 1, tags.size());
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

// The pieces of an MLINE: per segment one LINE for each element of its style, broken where the
// multiline's element breaks say; the miters and the start and end caps (square, outer round,
// inner arcs) its style shows and the multiline does not suppress. An element's colour and
// linetype go to its pieces; ByBlock ones take the multiline's. The fill is not kept, as CAD
// programs explode it. Fails for fewer than two vertices.
Result<std::vector<TagList>> explode(const Database& db, const TagList& tags) {
    auto [from, to] = tags.subclass("AcDbMline");
    if (from == TagList::npos) return fail("an MLINE without its AcDbMline data");
    auto style = mlineStyleOf(db, tags);
    int styleFlags = style ? style->flags : 0;
    std::vector<Element> elements = style ? style->elements : std::vector<Element>{};
    std::vector<MlineVertex> points = vertices(tags, from, to);
    if (points.size() < 2) return fail("cannot explode a multiline with fewer than two vertices");
    // Without its style, the elements are what the vertices hold, in the multiline's own look.
    std::size_t count = 0;
    for (const MlineVertex& v : points)
        count = std::max(count, v.params.size());
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
            for (std::size_t i = 1; i + 1 < order.size() - i; ++i)
                pieces.arc(v, order[order.size() - 1 - i], order[i], outward);
        }
    };
    if (!closed && !(flags & kSuppressStartCaps))
        caps(points.front(), points.front().direction * -1, kStartSquare, kStartRound, kStartInnerArcs);
    std::size_t segments = closed ? points.size() : points.size() - 1;
    for (std::size_t i = 0; i < segments; ++i)
        for (std::size_t k = 0; k < elements.size(); ++k)
            pieces.segment(points[i], points[(i + 1) % points.size()], k);
    if (styleFlags & kShowMiters)
        for (std::size_t i = closed ? 0 : 1; i < (closed ? points.size() : points.size() - 1); ++i)
            pieces.across(points[i]);
    if (!closed && !(flags & kSuppressEndCaps))
        caps(points.back(), points.back().direction, kEndSquare, kEndRound, kEndInnerArcs);
    return pieces.take();
}

// Vertices, segment and miter directions in WCS; the element offsets and breaks along them are
// lengths. Its extrusion is the placed plane's, turned over under a mirror: elements lie on the
// left of their direction seen from the extrusion, which is what the caps are drawn by.
Result<void> place(TagList& tags, std::size_t from, std::size_t to, const Placement& p) {
    auto wcs = [&](const Point3& q) { return p.map.apply(q); };
    auto direction = [&](const Point3& v) { return normalized(p.map.vector(v)); };
    Ocs plane(normalIn(tags, from, to));
    Point3 normal = normalized(cross(p.map.vector(plane.x), p.map.vector(plane.y)));
    mapPoints(tags, gc::kX2, from, to, wcs);
    mapPoints(tags, gc::kX3, from, to, direction);
    mapPoints(tags, gc::kX4, from, to, direction);
    for (int code : {gc::kReal, gc::kReal2, gc::kReal3})
        mapReals(tags, code, from, to, [&](double v) { return v * p.size; });
    std::size_t at = tags.find(gc::kNormalX, from, to);
    if (at == TagList::npos) {
        // DXF puts it right after the start point.
        std::size_t start = tags.find(gc::kX, from, to);
        at = start == TagList::npos ? to : start + 1;
        while (at < to && (tags[at].code == gc::kX + 10 || tags[at].code == gc::kX + 20))
            ++at;
        tags.insert(at, gc::kNormalX, "0");
        tags.insert(at + 1, gc::kNormalX + 10, "0");
        tags.insert(at + 2, gc::kNormalX + 20, "1");
        to += 3;
    }
    mapPoints(tags, gc::kNormalX, at, at + 1, [&](const Point3&) { return normal; });
    mapPoints(tags, gc::kX, from, to, wcs);  // the start point
    return {};
}

constexpr PropertyPlace kProperties[]{
    {Property::MlineJustification, "AcDbMline", 70, "0"},
    {Property::MlineScale, "AcDbMline", 40, "1"},
};

}  // namespace

namespace {

// A line through its vertices, back to the first when it is closed: a multiline is drawn as its
// elements along that line, not as an area.
std::optional<Outline> mlineOutline(const TagList& tags, double) {
    std::vector<Point3> points = mlineVertices(tags);
    if (points.empty()) return std::nullopt;
    if (closed(tags).value_or(false)) points.push_back(points.front());
    return outline_support::lineOutline(std::move(points));
}

}  // namespace

const EntityKindOps kinds::kMline{
    .kind = EntityKind::Mline,
    .geometrySubclass = "AcDbMline",
    .properties = kProperties,
    .closedFlag = ClosedFlag{"AcDbMline", kMlineFlags, kMlineClosed},
    .place = place,
    .explode = explode,
    .outline = mlineOutline,
};

// --- Multilines -----------------------------------------------------------------------------------------

std::vector<Point3> mlineVertices(const TagList& tags) { return pointList(tags, "AcDbMline", gc::kX2); }

bool setMlineVertices(const Database& db, TagList& tags, const std::vector<Point3>& given) {
    constexpr int kJustification = 70, kFlags = 71, kVertexCount = 72, kElementCount = 73;
    constexpr int kHasVertices = 1, kClosed = 2, kTop = 0, kBottom = 2;
    // A vertex repeated has no segment to give it a direction: it is dropped.
    std::vector<Point3> vertices;
    for (const Point3& p : given)
        if (vertices.empty() || length(p - vertices.back()) > 1e-9) vertices.push_back(p);
    if (tags.type() != "MLINE" || vertices.size() < 2) return false;
    auto style = mlineStyleOf(db, tags);
    if (!style || style->elements.empty()) return false;
    auto [from, to] = tags.subclass("AcDbMline");
    int flags = static_cast<int>(tags.integer(kFlags, from, to).value_or(0));
    bool closed = (flags & kClosed) != 0;
    double scale = tags.real(gc::kReal, from, to).value_or(1);
    int justification = static_cast<int>(tags.integer(kJustification, from, to).value_or(kTop));
    Ocs ocs(tags.point(gc::kNormalX, from, to).value_or(Point3{0, 0, 1}));

    if (closed && vertices.size() > 2 && length(vertices.back() - vertices.front()) <= 1e-9) vertices.pop_back();
    // Directions in the multiline's plane; a segment seen edge-on takes its neighbour's.
    const std::size_t n = vertices.size();
    std::vector<Point3> along(n);
    for (std::size_t i = 0; i < n; ++i) {
        bool last = i + 1 == n;
        if (last && !closed) break;
        Point3 d = ocs.fromWcs(vertices[last ? 0 : i + 1] - vertices[i]);
        d.z = 0;
        along[i] = length(d) > 1e-12 ? normalized(d) : Point3{};
    }
    if (!closed) along[n - 1] = along[n - 2];
    for (std::size_t i = 1; i < n; ++i)
        if (length(along[i]) == 0) along[i] = along[i - 1];
    for (std::size_t i = n; i-- > 1;)
        if (length(along[i - 1]) == 0) along[i - 1] = along[i];
    if (length(along[0]) == 0) return false;  // every vertex in one place

    auto left = [](const Point3& d) { return Point3{-d.y, d.x, 0}; };
    auto turned = [](const Point3& d, double degrees) {
        double a = degrees * std::numbers::pi / 180;
        return Point3{d.x * std::cos(a) - d.y * std::sin(a), d.x * std::sin(a) + d.y * std::cos(a), 0};
    };
    double low = style->elements[0].offset, high = low;
    for (const MlineElement& e : style->elements)
        low = std::min(low, e.offset), high = std::max(high, e.offset);
    double shift = justification == kTop ? -high : justification == kBottom ? -low : 0;

    TagList fresh;
    for (std::size_t i = 0; i < n; ++i) {
        Point3 miter;
        if (!closed && i == 0)
            miter = turned(along[0], style->startAngle);
        else if (!closed && i + 1 == n)
            miter = turned(along[n - 1], style->endAngle);
        else {
            Point3 sum = left(along[(i + n - 1) % n]) + left(along[i]);
            miter = length(sum) > 1e-12 ? normalized(sum) : left(along[i]);
        }
        // Elements keep their distance from the segment: along a slanted miter they lie further out.
        double sine = std::abs(along[i].x * miter.y - along[i].y * miter.x);
        double stretch = sine > 1e-12 ? scale / sine : scale;
        fresh.addPoint(gc::kX2, vertices[i]);
        fresh.addPoint(gc::kX3, ocs.toWcs(along[i]));
        fresh.addPoint(gc::kX4, ocs.toWcs(miter));
        for (const MlineElement& e : style->elements) {
            fresh.addInteger(74, 2);
            fresh.addReal(41, (e.offset + shift) * stretch);
            fresh.addReal(41, 0);
            fresh.addInteger(75, 0);
        }
    }
    std::size_t first = tags.find(gc::kX2, from, to);
    std::size_t end = first == TagList::npos ? to : first;
    while (end < to && tags[end].code < gc::kXdataFirst)
        ++end;
    if (first == TagList::npos) first = end;
    tags.erase(first, end - first);
    for (std::size_t i = 0; i < fresh.size(); ++i)
        tags.insert(first + i, fresh[i].code, fresh[i].value);
    tags.setPointIn("AcDbMline", gc::kX, vertices[0]);
    tags.setIntegerIn("AcDbMline", kFlags, flags | kHasVertices);
    tags.setIntegerIn("AcDbMline", kVertexCount, static_cast<std::int64_t>(n));
    tags.setIntegerIn("AcDbMline", kElementCount, static_cast<std::int64_t>(style->elements.size()));
    return true;
}

// --- Multiline styles --------------------------------------------------------------------------------

bool setMlineStyle(const Database& db, TagList& tags, std::string_view name) {
    if (tags.type() != "MLINE") return false;
    Handle style = namedEntry(db, "ACAD_MLINESTYLE", name);
    if (style == kNoHandle) return false;
    tags.setIn("AcDbMline", gc::kName, std::string(name));
    tags.setIn("AcDbMline", kMlineStylePointer, formatHandle(style));
    return true;
}

std::optional<std::string> mlineStyle(const TagList& tags) {
    if (tags.type() != "MLINE") return std::nullopt;
    auto [from, to] = tags.subclass("AcDbMline");
    return std::string(tags.text(gc::kName, from, to).value_or("Standard"));
}

}  // namespace veltarn::db
