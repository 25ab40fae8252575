// The workbench's drawing behind the seam: open modes, reactors, xrecords, entity properties and
// draw order, over real new drawings.
#include "cad/seam/WorkbenchDatabase.h"

#include <gtest/gtest.h>

#include <numbers>

#include "cad/db/EntityFactory.h"
#include "cad/db/EntityKind.h"
#include "cad/db/SymbolTables.h"
#include "cad/seam/SortentsTable.h"
#include "host/DatabaseReactor.h"

namespace veltarn::seam {
namespace {

using host::EntityProperty;
using host::ObjectId;
using host::OpenMode;
using host::PropertyValue;

class WorkbenchDatabaseTest : public ::testing::Test {
protected:
    ObjectId addLine(const std::string& layer = "0") {
        db::TagList tags = db::newLine(drawing.raw(), {0, 0, 0}, {10, 0, 0});
        tags.setIn("AcDbEntity", 8, layer);
        auto handle = drawing.raw().appendEntity(drawing.raw().modelSpace(), tags);
        EXPECT_TRUE(handle.ok());
        return {*handle};
    }
    void addLayer(const std::string& name, int flags) {
        db::Layer layer;
        layer.name = name;
        layer.flags = flags;
        ASSERT_TRUE(db::writeLayer(drawing.raw(), layer).ok());
    }

    WorkbenchDatabase drawing{db::Database::createNew()};
};

struct Recorder : host::DatabaseReactor {
    void objectAppended(host::Database&, ObjectId id) override { events.push_back("+" + std::to_string(id.handle)); }
    void objectErased(host::Database&, ObjectId id, bool erased) override {
        events.push_back((erased ? "-" : "~") + std::to_string(id.handle));
    }
    std::vector<std::string> events;
};

TEST_F(WorkbenchDatabaseTest, ManyReadersOrOneWriterAndNoWritesOnALockedLayer) {
    const ObjectId line = addLine();
    {
        auto first = drawing.openObject(line, OpenMode::kRead);
        auto second = drawing.openObject(line, OpenMode::kRead);
        ASSERT_TRUE(first && second);
        EXPECT_EQ(drawing.openObject(line, OpenMode::kWrite), nullptr);
        EXPECT_FALSE(first->upgradeOpen()) << "another reader holds it";
        second.reset();
        EXPECT_TRUE(first->upgradeOpen());
        EXPECT_EQ(drawing.openObject(line, OpenMode::kRead), nullptr) << "a writer excludes readers";
        first->downgradeOpen();
        EXPECT_NE(drawing.openObject(line, OpenMode::kRead), nullptr);
    }
    EXPECT_EQ(drawing.openCount(), 0u) << "every open is released when its object goes";

    addLayer("Fixed", db::kLayerLocked);
    const ObjectId locked = addLine("Fixed");
    EXPECT_EQ(drawing.openObject(locked, OpenMode::kWrite), nullptr);
    auto reader = drawing.openEntity(locked, OpenMode::kRead);
    ASSERT_TRUE(reader);
    EXPECT_FALSE(reader->upgradeOpen());
    EXPECT_EQ(reader->layer(), L"Fixed");

    EXPECT_EQ(drawing.openObject({0xFFFFFF}, OpenMode::kRead), nullptr);
}

TEST_F(WorkbenchDatabaseTest, ReactorsHearAppendsErasesAndUndoneCommands) {
    Recorder recorder;
    drawing.addReactor(&recorder);
    drawing.raw().beginCommand("LINE");
    auto entity = drawing.appendEntity(drawing.modelSpace(), host::EntityClass::kLine);
    drawing.raw().endCommand();
    ASSERT_TRUE(entity);
    const std::string id = std::to_string(entity->id().handle);
    drawing.raw().beginCommand("ERASE");
    EXPECT_TRUE(entity->erase());
    drawing.raw().endCommand();
    entity.reset();
    EXPECT_TRUE(drawing.undo());  // the erase
    EXPECT_TRUE(drawing.undo());  // the line
    EXPECT_TRUE(drawing.redo());
    EXPECT_EQ(recorder.events, (std::vector<std::string>{"+" + id, "-" + id, "~" + id, "-" + id, "~" + id}));
    EXPECT_FALSE(drawing.redo() && drawing.redo()) << "one redo is left, not two";

    drawing.removeReactor(&recorder);
    recorder.events.clear();
    (void)drawing.appendEntity(drawing.modelSpace(), host::EntityClass::kCircle);
    EXPECT_TRUE(recorder.events.empty());
}

TEST_F(WorkbenchDatabaseTest, XrecordsInAnExtensionDictionaryKeepTheirValues) {
    const ObjectId line = addLine();
    auto entity = drawing.openEntity(line, OpenMode::kWrite);
    ASSERT_TRUE(entity && entity->createExtensionDictionary());
    auto dictionary = drawing.openDictionary(entity->extensionDictionary(), OpenMode::kWrite);
    ASSERT_TRUE(dictionary);
    const ObjectId record = dictionary->addXrecord(L"Roads");
    ASSERT_TRUE(record);
    EXPECT_FALSE(dictionary->addXrecord(L"ROADS")) << "keys compare without regard to case";
    dictionary.reset();

    auto xrecord = drawing.openXrecord(record, OpenMode::kWrite);
    ASSERT_TRUE(xrecord);
    const host::ResultBuffer values = {{1, std::wstring(L"Straße")}, {40, 2.5}, {90, std::int32_t{-7}},
                                       {10, host::Point3d{1, 2, 3}}, {160, std::int64_t{1} << 40}};
    ASSERT_TRUE(xrecord->setData(values));
    EXPECT_FALSE(xrecord->setData({{90, std::wstring(L"text")}})) << "a text under an integer code";
    EXPECT_EQ(xrecord->data(), values);
    xrecord.reset();

    EXPECT_FALSE(entity->releaseExtensionDictionary()) << "a dictionary with entries stays";
    EXPECT_TRUE(entity->extensionDictionary());
}

TEST_F(WorkbenchDatabaseTest, EntityPropertiesReadAndRefuseWhatTheDrawingLacks) {
    auto circle = drawing.appendEntity(drawing.modelSpace(), host::EntityClass::kCircle);
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->entityClass(), host::EntityClass::kCircle);
    EXPECT_EQ(circle->dxfName(), L"CIRCLE");
    EXPECT_TRUE(circle->setProperty(EntityProperty::kCenter, host::Point3d{5, 6, 0}));
    EXPECT_TRUE(circle->setProperty(EntityProperty::kRadius, 2.5));
    EXPECT_EQ(circle->property(EntityProperty::kCenter), PropertyValue(host::Point3d{5, 6, 0}));
    EXPECT_EQ(circle->property(EntityProperty::kRadius), PropertyValue(2.5));
    EXPECT_FALSE(circle->property(EntityProperty::kTextString)) << "a circle has no text";

