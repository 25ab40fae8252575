// The module's type names of the workbench's entities: the seam's class of each kind, named by
// the classifier.
#include "cad/seam/EntityClassification.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "TestSupport.h"
#include "cad/db/GroupCodes.h"
#include "classifier/EntityType.h"

namespace veltarn::seam {
namespace {

std::string typeName(const db::TagList& tags) {
    std::wstring_view name = veltarn::entityTypeName(entityClassOf(tags));
    return std::string(name.begin(), name.end());  // the names are ASCII
}

TEST(EntityClassification, MapToTheModulesTypeNamesByExactKind) {
    db::Database db = db::test::loadOrFail(db::test::generated("all-2018.dxf", "60 --kinds all"));
    std::map<std::string, std::set<std::string>> seen;
    for (db::Handle entity : db.entitiesOf(db.modelSpace())) {
        db::TagList tags = db.tags(entity);
        std::string key(tags.type());
        if (key == "POLYLINE") key += std::to_string(tags.integer(db::gc::kFlags).value_or(0) & (8 | 64));
        seen[key].insert(typeName(tags));
    }
    std::map<std::string, std::set<std::string>> expected{{"LINE", {"Line"}},
                                                          {"CIRCLE", {"Circle"}},
                                                          {"ARC", {"Arc"}},
                                                          {"LWPOLYLINE", {"Polyline"}},
                                                          {"TEXT", {"Text"}},
                                                          {"INSERT", {"BlockReference"}},
                                                          {"POINT", {"Point"}},
                                                          {"ELLIPSE", {"Ellipse"}},
                                                          {"POLYLINE0", {""}},
                                                          {"POLYLINE8", {"3DPolyline"}},
                                                          {"POLYLINE64", {"PolyFaceMesh"}},
                                                          {"3DFACE", {"3DFace"}},
                                                          {"SOLID", {""}},
                                                          {"SPLINE", {"Spline"}},
                                                          {"XLINE", {"Xline"}},
                                                          {"RAY", {"Ray"}},
                                                          {"MTEXT", {"MText"}},
                                                          {"HATCH", {"Hatch"}},
                                                          {"DIMENSION", {"Dimension"}},
                                                          {"MLINE", {"Mline"}},
                                                          {"MULTILEADER", {"MLeader"}},
                                                          {"WIPEOUT", {"Wipeout"}},
                                                          {"MESH", {"Mesh"}}};
    EXPECT_EQ(seen, expected);

    db::TagList radial{
        {0, "DIMENSION"}, {100, "AcDbEntity"}, {100, "AcDbDimension"}, {70, "4"}, {100, "AcDbRadialDimension"}};
    db::TagList minsert{{0, "INSERT"}, {100, "AcDbEntity"}, {100, "AcDbMInsertBlock"}, {2, "B"}, {70, "3"}, {71, "2"}};
    EXPECT_EQ(typeName(radial), "Dimension");
    EXPECT_EQ(typeName(db::TagList{{0, "ARC_DIMENSION"}}), "Dimension");
    EXPECT_EQ(typeName(minsert), "");
    EXPECT_EQ(typeName(db::TagList{{0, "ATTDEF"}}), "");
    EXPECT_EQ(typeName(db::TagList{{0, "EXTRUDEDSURFACE"}}), "");
}

}  // namespace
}  // namespace veltarn::seam
