// What the kind files share: rewriting points and lengths under a block placement, and the
// boxes of arcs and point lists for extents.
#pragma once

#include "cad/db/BlockPlacement.h"
#include "cad/db/ExplodeSupport.h"
#include "cad/db/Extents.h"
#include "cad/db/Geometry.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/dxf/NumberText.h"

#include <cmath>
#include <numbers>
#include <optional>

namespace veltarn::db::kind_support {

using namespace explode_support;

inline std::string real(double v) { return dxf::formatReal(v); }

inline double realAt(const TagList& tags, std::size_t i) { return dxf::parseReal(tags[i].value).value_or(0); }
inline std::int64_t intAt(const TagList& tags, std::size_t i) { return dxf::parseInteger(tags[i].value).value_or(0); }

// The end of a subclass's geometry: before its extrusion and any xdata.
inline std::size_t dataEnd(const TagList& tags, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i)
        if (tags[i].code == gc::kNormalX || tags[i].code >= gc::kXdataFirst) return i;
    return to;
}

// The entity's own tags, after its type and before its first VERTEX, ATTRIB or SEQEND.
inline std::pair<std::size_t, std::size_t> ownTags(const TagList& tags) { return {1, ownEnd(tags)}; }

// One OCS entity's plane under the placement: its new normal and how angles turn. A mirrored
// placement keeps the normal's side (drawings stay in plan view) and runs angles the other way.
struct PlaneMap {
    Ocs from, to;
    Point3 normal;
    double turn = 0;  // degrees
    bool mirrored = false;

    PlaneMap(const Placement& p, const Point3& n)
        : from(n), to(normalized(p.map.vector(from.z))), normal(to.z), mirrored(p.mirrored) {
        Point3 u = p.map.vector(from.x);
        turn = std::atan2(dot(u, to.y), dot(u, to.x)) * kDegrees;
        map_ = &p.map;
    }
    Point3 point(const Point3& ocs) const { return to.fromWcs(map_->apply(from.toWcs(ocs))); }
    Point3 vector(const Point3& ocs) const { return to.fromWcs(map_->vector(from.toWcs(ocs))); }
    double angle(double degrees) const { return mirrored ? turn - degrees : turn + degrees; }

private:
    const Affine* map_;
};

// Rewrites the point at `code` (with its Y and Z codes when present) in [from, to), every occurrence.
template <class F>
void mapPoints(TagList& tags, int code, std::size_t from, std::size_t to, F f) {
    for (std::size_t i = from; i < to; ++i) {
        if (tags[i].code != code) continue;
        Point3 p = tags.pointAt(i).value_or(Point3{});
        bool hasZ = i + 2 < tags.size() && tags[i + 2].code == code + 20 && tags[i + 1].code == code + 10;
        Point3 q = f(p);
        tags[i].value = real(q.x);
        if (i + 1 < tags.size() && tags[i + 1].code == code + 10) tags[i + 1].value = real(q.y);
        if (hasZ) tags[i + 2].value = real(q.z);
    }
}

template <class F>
void mapReals(TagList& tags, int code, std::size_t from, std::size_t to, F f) {
    for (std::size_t i = from; i < to; ++i)
        if (tags[i].code == code) tags[i].value = real(f(dxf::parseReal(tags[i].value).value_or(0)));
}

// Sets the extrusion of an entity whose own tags are [from, to): replaced in place, or added
// before any xdata when it differs from the default.
void setNormal(TagList& tags, std::size_t from, std::size_t to, const Point3& normal);

// Points and radii of an entity in its plane (CIRCLE, ARC, SOLID, TRACE): corners 10 to 13 and
// the radius (40) mapped; the caller sets the normal once its own values are written.
void placeInPlane(TagList& tags, std::size_t from, std::size_t to, const Placement& p, const PlaneMap& plane);

// The centre (in its OCS) and radius of a CIRCLE or ARC, from AcDbCircle; nullopt without a centre.
struct CircleShape {
    Point3 center;
    double radius = 0;
};
std::optional<CircleShape> circleOf(const TagList& tags);

// The placement of an entity whose points (10 to 13) are in WCS: each point is mapped, and its
// normal turned with the map (LINE, POINT, WIPEOUT).
Result<void> placeWcsPointsAndNormal(TagList& tags, std::size_t from, std::size_t to, const Placement& p);

// A polyline's vertex as explode breaks it into lines and arcs.
struct PathVertex {
    Point3 point;  // OCS for 2D polylines, WCS for 3D ones
    double bulge = 0;
};

// Appends the LINEs and ARCs (bulged segments) from vertex to vertex, in the source's look.
void addSegments(std::vector<TagList>& out, const TagList& source, const std::vector<PathVertex>& vertices, bool closed,
                 bool planar, const Point3& normal, double thickness);

// The box of a polyline's segments: straight, or arcs where a vertex has a bulge.
void addPolyline(Extents& box, const std::vector<Vertex>& vertices, bool closed);

// The box of the arc from `start` to `end` (degrees, counter-clockwise): its ends and the
// quadrant points it passes.
void addArc(Extents& box, const Point3& center, double radius, double start, double end);

inline constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
// A character of a common font is about this much of the text height wide: enough for selection.
inline constexpr double kCharacterWidth = 0.6;
// Lines of multiline text stand this many text heights apart.
inline constexpr double kLineSpacing = 5.0 / 3.0;

// The corners of a `width` by `height` box whose lower left corner lies `(dx, dy)` from `anchor`
// before the box is turned by `radians` about the anchor.
void addTurnedBox(Extents& box, const Point3& anchor, double dx, double dy, double width, double height,
                  double radians);

// Characters of the text as shown: format codes of multiline text ("\P", "{\fArial;...}") count
// roughly, which is close enough for a box.
std::size_t shownLength(std::string_view text);

// The points of the entity's own geometry (codes 10 to 18); code 11 is left out where it is a
// direction or an unused text alignment. nullopt when there is none.
std::optional<Extents> pointExtents(const TagList& tags, bool directionAt11);

}  // namespace veltarn::db::kind_support
