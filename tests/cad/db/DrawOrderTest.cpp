// Draw order of a block, checked against the order an independent reader draws in.
#include "TestSupport.h"

#include "cad/db/Dictionary.h"
#include "cad/db/DrawOrder.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/ExtensionDictionary.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

std::string joined(const std::vector<Handle>& handles) {
    std::string out;
    for (Handle h : handles) out += (out.empty() ? "" : " ") + formatHandle(h);
    return out;
}

// The independent reader's order of model space in a saved file.
std::string theirOrder(const std::filesystem::path& file) {
    std::string out;
    EXPECT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/dump_draw_order.py " + file.string(), &out), 0) << out;
    if (!out.empty() && out.back() == '\n') out.pop_back();
    return out;
}

TEST(DrawOrder, ReadsAndRewritesTablesOfAnIndependentWriter) {
    auto file = test::generated("sortents.dxf", "12 --sortents 6");
    Database db = test::loadOrFail(file);
    Handle model = db.modelSpace();
    ASSERT_NE(findSortentsTable(db, model), kNoHandle);
    EXPECT_EQ(joined(drawOrder(db, model)), theirOrder(file));

    // Reorder a few, some of which the table already moved.
    auto entities = db.entitiesOf(model);
    ASSERT_TRUE(setRelativeDrawOrder(db, model, {entities[8], entities[1], entities[4]}).ok());
    auto dir = test::scratchDir("draw-order-existing");
    ASSERT_TRUE(db.save(dir / "d.dxf").ok());
    EXPECT_EQ(joined(drawOrder(db, model)), theirOrder(dir / "d.dxf"));
    EXPECT_EQ(test::audit(dir / "d.dxf"), "");
}

TEST(DrawOrder, ListedEntitiesTradePlacesAndTheOthersKeepTheirs) {
    Database db = Database::createNew();
    Handle model = db.modelSpace();
    std::vector<Handle> e;
    for (int i = 0; i < 5; ++i) e.push_back(db.appendEntity(model, newLine(db, {double(i), 0, 0}, {double(i), 1, 0})).value());
    ASSERT_EQ(findSortentsTable(db, model), kNoHandle);
    EXPECT_EQ(drawOrder(db, model), e);

    // Refused without a change: an entity of another block, one listed twice, an erased one.
    Handle block = db.addBlock("B").value();
    Handle inBlock = db.appendEntity(block, newPoint(db, {})).value();
    const std::string withBlock = test::withoutSeed(db);
    EXPECT_FALSE(setRelativeDrawOrder(db, model, {e[0], inBlock}).ok());
    EXPECT_FALSE(setRelativeDrawOrder(db, model, {e[0], e[1], e[0]}).ok());
    ASSERT_EQ(db.erase(inBlock), OpenStatus::Ok);
    EXPECT_FALSE(setRelativeDrawOrder(db, block, {inBlock}).ok());
    ASSERT_EQ(db.unerase(inBlock), OpenStatus::Ok);
    EXPECT_TRUE(test::withoutSeed(db) == withBlock);

    db.beginCommand("VELTARN_SORT");
    ASSERT_TRUE(setRelativeDrawOrder(db, model, {e[3], e[1]}).ok());
    EXPECT_EQ(drawOrder(db, model), (std::vector<Handle>{e[0], e[3], e[2], e[1], e[4]}));
    ASSERT_TRUE(setRelativeDrawOrder(db, model, {e[4], e[0], e[1]}).ok());
    EXPECT_EQ(drawOrder(db, model), (std::vector<Handle>{e[4], e[3], e[2], e[0], e[1]}));
    db.endCommand();

    // The table lives in the record's extension dictionary, and other readers draw the same.
    Handle table = findSortentsTable(db, model);
    ASSERT_NE(table, kNoHandle);
    EXPECT_EQ(findEntry(db, extensionDictionary(db, model), "ACAD_SORTENTS"), table);
    EXPECT_EQ(db.ownerOf(table), extensionDictionary(db, model));
    // An erased entity drops out of the order; the others stay where they were.
    ASSERT_EQ(db.erase(e[3]), OpenStatus::Ok);
    EXPECT_EQ(drawOrder(db, model), (std::vector<Handle>{e[4], e[2], e[0], e[1]}));
    ASSERT_EQ(db.unerase(e[3]), OpenStatus::Ok);
    auto dir = test::scratchDir("draw-order-new");
    ASSERT_TRUE(db.save(dir / "d.dxf").ok());
    EXPECT_EQ(theirOrder(dir / "d.dxf"), joined(drawOrder(db, model)));
    EXPECT_EQ(test::audit(dir / "d.dxf"), "");

    // Undo takes the table and the extension dictionary away again.
    ASSERT_TRUE(db.undo());
    EXPECT_EQ(findSortentsTable(db, model), kNoHandle);
    EXPECT_TRUE(test::withoutSeed(db) == withBlock);
}

TEST(DrawOrder, R12DrawingsAreConvertedOnlyWhenATableIsMade) {
    Database db = test::parseOrFail("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n0\nENDSEC\n0\nEOF\n");
    EXPECT_EQ(sortentsTable(db, db.modelSpace(), false).value(), kNoHandle);
    EXPECT_EQ(drawOrder(db, db.modelSpace()).size(), 1u);
    EXPECT_TRUE(db.isR12());
    EXPECT_NE(sortentsTable(db, db.modelSpace(), true).value(), kNoHandle);
    EXPECT_FALSE(db.isR12());
}

}  // namespace
}  // namespace veltarn::db
