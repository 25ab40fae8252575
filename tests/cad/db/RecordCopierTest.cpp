// Copying records between drawings: references translated, existing records kept, nothing half done.
#include "TestSupport.h"

#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/RecordCopier.h"
#include "cad/db/SymbolTables.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

std::filesystem::path resources() { return test::madeByScript("make_resources.py"); }

// Every pointer held by the target's objects leads to an object of the target.
void expectPointersResolve(const Database& db, const std::vector<Handle>& objects) {
    for (Handle object : objects) {
        TagList tags = db.tags(object);
        for (const TagValue& tag : tags) {
            bool pointer = (tag.code >= 320 && tag.code <= 369) || (tag.code >= 390 && tag.code <= 399);
            Handle to = pointer ? parseHandle(tag.value).value_or(kNoHandle) : kNoHandle;
            if (to == kNoHandle) continue;
            EXPECT_TRUE(db.exists(to)) << db.typeName(object) << " " << formatHandle(object) << " code " << tag.code << " -> " << tag.value;
        }
    }
}

std::string names(const std::vector<std::string>& list) {
    std::string out;
    for (const auto& n : list) out += (out.empty() ? "" : ",") + n;
    return out;
}

TEST(RecordCopier, RecordsComeWithWhatTheyReferToAndExistingOnesAreKept) {
    Database source = test::loadOrFail(resources());
    Database target = Database::createNew();
    writeLayer(target, {.name = "roads", .color = 5}).value();

    // A layer the target has is kept as it is, whatever the source's says.
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::Layer, {"ROADS"}).value()), "");
    EXPECT_EQ(readLayer(target, "ROADS")->color, 5);

    // A block brings its nested block, its layers, their linetypes and its text style.
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::Block, {"tree", "NOSUCH"}).value()), "TREE");
    Handle tree = target.findBlock("TREE"), leaf = target.findBlock("LEAF");
    ASSERT_NE(tree, kNoHandle);
    ASSERT_NE(leaf, kNoHandle);
    EXPECT_EQ(target.entitiesOf(tree).size(), 4u);
    EXPECT_EQ(target.entitiesOf(leaf).size(), 1u);
    EXPECT_EQ(readLayer(target, "TREES")->color, 2);
    EXPECT_NE(target.findRecord("STYLE", "ROMANS"), kNoHandle);
    EXPECT_EQ(target.tags(target.blockBegin(tree)).point(10), (Point3{1, 1, 0}));

    // A dimension style points at the target's text style (the one copied above, not a second)
    // and brings its arrow block.
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::DimensionStyle, {"ARCH", "Standard"}).value()), "ARCH");
    TagList arch = target.tags(target.findRecord("DIMSTYLE", "ARCH"));
    EXPECT_EQ(arch.text(340).value(), formatHandle(target.findRecord("STYLE", "ROMANS")));
    EXPECT_EQ(recordNames(target, "STYLE").size(), 2u);
    EXPECT_NE(target.findBlock("_ARCHTICK"), kNoHandle);

    // Styles kept in dictionaries, and a layout with its paper space.
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::MlineStyle, {"DOUBLE", "STANDARD"}).value()), "DOUBLE");
    EXPECT_NE(target.findRecord("LTYPE", "DASHED"), kNoHandle);
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::MleaderStyle, {"CALLOUT"}).value()), "CALLOUT");
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::Layout, {"Plan", "Layout1"}).value()), "Plan");
    Handle plan = layoutBlock(target, "Plan");
    ASSERT_NE(plan, kNoHandle);
    EXPECT_EQ(target.entitiesOf(plan).size(), source.entitiesOf(layoutBlock(source, "Plan")).size());

    std::vector<Handle> all;
    for (std::string_view table : {"LAYER", "LTYPE", "STYLE", "DIMSTYLE", "BLOCK_RECORD"})
        for (Handle h : target.records(table)) all.push_back(h);
    for (Handle block : target.blocks())
        for (Handle h : target.entitiesOf(block)) all.push_back(h);
    for (std::string_view dictionary : {"ACAD_MLINESTYLE", "ACAD_MLEADERSTYLE", "ACAD_LAYOUT"})
        for (const auto& name : namedEntries(target, dictionary)) all.push_back(namedEntry(target, dictionary, name));
    expectPointersResolve(target, all);

    auto dir = test::scratchDir("record-copier");
    ASSERT_TRUE(target.save(dir / "t.dxf").ok());
    EXPECT_EQ(test::audit(dir / "t.dxf"), "");
    Database back = test::loadOrFail(dir / "t.dxf");
    EXPECT_EQ(layoutNames(back).size(), 3u);
}