    EXPECT_FALSE(circle->setProperty(EntityProperty::kLayer, std::wstring(L"Missing")));
    EXPECT_FALSE(circle->setProperty(EntityProperty::kLinetype, std::wstring(L"Missing")));
    EXPECT_FALSE(circle->setProperty(EntityProperty::kColor, 3.0)) << "wrong value type";
    EXPECT_EQ(circle->layer(), L"0");
    EXPECT_TRUE(circle->setProperty(EntityProperty::kColor, host::Color::fromRgb(10, 20, 30)));
    EXPECT_EQ(circle->property(EntityProperty::kColor), PropertyValue(host::Color::fromRgb(10, 20, 30)));

    auto text = drawing.appendEntity(drawing.modelSpace(), host::EntityClass::kText);
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->setProperty(EntityProperty::kRotation, std::numbers::pi / 2));
    auto rotation = text->property(EntityProperty::kRotation);
    ASSERT_TRUE(rotation);
    EXPECT_NEAR(std::get<double>(*rotation), std::numbers::pi / 2, 1e-12) << "radians in, radians out";
    EXPECT_TRUE(text->setProperty(EntityProperty::kTextString, std::wstring(L"Km 12")));
    EXPECT_EQ(text->textProperty(EntityProperty::kTextString), L"Km 12");

    auto reader = drawing.openEntity(addLine(), OpenMode::kRead);
    EXPECT_FALSE(reader->setProperty(EntityProperty::kColor, host::Color::fromIndex(1))) << "needs a write open";
}

TEST_F(WorkbenchDatabaseTest, DrawOrderExchangesThePlacesOfTheGivenEntitiesOnly) {
    const ObjectId a = addLine(), b = addLine(), c = addLine(), d = addLine();
    const db::Handle space = drawing.raw().modelSpace();
    ASSERT_TRUE(drawing.setRelativeDrawOrder(drawing.modelSpace(), {d, b}));
    EXPECT_EQ(drawOrder(drawing.raw(), space), (std::vector<db::Handle>{a.handle, d.handle, c.handle, b.handle}));
    ASSERT_TRUE(drawing.setRelativeDrawOrder(drawing.modelSpace(), {b, a}));
    EXPECT_EQ(drawOrder(drawing.raw(), space), (std::vector<db::Handle>{b.handle, d.handle, c.handle, a.handle}));
    EXPECT_FALSE(drawing.setRelativeDrawOrder(drawing.modelSpace(), {a, drawing.namedObjectsDictionary()}));
}

