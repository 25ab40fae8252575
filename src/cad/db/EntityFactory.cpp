#include "cad/db/EntityFactory.h"

#include "cad/db/EntityProperties.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/MlineStyle.h"
#include "cad/db/SymbolTables.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {

TagList newEntity(const Database& db, std::string_view type, std::string_view layer) {
    TagList tags{{0, std::string(type)}};
    if (!db.isR12()) tags.add(gc::kSubclass, "AcDbEntity");
    std::string name = layer.empty() ? db.headerVariable("$CLAYER").value_or("0") : std::string(layer);
    tags.add(gc::kLayer, std::string(dxf::trimSpaces(name)));
    return tags;
}

static void marker(const Database& db, TagList& tags, std::string_view name) {
    if (!db.isR12()) tags.add(gc::kSubclass, std::string(name));
}

TagList newPoint(const Database& db, const Point3& at) {
    TagList tags = newEntity(db, "POINT");
    marker(db, tags, "AcDbPoint");
    tags.addPoint(gc::kX, at);
    return tags;
}

TagList newLine(const Database& db, const Point3& from, const Point3& to) {
    TagList tags = newEntity(db, "LINE");
    marker(db, tags, "AcDbLine");
    tags.addPoint(gc::kX, from);
    tags.addPoint(gc::kX2, to);
    return tags;
}

TagList newCircle(const Database& db, const Point3& center, double radius) {
    TagList tags = newEntity(db, "CIRCLE");
    marker(db, tags, "AcDbCircle");
    tags.addPoint(gc::kX, center);
    tags.addReal(gc::kReal, radius);
    return tags;
}

TagList newArc(const Database& db, const Point3& center, double radius, double startDegrees, double endDegrees) {
    TagList tags = newEntity(db, "ARC");
    marker(db, tags, "AcDbCircle");
    tags.addPoint(gc::kX, center);
    tags.addReal(gc::kReal, radius);
    marker(db, tags, "AcDbArc");
    tags.addReal(gc::kAngle, startDegrees);
    tags.addReal(gc::kAngle2, endDegrees);
    return tags;
}

TagList newLwpolyline(const Database& db, const std::vector<Vertex>& vertices, bool closed) {
    TagList tags = newEntity(db, "LWPOLYLINE");
    tags.add(gc::kSubclass, "AcDbPolyline");
    tags.addInteger(gc::kCount90, static_cast<std::int64_t>(vertices.size()));
    tags.add(gc::kFlags, closed ? "1" : "0");
    tags.add(43, "0");
    for (const Vertex& v : vertices) {
        tags.addPoint2(gc::kX, v.point.x, v.point.y);
        if (v.startWidth != 0 || v.endWidth != 0) {
            tags.addReal(40, v.startWidth);
            tags.addReal(41, v.endWidth);
        }
        if (v.bulge != 0) tags.addReal(42, v.bulge);
    }
    return tags;
}

TagList newText(const Database& db, const Point3& at, double height, std::string_view text) {
    TagList tags = newEntity(db, "TEXT");
    marker(db, tags, "AcDbText");
    tags.addPoint(gc::kX, at);
    tags.addReal(gc::kReal, height);
    tags.add(gc::kText, std::string(text));
    tags.add(gc::kTextStyleName, std::string(dxf::trimSpaces(db.headerVariable("$TEXTSTYLE").value_or("Standard"))));
    marker(db, tags, "AcDbText");
    return tags;
}

TagList newMtext(const Database& db, const Point3& at, double height, std::string_view text) {
    TagList tags = newEntity(db, "MTEXT");
    tags.add(gc::kSubclass, "AcDbMText");
    tags.addPoint(gc::kX, at);
    tags.addReal(gc::kReal, height);
    tags.add(gc::kReal2, "0");
    tags.add(gc::kInt71, "1");
    tags.add(gc::kInt72, "5");
    tags.add(gc::kText, "");
    tags.add(gc::kTextStyleName, std::string(dxf::trimSpaces(db.headerVariable("$TEXTSTYLE").value_or("Standard"))));
    setTextContents(tags, text);
    return tags;
}

TagList newInsert(const Database& db, std::string_view block, const Point3& at, double scale, double rotationDegrees) {
    TagList tags = newEntity(db, "INSERT");
    marker(db, tags, "AcDbBlockReference");
    tags.add(gc::kName, std::string(block));
    tags.addPoint(gc::kX, at);
    if (scale != 1) {
        tags.addReal(gc::kReal2, scale);
        tags.addReal(gc::kReal3, scale);
        tags.addReal(gc::kReal4, scale);
    }
    if (rotationDegrees != 0) tags.addReal(gc::kAngle, rotationDegrees);
    return tags;
}

TagList newHatch(const Database& db, std::string_view pattern, const std::vector<Vertex>& boundary) {
    TagList tags = newEntity(db, "HATCH");
    bool solid = sameName(pattern, "SOLID");
    tags.add(gc::kSubclass, "AcDbHatch");
    tags.addPoint(gc::kX, {0, 0, boundary.empty() ? 0 : boundary[0].point.z});
    tags.add(210, "0");
    tags.add(220, "0");
    tags.add(230, "1");
    tags.add(gc::kName, std::string(pattern));
    tags.add(gc::kFlags, solid ? "1" : "0");
    tags.add(gc::kInt71, "0");
    tags.add(91, "0");
    tags.add(75, "1");  // hatch style: outer
    tags.add(76, "1");  // predefined pattern
    if (!solid) {
        tags.add(52, "0");
        tags.add(41, "1");
        tags.add(77, "0");
        tags.add(78, "0");
    }
    tags.add(98, "0");
    HatchPath path;
    path.flags = 1 | 2;  // external, polyline
    path.vertices = boundary;
    setHatchPaths(tags, {path});
    return tags;
}

TagList newMline(const Database& db, const std::vector<Point3>& vertices, bool closed) {
    std::string name = std::string(dxf::trimSpaces(db.headerVariable("$CMLSTYLE").value_or("Standard")));
    Handle style = namedEntry(db, "ACAD_MLINESTYLE", name);
    if (style == kNoHandle) style = namedEntry(db, "ACAD_MLINESTYLE", name = "Standard");
    auto definition = readMlineStyle(db, style);
    if (!definition || vertices.size() < 2) return {};
    TagList tags = newEntity(db, "MLINE");
    tags.add(gc::kSubclass, "AcDbMline");
    tags.add(gc::kName, definition->name.empty() ? name : definition->name);
    tags.add(340, formatHandle(style));
    tags.add(gc::kReal, db.headerVariable("$CMLSCALE").value_or("1"));
    tags.add(gc::kFlags, db.headerVariable("$CMLJUST").value_or("0"));
    tags.addInteger(gc::kInt71, closed ? 3 : 1);
    tags.addInteger(72, static_cast<std::int64_t>(vertices.size()));
    tags.addInteger(gc::kInt73, static_cast<std::int64_t>(definition->elements.size()));
    tags.addPoint(gc::kX, vertices[0]);
    tags.addPoint(gc::kNormalX, {0, 0, 1});
    if (!setMlineVertices(db, tags, vertices)) return {};
    return tags;
}

}  // namespace veltarn::db
