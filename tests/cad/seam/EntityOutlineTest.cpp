// Outlines as the module sees them through the seam: every kind of a drawing ezdxf wrote gives the
// GIS shape its kind has, or none where it has no finite one.
#include "cad/seam/WorkbenchDatabase.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "TestSupport.h"
#include "classifier/EntityType.h"
#include "host/Utf8.h"

namespace veltarn::seam {
namespace {

std::string shapeName(const std::optional<host::EntityOutline>& outline) {
    if (!outline) return "none";
    switch (outline->kind) {
        case host::EntityOutline::Kind::kPoint:
            return "point";
        case host::EntityOutline::Kind::kLine:
            return "line";
        case host::EntityOutline::Kind::kPolygon:
            return "polygon";
    }
    return "?";
}

TEST(EntityOutline, EveryKindGivesItsShapeThroughTheSeam) {
    auto read = WorkbenchDatabase::read(db::test::generated("all-2018.dxf", "60 --kinds all"));
    ASSERT_TRUE(read) << read.message();
    WorkbenchDatabase& drawing = *read.value();
    std::map<std::string, std::set<std::string>> seen;
    for (host::ObjectId id : drawing.blockEntities(drawing.modelSpace())) {
        auto entity = drawing.openEntity(id, host::OpenMode::kRead);
        ASSERT_TRUE(entity);
        const auto outline = entity->outline(0.01);
        std::string type = host::toUtf8(entity->dxfName());
        if (type == "POLYLINE") type += "/" + host::toUtf8(entityTypeOf(*entity));
        seen[type].insert(shapeName(outline));
        if (!outline) continue;
        EXPECT_FALSE(outline->parts.empty()) << type;
        if (type == "WIPEOUT") {
            // The generator's wipeouts are right triangles of legs 4 and 3: their clip boundary in
            // image units, placed by the insertion point and the U and V vectors.
            const auto& ring = outline->parts.front();
            double area = 0;
            for (std::size_t i = 0; i < ring.size(); ++i) {
                const host::Point3d& a = ring[i];
                const host::Point3d& b = ring[(i + 1) % ring.size()];
                area += (a.x * b.y - b.x * a.y) / 2;
            }
            EXPECT_NEAR(area, 6, 1e-6);
        }
        for (const auto& part : outline->parts) {
            const std::size_t least = outline->kind == host::EntityOutline::Kind::kPoint  ? 1
                                      : outline->kind == host::EntityOutline::Kind::kLine ? 2
                                                                                          : 3;
            EXPECT_GE(part.size(), least) << type;
            if (outline->kind == host::EntityOutline::Kind::kPolygon) {
                EXPECT_NE(part.front(), part.back()) << type;
            }
        }
    }
    // The generator's polylines are closed or not by chance; its 2D POLYLINEs are open.
    std::map<std::string, std::set<std::string>> expected{{"LINE", {"line"}},
                                                          {"CIRCLE", {"polygon"}},
                                                          {"ARC", {"line"}},
                                                          {"LWPOLYLINE", {"line", "polygon"}},
                                                          {"TEXT", {"point"}},
                                                          {"INSERT", {"point"}},
                                                          {"POINT", {"point"}},
                                                          {"ELLIPSE", {"polygon"}},
                                                          {"POLYLINE/", {"line"}},
                                                          {"POLYLINE/3DPolyline", {"line"}},
                                                          {"POLYLINE/PolyFaceMesh", {"none"}},
                                                          {"3DFACE", {"polygon"}},
                                                          {"SOLID", {"polygon"}},
                                                          {"SPLINE", {"line"}},
                                                          {"XLINE", {"none"}},
                                                          {"RAY", {"none"}},
                                                          {"MTEXT", {"point"}},
                                                          {"HATCH", {"polygon"}},
                                                          {"DIMENSION", {"point"}},
                                                          {"MLINE", {"line"}},
                                                          {"MULTILEADER", {"point"}},
                                                          {"WIPEOUT", {"polygon"}},
                                                          {"MESH", {"none"}}};
    EXPECT_EQ(seen, expected);
}

}  // namespace
}  // namespace veltarn::seam
