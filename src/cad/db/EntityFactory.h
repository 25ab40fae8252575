// New entities with the subclass markers and defaults a CAD program writes, in the form of the
// drawing's version (R12: no markers). Append the result with Database::appendEntity.
#pragma once

#include "cad/db/Geometry.h"

#include <string>
#include <vector>

namespace veltarn::db {

// The start every entity shares: type, AcDbEntity, the layer ($CLAYER when `layer` is empty).
TagList newEntity(const Database& db, std::string_view type, std::string_view layer = {});

TagList newPoint(const Database& db, const Point3& at);
TagList newLine(const Database& db, const Point3& from, const Point3& to);
TagList newCircle(const Database& db, const Point3& center, double radius);
TagList newArc(const Database& db, const Point3& center, double radius, double startDegrees, double endDegrees);
TagList newLwpolyline(const Database& db, const std::vector<Vertex>& vertices, bool closed);
TagList newText(const Database& db, const Point3& at, double height, std::string_view text);
TagList newMtext(const Database& db, const Point3& at, double height, std::string_view text);
TagList newInsert(const Database& db, std::string_view block, const Point3& at, double scale = 1, double rotationDegrees = 0);
// A multiline through `vertices` in the style, justification and scale the drawing draws with
// ($CMLSTYLE, $CMLJUST, $CMLSCALE; "Standard" when the style is missing). Empty tags when the
// drawing has no such style or fewer than two vertices are given.
TagList newMline(const Database& db, const std::vector<Point3>& vertices, bool closed);
// A hatch of one closed polyline path; "SOLID" gives a solid fill.
TagList newHatch(const Database& db, std::string_view pattern, const std::vector<Vertex>& boundary);

}  // namespace veltarn::db
