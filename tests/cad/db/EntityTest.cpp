// Entities: kinds, common and kind-specific properties, geometry, creation with defaults.
#include "TestSupport.h"

#include "cad/db/EntityFactory.h"
#include "cad/db/EntityKind.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace veltarn::db {
namespace {

std::string dumpEntities(const std::filesystem::path& file) {
    std::string out;
    EXPECT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/dump_entities.py '" + file.string() + "'", &out), 0) << out;
    return out;
}

std::string lineOf(const std::string& dump, Handle handle) {
    std::string key = formatHandle(handle) + " ";
    for (std::size_t at = 0; at < dump.size();) {
        std::size_t end = dump.find('\n', at);
        std::string line = dump.substr(at, end - at);
        if (line.rfind(key, 0) == 0) return line;
        if (end == std::string::npos) break;
        at = end + 1;
    }
    return {};
}

// The module's type names for these kinds are checked where they are mapped: in the seam
// (tests/cad/seam/EntityClassificationTest.cpp).
TEST(EntityKinds, SplitDxfTypesWhereTheirFlagsMakeAnotherKind) {
    Database db = test::loadOrFail(test::generated("all-2018.dxf", "60 --kinds all"));
    std::map<std::string, std::set<EntityKind>> seen;
    for (Handle entity : db.entitiesOf(db.modelSpace())) {
        TagList tags = db.tags(entity);
        std::string key(tags.type());
        if (key == "POLYLINE") key += std::to_string(tags.integer(gc::kFlags).value_or(0) & (8 | 64));
        seen[key].insert(entityKind(tags));
        EXPECT_FALSE(commonProperties(tags).layer.empty());  // every kind, modelled or not, has its layer
    }
    using enum EntityKind;
    std::map<std::string, std::set<EntityKind>> expected{{"LINE", {Line}},
                                                         {"CIRCLE", {Circle}},
                                                         {"ARC", {Arc}},
                                                         {"LWPOLYLINE", {LwPolyline}},
                                                         {"TEXT", {Text}},
                                                         {"INSERT", {BlockReference}},
                                                         {"POINT", {Point}},
                                                         {"ELLIPSE", {Ellipse}},
                                                         {"POLYLINE0", {Polyline2d}},
                                                         {"POLYLINE8", {Polyline3d}},
                                                         {"POLYLINE64", {PolyfaceMesh}},
                                                         {"3DFACE", {Face3d}},
                                                         {"SOLID", {Solid2d}},
                                                         {"SPLINE", {Spline}},
                                                         {"XLINE", {Xline}},
                                                         {"RAY", {Ray}},
                                                         {"MTEXT", {MText}},
                                                         {"HATCH", {Hatch}},
                                                         {"DIMENSION", {Dimension}},
                                                         {"MLINE", {Mline}},
                                                         {"MULTILEADER", {Multileader}},
                                                         {"WIPEOUT", {Wipeout}},
                                                         {"MESH", {Mesh}}};
    EXPECT_EQ(seen, expected);

    TagList minsert{{0, "INSERT"}, {100, "AcDbEntity"}, {100, "AcDbMInsertBlock"}, {2, "B"}, {70, "3"}, {71, "2"}};
    EXPECT_EQ(entityKind(minsert), MultipleInsert);
    EXPECT_EQ(entityKind(TagList{{0, "POLYLINE"}, {70, "16"}}), PolygonMesh);
    EXPECT_EQ(entityKind(TagList{{0, "ATTDEF"}}), AttributeDefinition);
    EXPECT_EQ(entityKind(TagList{{0, "IMAGE"}}), Other);
}

TEST(EntityProperties, CommonPropertiesAreWrittenAsOtherReadersExpect) {
    Database db = Database::createNew();
    ASSERT_TRUE(writeLayer(db, Layer{.name = "Roads"}).ok());
    ASSERT_TRUE(addLinetype(db, "DASHED").ok());
    Handle a = db.appendEntity(db.modelSpace(), newLine(db, {0, 0, 0}, {1, 1, 0})).value();
    Handle b = db.appendEntity(db.modelSpace(), newLine(db, {0, 0, 0}, {2, 1, 0})).value();
    {
        ObjectWriter writer = db.openForWrite(a);
        TagList& tags = writer.tags();
        setLayer(tags, "Roads");
        setColor(tags, Color::ofRgb(255, 128, 0, 30));
        setLinetype(tags, "DASHED");
        setLinetypeScale(tags, 2.5);
        setLineweight(tags, 35);
    }
    {
        ObjectWriter writer = db.openForWrite(b);
        setColor(writer.tags(), Color::ofRgb(1, 2, 3));
        setColor(writer.tags(), Color::byBlock());  // an index colour drops the true colour
    }
    CommonProperties props = commonProperties(db.tags(a));
    EXPECT_EQ(props.layer, "Roads");
    EXPECT_EQ(props.color, Color::ofRgb(255, 128, 0, 30));
    EXPECT_EQ(props.linetypeScale, 2.5);
    EXPECT_EQ(commonProperties(db.tags(b)).color, Color::byBlock());
    EXPECT_EQ(commonProperties(TagList{{0, "LINE"}, {8, "0"}}).color, Color::byLayer());

    auto dir = test::scratchDir("common");
    ASSERT_TRUE(db.save(dir / "c.dxf").ok());
    EXPECT_EQ(test::audit(dir / "c.dxf"), "");
    std::string dump = dumpEntities(dir / "c.dxf");
    EXPECT_EQ(lineOf(dump, a), formatHandle(a) + " LINE layer=Roads color=30 rgb=FF8000 linetype=DASHED ltscale=2.5 lineweight=35");
    EXPECT_EQ(lineOf(dump, b), formatHandle(b) + " LINE layer=0 color=0 linetype=BYLAYER ltscale=1 lineweight=-1");
}

TEST(EntityProperties, KindPropertiesAreReadAndWrittenWhereTheKindCarriesThem) {
    Database db = Database::createNew();
    ASSERT_TRUE(db.addBlock("Tree").ok());
    Handle insert = db.appendEntity(db.modelSpace(), newInsert(db, "Tree", {1, 1, 0})).value();
    Handle text = db.appendEntity(db.modelSpace(), newText(db, {0, 0, 0}, 2.5, "Label")).value();
    std::string longText;
    for (int i = 0; i < 120; ++i) longText += "Đž ";
    Handle mtext = db.appendEntity(db.modelSpace(), newMtext(db, {0, 5, 0}, 2, longText)).value();
    Handle polyline = db.appendEntity(db.modelSpace(), newLwpolyline(db, {{{0, 0, 0}}, {{5, 0, 0}}, {{5, 5, 0}}}, false)).value();
    Handle hatch = db.appendEntity(db.modelSpace(), newHatch(db, "SOLID", {{{0, 0, 0}}, {{5, 0, 0}}, {{5, 5, 0}}})).value();
    ASSERT_TRUE(ensureAppId(db, "HATCHBACKGROUNDCOLOR").ok());
    {
        ObjectWriter w = db.openForWrite(insert);
        EXPECT_TRUE(setRealProperty(w.tags(), Property::ScaleX, 2));
        EXPECT_FALSE(setRealProperty(w.tags(), Property::TextHeight, 2));  // an insert has no text height
        EXPECT_FALSE(setClosed(w.tags(), true));
    }
    {
        ObjectWriter w = db.openForWrite(text);
        EXPECT_TRUE(setRealProperty(w.tags(), Property::TextHeight, 3.5));
        EXPECT_TRUE(setTextJustification(w.tags(), 13));  // bottom center
    }
    {
        ObjectWriter w = db.openForWrite(mtext);
        EXPECT_TRUE(setProperty(w.tags(), Property::AttachmentPoint, "5"));
        EXPECT_TRUE(setBackgroundColor(w.tags(), Color::ofIndex(3)));
    }
    {
        ObjectWriter w = db.openForWrite(polyline);
        EXPECT_TRUE(setClosed(w.tags(), true));
        EXPECT_TRUE(setRealProperty(w.tags(), Property::ConstantWidth, 0.5));
        EXPECT_TRUE(setRealProperty(w.tags(), Property::Elevation, 12));
    }
    {
        ObjectWriter w = db.openForWrite(hatch);
        EXPECT_TRUE(setProperty(w.tags(), Property::PatternName, "ANSI31"));
        EXPECT_TRUE(setRealProperty(w.tags(), Property::PatternAngle, 45));
        EXPECT_TRUE(setBackgroundColor(w.tags(), Color::ofRgb(10, 20, 30)));
    }
    Database back = test::parseOrFail(db.toText().value());
    EXPECT_EQ(realProperty(back.tags(insert), Property::ScaleX), 2);
    EXPECT_EQ(property(back.tags(insert), Property::BlockName), "Tree");
    EXPECT_EQ(textJustification(back.tags(text)), 13);
    EXPECT_EQ(textContents(back.tags(mtext)), longText);  // split into chunks and joined again
    EXPECT_EQ(backgroundColor(back.tags(mtext)), Color::ofIndex(3));
    EXPECT_EQ(closed(back.tags(polyline)), true);
    EXPECT_EQ(polylineVertices(back.tags(polyline)).at(2).point, (Point3{5, 5, 12}));
    EXPECT_EQ(backgroundColor(back.tags(hatch))->rgb, 0x0A141Eu);
    EXPECT_EQ(property(back.tags(hatch), Property::PatternName), "ANSI31");

    // Every justification survives the split into horizontal and vertical codes.
    TagList probe = newText(db, {}, 1, "x");
    for (int j = 0; j <= 14; ++j) {
        ASSERT_TRUE(setTextJustification(probe, j));
        EXPECT_EQ(textJustification(probe), j);
    }
    EXPECT_FALSE(setTextJustification(probe, 15));

    auto dir = test::scratchDir("kinds");
    ASSERT_TRUE(back.save(dir / "k.dxf").ok());
    EXPECT_EQ(test::audit(dir / "k.dxf"), "");
    std::string dump = dumpEntities(dir / "k.dxf");
    EXPECT_NE(lineOf(dump, text).find("height=3.5 halign=1 valign=1"), std::string::npos) << dump;
    EXPECT_NE(lineOf(dump, polyline).find("closed=1 width=0.5 points=3"), std::string::npos) << dump;
    EXPECT_NE(lineOf(dump, insert).find("name=Tree scale=2"), std::string::npos) << dump;
    EXPECT_NE(lineOf(dump, hatch).find("pattern=ANSI31 solid=0 paths=1"), std::string::npos) << dump;
    EXPECT_NE(lineOf(dump, mtext).find("attach=5"), std::string::npos) << dump;
}

TEST(Geometry, PolylineVerticesWithBulgesAreReplacedInBothPolylineForms) {
    Database db = test::loadOrFail(test::generated("all-2018.dxf", "60 --kinds all"));
    std::vector<Vertex> shape{{{0, 0, 0}, 0.5}, {{10, 0, 0}, 0, 1, 2}, {{10, 10, 0}, -1}};
    int changed = 0;
    for (Handle entity : db.entitiesOf(db.modelSpace())) {
        std::string_view type = db.typeName(entity);
        if (type != "LWPOLYLINE" && !(type == "POLYLINE" && entityKind(db.tags(entity)) == EntityKind::Polyline2d))
            continue;
        ObjectWriter w = db.openForWrite(entity);
        ASSERT_TRUE(setPolylineVertices(db, w.tags(), shape));
        ++changed;
    }
    ASSERT_GE(changed, 2);
    auto dir = test::scratchDir("vertices");
    ASSERT_TRUE(db.save(dir / "v.dxf").ok());
    EXPECT_EQ(test::audit(dir / "v.dxf"), "");
    Database back = test::loadOrFail(dir / "v.dxf");
    for (Handle entity : back.entitiesOf(back.modelSpace())) {
        std::string_view type = back.typeName(entity);
        if (type != "LWPOLYLINE" && !(type == "POLYLINE" && entityKind(back.tags(entity)) == EntityKind::Polyline2d))
            continue;
        EXPECT_EQ(polylineVertices(back.tags(entity)), shape) << type;
        EXPECT_LT(back.handleSeed() - 1, back.handleSeed());
    }
}

TEST(Geometry, HatchBoundariesOfEveryKindAreReadAndWrittenBack) {
    auto dir = test::scratchDir("hatch");
    std::string output;
    ASSERT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/make_edge_hatch.py " + (dir / "in.dxf").string(), &output), 0) << output;
    Database db = test::loadOrFail(dir / "in.dxf");
    Handle hatch = db.entitiesOf(db.modelSpace()).at(0);
    std::vector<HatchPath> paths = hatchPaths(db.tags(hatch));
    ASSERT_EQ(paths.size(), 2u);
    std::vector<int> kinds;
    for (const auto& edge : paths[0].edges) kinds.push_back(edge.type);
    EXPECT_EQ(kinds, (std::vector<int>{1, 2, 3, 4}));
    ASSERT_EQ(paths[1].vertices.size(), 3u);
    EXPECT_EQ(paths[1].vertices[0].bulge, 0.5);

    // Written back, with the polyline path moved, the boundaries read the same to both readers.
    paths[1].vertices[2].point = {6, 6, 0};
    {
        ObjectWriter w = db.openForWrite(hatch);
        ASSERT_TRUE(setHatchPaths(w.tags(), paths));
    }
    std::vector<HatchPath> again = hatchPaths(db.tags(hatch));
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(again[1].vertices, paths[1].vertices);
    for (std::size_t e = 0; e < 4; ++e) EXPECT_EQ(again[0].edges[e].data, paths[0].edges[e].data);
    ASSERT_TRUE(db.save(dir / "out.dxf").ok());
    EXPECT_EQ(test::audit(dir / "out.dxf"), "");
    EXPECT_NE(dumpEntities(dir / "out.dxf").find("paths=2"), std::string::npos);
}

// A multiline's vertices carry its directions, miters and element offsets: written from the style,
// justification and scale as an independent writer computes them.
TEST(Geometry, MultilineVerticesAreWrittenWithTheirMitersAndOffsets) {
    auto dir = test::scratchDir("mline");
    const auto drawing = test::madeByScript("make_explode_kinds.py");
    Database db = test::loadOrFail(drawing);
    Handle model = db.modelSpace();
    std::vector<Handle> checked;
    // Drawn in the drawing's current style, then centred and doubled.
    checked.push_back(db.appendEntity(model, newMline(db, {{0, 20, 0}, {10, 20, 0}, {10, 26, 0}, {4, 21, 0}}, false)).value());
    ASSERT_TRUE(db.setHeaderVariable("$CMLJUST", 70, "1").ok());
    ASSERT_TRUE(db.setHeaderVariable("$CMLSCALE", 40, "2").ok());
    checked.push_back(db.appendEntity(model, newMline(db, {{20, 20, 0}, {30, 20, 0}, {25, 28, 0}}, true)).value());
    EXPECT_EQ(mlineStyle(db.tags(checked.back())), "CAPPED");
    // An existing multiline moved to new vertices, one of them repeated.
    Handle existing = db.entitiesOf(model).front();
    const std::vector<Point3> moved{{0, -10, 0}, {5, -5, 0}, {5, -5, 0}, {12, -5, 0}};
    {
        ObjectWriter w = db.openForWrite(existing);
        ASSERT_TRUE(setMlineVertices(db, w.tags(), moved));
    }
    EXPECT_EQ(mlineVertices(db.tags(existing)), (std::vector<Point3>{moved[0], moved[1], moved[3]}));
    checked.push_back(existing);
    EXPECT_TRUE(newMline(db, {{0, 0, 0}}, false).empty());

    ASSERT_TRUE(db.save(dir / "out.dxf").ok());
    EXPECT_EQ(test::audit(dir / "out.dxf"), "");
    std::string handles;
    for (Handle h : checked) handles += (handles.empty() ? "" : ",") + formatHandle(h);
    std::string differences;
    EXPECT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/check_mlines.py " + (dir / "out.dxf").string() + " " + handles,
                              &differences), 0);
    EXPECT_EQ(differences, "");
}

