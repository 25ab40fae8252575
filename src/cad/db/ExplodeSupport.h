// What the explode code shares between breaking polylines into pieces and placing a block's
// entities: the entity's own tags, its plane, the polyline group codes and flags, and errors.
#pragma once

#include "cad/db/Database.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"

#include <cmath>
#include <numbers>
#include <string>

namespace veltarn::db::explode_support {

inline constexpr double kDegrees = 180 / std::numbers::pi;

// POLYLINE, VERTEX and LWPOLYLINE group codes.
inline constexpr int kElevation = 38, kBulge = 42, kConstantWidth = 43, kStartWidth = 40, kEndWidth = 41;
// POLYLINE flags (70) and the VERTEX flag of a spline's frame.
inline constexpr int kClosed = 1, kSplineFrame = 16, kPolyline3d = 8, kPolygonMesh = 16, kPolyfaceMesh = 64;

inline Error fail(std::string message) { return dxf::makeError(std::move(message)); }

// The end of an entity's own tags: where its first VERTEX, ATTRIB or SEQEND starts.
inline std::size_t ownEnd(const TagList& tags) {
    std::size_t end = tags.find(gc::kStructure, 1);
    return end == TagList::npos ? tags.size() : end;
}

inline Point3 normalIn(const TagList& tags, std::size_t from, std::size_t to) {
    return tags.point(gc::kNormalX, from, to).value_or(Point3{0, 0, 1});
}

inline bool isDefaultNormal(const Point3& n) { return std::abs(n.x) < 1e-12 && std::abs(n.y) < 1e-12 && n.z > 0; }

// A new entity of `type` with the source's common properties (layer, colour, linetype,
// lineweight...), in the source's form (subclass markers or not); geometry follows.
TagList pieceStart(const TagList& source, std::string_view type);

// Adds the extrusion when it is not the default.
void addNormal(TagList& tags, const Point3& normal);

}  // namespace veltarn::db::explode_support