TEST_F(WorkbenchDatabaseTest, ManyObjectsHeldOpenKeepTheirOwnReadersAndWriters) {
    // Past a few dozen open objects the open table is indexed, and shrinks back as they close.
    std::vector<ObjectId> lines;
    for (int i = 0; i < 100; ++i) lines.push_back(addLine());
    std::vector<std::unique_ptr<host::DbObject>> held;
    for (std::size_t i = 0; i < lines.size(); ++i)
        held.push_back(drawing.openObject(lines[i], i % 2 ? OpenMode::kWrite : OpenMode::kRead));
    EXPECT_EQ(drawing.openCount(), 100u);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(drawing.openObject(lines[i], OpenMode::kWrite), nullptr) << i;
        EXPECT_EQ(drawing.openObject(lines[i], OpenMode::kRead) != nullptr, i % 2 == 0) << i;
    }
    for (std::size_t i = 0; i < lines.size(); i += 3) held[i].reset();
    for (std::size_t i = 0; i < lines.size(); i += 3) EXPECT_NE(drawing.openObject(lines[i], OpenMode::kWrite), nullptr) << i;
    held.clear();
    EXPECT_EQ(drawing.openCount(), 0u);
    EXPECT_NE(drawing.openObject(lines[1], OpenMode::kWrite), nullptr);
}

TEST(WorkbenchDrawOrder, AnR12DrawingBecomesA2018OneToHoldTheOrder) {
    auto parsed = db::Database::parse("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n"
                                      "0\nSECTION\n2\nENTITIES\n0\nLINE\n5\n20\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n"
                                      "0\nLINE\n5\n21\n8\n0\n10\n0\n20\n0\n11\n2\n21\n2\n0\nENDSEC\n0\nEOF\n",
                                      "r12.dxf");
    ASSERT_TRUE(parsed.ok()) << parsed.message();
    WorkbenchDatabase drawing(std::move(*parsed));
    const ObjectId a{0x20}, b{0x21};
    ASSERT_TRUE(drawing.setRelativeDrawOrder(drawing.modelSpace(), {b, a}));
    EXPECT_FALSE(drawing.raw().isR12());
    EXPECT_EQ(drawOrder(drawing.raw(), drawing.raw().modelSpace()), (std::vector<db::Handle>{b.handle, a.handle}));
    EXPECT_FALSE(drawing.raw().saveNotice().empty());
}

TEST_F(WorkbenchDatabaseTest, SymbolTablesAndLayerStates) {
    addLayer("Roads", db::kLayerFrozen);
    EXPECT_TRUE(drawing.hasSymbol(host::SymbolTable::kLayer, L"roads"));
    EXPECT_TRUE(drawing.hasSymbol(host::SymbolTable::kLayout, L"Layout1"));
    EXPECT_FALSE(drawing.hasSymbol(host::SymbolTable::kTextStyle, L"Nothing"));
    bool found = false;
    for (const host::LayerInfo& layer : drawing.layers())
        if (layer.name == L"Roads") found = layer.frozen && !layer.locked && !layer.usable();
    EXPECT_TRUE(found);
    auto model = drawing.blockInfo(L"*MODEL_SPACE");
    ASSERT_TRUE(model);
    EXPECT_TRUE(model->isLayout && model->anonymous);
}

TEST_F(WorkbenchDatabaseTest, SupportFilesLoadLinetypesMlineStylesAndFindPatterns) {
    const std::wstring source = L"" VELTARN_SOURCE_DIR;
    const std::wstring linetypes = source + L"/support/acad.lin";
    EXPECT_TRUE(drawing.loadLinetypes(L"dashed*", linetypes));
    EXPECT_TRUE(drawing.hasSymbol(host::SymbolTable::kLinetype, L"DASHED_SHORT"));
    EXPECT_TRUE(drawing.loadLinetypes(L"DASHED", linetypes));  // already there: kept, still a success
    EXPECT_FALSE(drawing.loadLinetypes(L"NO_SUCH_LINETYPE", linetypes));
    EXPECT_FALSE(drawing.loadLinetypes(L"?*", source + L"/support/missing.lin"));

    const std::wstring styles = source + L"/tests/cad/support/data/good_roads.mln";
    EXPECT_TRUE(drawing.loadMlineStyle(L"road_2lane", styles));
    EXPECT_TRUE(drawing.hasSymbol(host::SymbolTable::kMlineStyle, L"ROAD_2LANE"));
    EXPECT_TRUE(drawing.loadMlineStyle(L"ROAD_2LANE", styles));
    EXPECT_FALSE(drawing.loadMlineStyle(L"NO_SUCH_STYLE", styles));

    EXPECT_TRUE(drawing.hasHatchPattern(L"solid"));  // built in: no support path needed
    EXPECT_FALSE(drawing.hasHatchPattern(L"DIAGONAL"));
    drawing.setSupportPath([&] { return L"/nonexistent;" + source + L"/support"; });
    EXPECT_TRUE(drawing.hasHatchPattern(L"diagonal"));
    EXPECT_FALSE(drawing.hasHatchPattern(L"NO_SUCH_PATTERN"));
}