TEST(EntityCreation, EveryFactoryKindIsCleanForTheAuditor) {
    Database db = Database::createNew();
    Handle block = db.addBlock("Mark").value();
    ASSERT_TRUE(db.appendEntity(block, newCircle(db, {0, 0, 0}, 1)).ok());
    std::vector<Vertex> square{{{0, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}, {{0, 1, 0}}};
    for (TagList tags : {newPoint(db, {1, 2, 3}), newLine(db, {0, 0, 0}, {1, 0, 0}), newCircle(db, {0, 0, 0}, 2),
                         newArc(db, {0, 0, 0}, 2, 0, 90), newLwpolyline(db, square, true), newText(db, {}, 1, "t"),
                         newMtext(db, {}, 1, "m"), newInsert(db, "Mark", {5, 5, 0}, 2, 30), newHatch(db, "SOLID", square),
                         newHatch(db, "ANSI31", square), newMline(db, {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}}, false)})
        ASSERT_TRUE(db.appendEntity(db.modelSpace(), std::move(tags)).ok());
    auto dir = test::scratchDir("factory");
    ASSERT_TRUE(db.save(dir / "f.dxf").ok());
    EXPECT_EQ(test::audit(dir / "f.dxf"), "");
    std::string dump = dumpEntities(dir / "f.dxf");
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), 11);
}

}  // namespace
}  // namespace veltarn::db
