// What an entity looks like as GIS geometry: a point, lines or a polygon's rings, in WCS, its
// curves (arcs, bulges, ellipses, splines) broken into straight pieces that stay within a given
// distance of the true curve. Each kind gives its own (kinds/, the `outline` member).
#pragma once

#include "cad/db/TagList.h"

#include <optional>
#include <vector>

namespace veltarn::db {

struct Outline {
    enum class Shape : std::uint8_t { Point, Line, Polygon };
    Shape shape = Shape::Point;
    // Point: one part of one point. Line: one polyline a part, at least two points each. Polygon:
    // its rings, the outer one first, each of at least three points and not repeating its first
    // point at its end; the outer ring runs counter-clockwise seen from above (+Z), the others
    // clockwise.
    std::vector<std::vector<Point3>> parts;
};

// A full turn is broken into at least this many pieces, so that a circle stays round at any
// tolerance, and at most kMaxTurnPieces, so that a huge radius or a tiny tolerance cannot ask
// for millions of points; a curve's pieces are capped the same way.
inline constexpr int kMinTurnPieces = 8;
inline constexpr int kMaxTurnPieces = 4096;

// The outline of an entity (its tags, with its VERTEX entities for a POLYLINE). Curves become
// straight pieces whose distance from the curve is at most `tolerance` drawing units (within the
// caps above; a tolerance that is not a positive number asks for the finest). Consecutive
// repeated points are dropped, and what collapses is given as what it still is: a polygon of two
// distinct points as a line, a line of one point as a point. nullopt when the entity has no
// finite geometry to give (a mesh, a solid, an infinite line, a NaN coordinate).
std::optional<Outline> outline(const TagList& tags, double tolerance);

}  // namespace veltarn::db
