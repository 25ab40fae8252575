// What the kinds' outlines share: curves broken into straight pieces within a tolerance (arcs,
// polyline bulges, elliptic arcs, splines by de Boor's algorithm), OCS points taken to WCS, and
// the outlines' shapes.
#pragma once

#include "cad/db/Geometry.h"
#include "cad/db/Outline.h"
#include "cad/db/Transform.h"

#include <optional>
#include <vector>

namespace veltarn::db::outline_support {

// A spline's pieces are capped like the pieces of this many full turns.
inline constexpr int kMaxSplinePieces = 4 * kMaxTurnPieces;

// The pieces an arc of `radius` sweeping `sweep` radians (either sense) is broken into so that
// each chord's sagitta, radius * (1 - cos(step / 2)), is at most `tolerance`; within the caps of
// Outline.h, at least one.
int arcPieces(double radius, double sweep, double tolerance);

// Appends the points of the arc about `center` (in the XY plane at the centre's Z) from `start`
// sweeping `sweep` radians (positive: counter-clockwise), both ends included.
void appendArc(std::vector<Point3>& out, const Point3& center, double radius, double start, double sweep,
               double tolerance);

// Appends the points of the elliptic arc center + major * cos t + minor * sin t for t from `start`
// sweeping `sweep`, both ends included. Its chords stay within `tolerance` as the circle's of the
// larger axis would: the ellipse is that circle squeezed, which brings no point further from its
// chord.
void appendEllipse(std::vector<Point3>& out, const Point3& center, const Point3& major, const Point3& minor,
                   double start, double sweep, double tolerance);

// The points of a path of vertices whose bulges (tan of a quarter of the included angle,
// negative clockwise) make arcs in the XY plane: each vertex, and between two the points of its
// arc. A closed path gives its closing segment too, and ends on its first point again.
std::vector<Point3> bulgedPath(const std::vector<Vertex>& vertices, bool closed, double tolerance);

// A B-spline of `degree` over `knots` (count: controls + degree + 1, non-decreasing) and its
// control points, rational when `weights` (one a control point, each positive) is not empty.
struct Spline {
    int degree = 3;
    std::vector<double> knots;
    std::vector<Point3> controls;
    std::vector<double> weights;
};
// The curve sampled over its whole domain: each knot span cut until the curve at a quarter, half
// and three quarters of a piece lies within `tolerance` of its chord. nullopt when the data do
// not make a spline (counts that disagree, knots that run backwards, a weight not positive).
std::optional<std::vector<Point3>> sampleSpline(const Spline& spline, double tolerance);

// Points in the OCS of `normal` taken to WCS.
void toWcs(std::vector<Point3>& points, const Point3& normal);
Point3 toWcs(const Point3& point, const Point3& normal);

Outline pointOutline(const Point3& point);
Outline lineOutline(std::vector<Point3> points);
// A closed path is a polygon (its closing point may be repeated or not), an open one a line: by
// the entity's closed flag, not by where the path happens to end.
Outline pathOutline(std::vector<Point3> points, bool closed);

// The entity's point at `code` in its own tags (OCS when `ocs`, to be taken to WCS by its
// extrusion); nullopt when it has none.
std::optional<Outline> pointAt(const TagList& tags, int code, bool ocs);

// For kinds that give no outline.
inline std::optional<Outline> noOutline(const TagList&, double) { return std::nullopt; }

}  // namespace veltarn::db::outline_support