// The data applications keep about a record or entity (its extension dictionary, xrecords and
// nested dictionaries) goes with the copy; pointers in it lead into the target or become null.
TEST(RecordCopier, ExtensionDictionariesGoWithTheirRecords) {
    Database source = Database::createNew();
    writeLayer(source, {.name = "ROADS", .color = 3}).value();
    Handle roads = source.findRecord("LAYER", "ROADS");
    Handle stray = source.appendEntity(source.modelSpace(), newLine(source, {}, {1, 1, 0})).value();
    Handle block = source.addBlock("SYM").value();
    TagList line = newLine(source, {}, {2, 0, 0});
    line.setIn("AcDbEntity", 8, "ROADS");
    Handle marked = source.appendEntity(block, line).value();
    Handle data = createExtensionDictionary(source, marked).value();
    const ResultBuffer values{TypedValue::ofText(1, "pipe-7"), TypedValue::ofReal(40, 0.3), TypedValue::ofHandle(340, roads),
                              TypedValue::ofHandle(340, stray), TypedValue::ofPoint(10, {1, 2, 3})};
    (void)addXrecord(source, data, "PIPES", values).value();
    Handle nested = childDictionary(source, data, "NESTED", true).value();
    (void)addXrecord(source, nested, "INNER", {TypedValue::ofInteger(90, 42)}).value();
    Handle layerData = createExtensionDictionary(source, roads).value();
    (void)addXrecord(source, layerData, "NOTE", {TypedValue::ofText(1, "surveyed")}).value();

    Database target = Database::createNew();
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::Block, {"SYM"}).value()), "SYM");
    Handle copy = target.entitiesOf(target.findBlock("SYM")).front();
    Handle copiedData = extensionDictionary(target, copy);
    ASSERT_NE(copiedData, kNoHandle);
    EXPECT_EQ(target.ownerOf(copiedData), copy);
    Handle xrecord = findEntry(target, copiedData, "PIPES");
    EXPECT_EQ(target.ownerOf(xrecord), copiedData);
    ResultBuffer expected = values;
    expected[2] = TypedValue::ofHandle(340, target.findRecord("LAYER", "ROADS"));  // the layer came with the block
    expected[3] = TypedValue::ofHandle(340, kNoHandle);                              // the stray line did not
    EXPECT_EQ(readXrecord(target, xrecord).value(), expected);
    Handle copiedNested = findEntry(target, copiedData, "NESTED");
    EXPECT_EQ(target.ownerOf(copiedNested), copiedData);
    EXPECT_EQ(readXrecord(target, findEntry(target, copiedNested, "INNER")).value(), (ResultBuffer{TypedValue::ofInteger(90, 42)}));
    // The layer, copied because the line is on it, brought its own data.
    Handle note = findEntry(target, extensionDictionary(target, target.findRecord("LAYER", "ROADS")), "NOTE");
    EXPECT_EQ(readXrecord(target, note).value(), (ResultBuffer{TypedValue::ofText(1, "surveyed")}));
    // Nothing points back into the source.
    expectPointersResolve(target, {copy, copiedData, xrecord, copiedNested, note});

    auto dir = test::scratchDir("record-copier-data");
    ASSERT_TRUE(target.save(dir / "t.dxf").ok());
    EXPECT_EQ(test::audit(dir / "t.dxf"), "");
}

TEST(RecordCopier, ACopyIsUndoneWholeAndConvertsAnR12Target) {
    Database source = test::loadOrFail(resources());
    Database target = Database::createNew();
    const std::string before = test::withoutSeed(target);
    EXPECT_EQ(names(copyRecords(target, source, RecordKind::Block, {"TREE"}).value()), "TREE");
    ASSERT_TRUE(target.undo());
    EXPECT_TRUE(test::withoutSeed(target) == before);

    // Inside an open command, a failing step rolls back what the command did since the mark only.
    target.beginCommand("IMPORT");
    Handle kept = target.appendEntity(target.modelSpace(), newLine(target, {}, {1, 0, 0})).value();
    std::size_t mark = target.changeMark();
    (void)target.addBlock("HALF").value();
    target.rollBack(mark);
    target.endCommand();
    EXPECT_EQ(target.findBlock("HALF"), kNoHandle);
    EXPECT_TRUE(target.exists(kept));

    Database r12 = test::parseOrFail("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n1\n0\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
    // An R12 source cannot give a 2000+ target what its records lack; an R12 target is converted.
    Database modern = Database::createNew();
    const std::string modernBefore = modern.toText().value();
    EXPECT_FALSE(copyRecords(modern, r12, RecordKind::Layer, {"0"}).ok());
    EXPECT_TRUE(modern.toText().value() == modernBefore);
    EXPECT_EQ(names(copyRecords(r12, source, RecordKind::MlineStyle, {"DOUBLE"}).value()), "DOUBLE");
    EXPECT_TRUE(r12.convertedFromR12());
    auto dir = test::scratchDir("record-copier-r12");
    ASSERT_TRUE(r12.save(dir / "out.dxf").ok());
    EXPECT_EQ(test::audit(dir / "out.dxf"), "");
}

}  // namespace
}  // namespace veltarn::db