TEST_F(WorkbenchDatabaseTest, RecordsCopyFromASideDrawingWithWhatTheyUse) {
    // The side drawing: a block whose reference to another block sits on a layer of its own.
    WorkbenchDatabase side{db::Database::createNew()};
    db::Database& raw = side.raw();
    auto inner = raw.addBlock("INNER");
    auto outer = raw.addBlock("OUTER");
    ASSERT_TRUE(inner && outer);
    ASSERT_TRUE(raw.appendEntity(*inner, db::newCircle(raw, {0, 0, 0}, 1)).ok());
    db::Layer layer;
    layer.name = "Symbols";
    ASSERT_TRUE(db::writeLayer(raw, layer).ok());
    db::TagList reference = db::newInsert(raw, "INNER", {5, 0, 0});
    reference.setIn("AcDbEntity", 8, std::string("Symbols"));
    ASSERT_TRUE(raw.appendEntity(*outer, reference).ok());

    const ObjectId outerId = side.findSymbol(host::SymbolTable::kBlock, L"OUTER");
    ASSERT_TRUE(drawing.copyRecordsFrom(side, {outerId}, host::SymbolTable::kBlock));
    EXPECT_TRUE(drawing.hasSymbol(host::SymbolTable::kBlock, L"OUTER"));
    EXPECT_TRUE(drawing.hasSymbol(host::SymbolTable::kBlock, L"INNER"));
    EXPECT_TRUE(drawing.hasSymbol(host::SymbolTable::kLayer, L"Symbols"));
    EXPECT_EQ(drawing.raw().entitiesOf(drawing.raw().findBlock("INNER")).size(), 1u);

    // A second copy of the same name keeps the drawing's own; ids of another table are refused.
    EXPECT_TRUE(drawing.copyRecordsFrom(side, {outerId}, host::SymbolTable::kBlock));
    EXPECT_EQ(drawing.raw().entitiesOf(drawing.raw().findBlock("OUTER")).size(), 1u);
    EXPECT_FALSE(drawing.copyRecordsFrom(side, {outerId}, host::SymbolTable::kLayer));
    EXPECT_FALSE(drawing.copyRecordsFrom(drawing, {}, host::SymbolTable::kLayer));

    const ObjectId layout = side.findSymbol(host::SymbolTable::kLayout, L"Layout1");
    ASSERT_FALSE(layout.isNull());
    EXPECT_TRUE(drawing.copyRecordsFrom(side, {layout}, host::SymbolTable::kLayout));  // the drawing has one
}

TEST_F(WorkbenchDatabaseTest, ExplodeAppendsThePiecesAndLeavesTheEntity) {
    db::TagList polyline = db::newLwpolyline(drawing.raw(), {{{0, 0, 0}, 0}, {{10, 0, 0}, 1}, {{10, 10, 0}, 0}}, false);
    auto handle = drawing.raw().appendEntity(drawing.raw().modelSpace(), polyline);
    ASSERT_TRUE(handle);
    auto entity = drawing.openEntity({*handle}, OpenMode::kWrite);
    ASSERT_TRUE(entity);
    const std::vector<ObjectId> pieces = entity->explodeInto(drawing.modelSpace());
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_EQ(drawing.raw().typeName(pieces[0].handle), "LINE");
    EXPECT_EQ(drawing.raw().typeName(pieces[1].handle), "ARC");  // the bulge
    EXPECT_EQ(drawing.blockEntities(drawing.modelSpace()).size(), 3u);
    entity.reset();

    auto line = drawing.openEntity(addLine(), OpenMode::kRead);
    EXPECT_TRUE(line->explodeInto(drawing.modelSpace()).empty());  // a line does not break up
}

}  // namespace
}  // namespace veltarn::seam
