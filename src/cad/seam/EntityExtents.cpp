#include "cad/seam/EntityExtents.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "cad/db/EntityProperties.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/KindSupport.h"

namespace veltarn::seam {
namespace {

using db::kind_support::addArc;

constexpr double kDegrees = std::numbers::pi / 180.0;
// A character of a common font is about this much of the text height wide: enough for selection.
constexpr double kCharacterWidth = 0.6;
// Lines of multiline text stand this many text heights apart.
constexpr double kLineSpacing = 5.0 / 3.0;

// The corners of a `width` by `height` box whose lower left corner lies `(dx, dy)` from `anchor`
// before the box is turned by `radians` about the anchor.
void addTurnedBox(Extents& box, const db::Point3& anchor, double dx, double dy, double width, double height,
                  double radians) {
    const double c = std::cos(radians), s = std::sin(radians);
    for (double x : {dx, dx + width})
        for (double y : {dy, dy + height}) box.add(anchor.x + x * c - y * s, anchor.y + x * s + y * c);
}

// Characters of the text as shown: format codes of multiline text ("\P", "{\fArial;...}") count
// roughly, which is close enough for a box.
std::size_t shownLength(std::string_view text) {
    std::size_t count = 0;
    for (unsigned char c : text)
        if ((c & 0xC0) != 0x80) ++count;  // one per UTF-8 character
    return count;
}

// TEXT and ATTDEF/ATTRIB: a box of the text's length and height on its baseline, turned by its
// rotation, placed by its justification (72 horizontal, 73 vertical, anchored at the alignment point).
std::optional<Extents> textExtents(const db::TagList& tags) {
    auto insertion = tags.point(db::gc::kX);
    if (!insertion) return std::nullopt;
    const double height = std::abs(tags.real(db::gc::kReal).value_or(0));
    const double widthFactor = std::abs(tags.real(db::gc::kReal2).value_or(1));
    const double width = shownLength(tags.text(db::gc::kText).value_or("")) * height * kCharacterWidth * widthFactor;
    const double radians = tags.real(db::gc::kAngle).value_or(0) * kDegrees;
    const auto horizontal = tags.integer(db::gc::kInt72).value_or(0);
    const auto vertical = tags.integer(db::gc::kInt73).value_or(0);
    db::Point3 anchor = *insertion;
    double dx = 0, dy = 0;
    if (horizontal != 0 || vertical != 0) {
        if (auto alignment = tags.point(db::gc::kX2)) anchor = *alignment;
        if (horizontal == 1 || horizontal == 4) dx = -width / 2;  // center, middle
        else if (horizontal == 2) dx = -width;                    // right
        if (horizontal == 4 || vertical == 2) dy = -height / 2;   // middle
        else if (vertical == 3) dy = -height;                     // top
    }
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    addTurnedBox(box, anchor, dx, dy, width, height, radians);
    return box;
}

// MTEXT: its reference width (or its longest line) by its lines, placed by its attachment point
// (71: 1 top left ... 9 bottom right) and turned by its direction (11) or rotation (50).
std::optional<Extents> mtextExtents(const db::TagList& tags) {
    auto insertion = tags.point(db::gc::kX);
    if (!insertion) return std::nullopt;
    const double height = std::abs(tags.real(db::gc::kReal).value_or(0));
    std::string text;
    for (std::size_t i = 0; i < tags.size(); ++i)
        if (tags[i].code == 3 || tags[i].code == db::gc::kText) text += tags[i].value;
    std::size_t lines = 1, longest = 0, start = 0;
    for (std::size_t at = text.find("\\P"); ; at = text.find("\\P", start)) {
        const std::size_t end = at == std::string::npos ? text.size() : at;
        longest = std::max(longest, shownLength(std::string_view(text).substr(start, end - start)));
        if (at == std::string::npos) break;
        ++lines;
        start = at + 2;
    }
    double width = tags.real(db::gc::kReal2).value_or(0);
    if (width <= 0) width = longest * height * kCharacterWidth;
    const double boxHeight = height + (lines - 1) * height * kLineSpacing;
    double radians = tags.real(db::gc::kAngle).value_or(0) * kDegrees;
    if (auto direction = tags.point(db::gc::kX2); direction && (direction->x != 0 || direction->y != 0))
        radians = std::atan2(direction->y, direction->x);
    const auto attachment = std::clamp<std::int64_t>(tags.integer(db::gc::kInt71).value_or(1), 1, 9);
    const int column = static_cast<int>((attachment - 1) % 3), row = static_cast<int>((attachment - 1) / 3);
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    // Top attachments hang the box below the point, bottom ones stand it on the point.
    addTurnedBox(box, *insertion, -width * column / 2, -boxHeight * (2 - row) / 2, width, boxHeight, radians);
    return box;
}

// A polyline's segments: straight, or arcs where a vertex has a bulge (the tangent of a quarter of
// the arc's angle; positive turns counter-clockwise).
void addPolyline(Extents& box, const std::vector<db::Vertex>& vertices, bool closed) {
    for (const db::Vertex& v : vertices) box.add(v.point.x, v.point.y);
    const std::size_t segments = closed ? vertices.size() : vertices.size() - (vertices.empty() ? 0 : 1);
    for (std::size_t i = 0; i < segments; ++i) {
        const db::Vertex& from = vertices[i];
        const db::Point3& to = vertices[(i + 1) % vertices.size()].point;
        const double bulge = from.bulge;
        const double chord = std::hypot(to.x - from.point.x, to.y - from.point.y);
        if (bulge == 0 || !std::isfinite(bulge) || chord == 0) continue;
        // The centre lies off the chord's midpoint, along its left normal.
        const double offset = chord / 2 * (1 - bulge * bulge) / (2 * bulge);
        const double ux = (to.x - from.point.x) / chord, uy = (to.y - from.point.y) / chord;
        const db::Point3 center{(from.point.x + to.x) / 2 - uy * offset, (from.point.y + to.y) / 2 + ux * offset, 0};
        const double radius = std::hypot(from.point.x - center.x, from.point.y - center.y);
        double start = std::atan2(from.point.y - center.y, from.point.x - center.x) / kDegrees;
        double end = std::atan2(to.y - center.y, to.x - center.x) / kDegrees;
        if (bulge < 0) std::swap(start, end);  // clockwise: the same arc, counter-clockwise from the end
        addArc(box, center, radius, start, end);
    }
}

}  // namespace

std::optional<Extents> entityExtents(const db::TagList& tags) {
    const std::string_view type = tags.type();
    Extents box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    bool any = false;
    auto addPoint = [&](const db::Point3& p) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
        box.add(p.x, p.y);
        any = true;
    };
    if (const db::EntityKindOps* kind = db::kindOf(type, tags))
        return kind->extents ? kind->extents(tags) : db::kind_support::pointExtents(tags, false);
    if (type == "TEXT" || type == "ATTDEF" || type == "ATTRIB") {
        return textExtents(tags);
    } else if (type == "MTEXT") {
        return mtextExtents(tags);
    } else if (type == "LWPOLYLINE" || type == "POLYLINE") {
        const std::vector<db::Vertex> vertices = db::polylineVertices(tags);
        if (vertices.empty()) return std::nullopt;
        addPolyline(box, vertices, db::closed(tags).value_or(false));
        any = true;
    } else if (type == "HATCH") {
        for (const db::HatchPath& path : db::hatchPaths(tags))
            for (const db::Vertex& v : path.vertices) addPoint(v.point);
    } else {
        // Points of the entity's own geometry; a direction or an unused text alignment (11) is none.
        return db::kind_support::pointExtents(tags,
                                              type == "XLINE" || type == "RAY" || type == "MTEXT" || type == "TEXT");
    }
    if (!any) return std::nullopt;
    return box;
}

}  // namespace veltarn::seam
