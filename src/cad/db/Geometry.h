// Geometry of the entity kinds read and written by the database. Simple kinds keep their points
// and sizes in fixed group codes (see `GeometryCodes`); polylines, hatches, splines, multilines,
// wipeouts and block references with attributes have functions of their own here, defined in
// their kind's file under kinds/ (multileaders in kinds/Multileader.h).
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::db {

// Fixed places of simple kinds' geometry, as DXF defines them:
//   POINT 10 · LINE 10, 11 · CIRCLE 10, radius 40 · ARC 10, 40, angles 50, 51 (degrees)
//   ELLIPSE 10, major axis 11, ratio 40, parameters 41, 42 · XLINE and RAY 10, direction 11
//   3DFACE and SOLID 10, 11, 12, 13 · TEXT 10, alignment point 11 · MTEXT 10, direction 11
//   INSERT 10 · DIMENSION 10, 11 (text), 13, 14, 15, 16 · WIPEOUT 10, u 11, v 12
// Read them with TagList::point / real and write them with TagList::setPointIn / setRealIn in the
// kind's subclass ("AcDbLine", "AcDbCircle", "AcDbArc"...).
std::string_view geometrySubclass(std::string_view dxfType);

struct Vertex {
    Point3 point;
    double bulge = 0;
    double startWidth = 0, endWidth = 0;
    bool operator==(const Vertex&) const = default;
};

// LWPOLYLINE (points with elevation as Z) and POLYLINE (its VERTEX entities).
std::vector<Vertex> polylineVertices(const TagList& tags);
// Replaces the vertices. POLYLINE vertices get new VERTEX entities with handles from `db`; false,
// with the tags unchanged, when the drawing has not enough handles left for them.
bool setPolylineVertices(Database& db, TagList& tags, const std::vector<Vertex>& vertices);

// All points of one code in a subclass, in order: SPLINE control points (10) and fit points (11),
// MLINE vertices (11), WIPEOUT boundary (14), LEADER vertices (10).
std::vector<Point3> pointList(const TagList& tags, std::string_view marker, int code);
// Replaces them; the count tag (SPLINE 73/74, MLINE 72, WIPEOUT 91) is kept in step.
bool setPointList(TagList& tags, std::string_view marker, int code, const std::vector<Point3>& points);

// MLINE vertices (WCS). Writing them recomputes what each vertex carries from the multiline's
// style, justification (70), scale (40), closed flag and extrusion: the segment direction, the
// miter (bisecting the corner; at open ends turned by the style's end angles) and each element's
// offset along the miter, as CAD programs store them. A vertex that repeats the one before is
// dropped. Fails for fewer than two vertices or a multiline whose style is missing.
std::vector<Point3> mlineVertices(const TagList& tags);
bool setMlineVertices(const Database& db, TagList& tags, const std::vector<Point3>& vertices);

// HATCH boundary paths, every kind: polyline paths and edge paths of lines, arcs, elliptic arcs
// and splines. Edge data is kept as its tags so that a path written back is the path read.
struct HatchEdge {
    int type = 1;  // 1 line, 2 circular arc, 3 elliptic arc, 4 spline
    TagList data;  // the edge's tags after its type tag
};
struct HatchPath {
    int flags = 0;  // bit 2: polyline path
    bool closed = true;
    std::vector<Vertex> vertices;  // polyline paths
    std::vector<HatchEdge> edges;  // edge paths
    std::vector<Handle> sources;   // associated boundary objects
};
std::vector<HatchPath> hatchPaths(const TagList& tags);
bool setHatchPaths(TagList& tags, const std::vector<HatchPath>& paths);

// INSERT attributes: tag (2) and value (1) of each ATTRIB.
struct Attribute {
    std::string tag, value;
    Handle handle = kNoHandle;
};
std::vector<Attribute> attributes(const TagList& tags);
bool setAttributeValue(TagList& tags, std::string_view tag, std::string_view value);

}  // namespace veltarn::db
