// New handles never clash with handles in use, whatever $HANDSEED says, and a drawing that has
// no handle left says so instead of handing one out twice.
#include "TestSupport.h"

#include "cad/db/EntityFactory.h"
#include "cad/db/SymbolTables.h"
#include "cad/db/Xrecord.h"

#include <gtest/gtest.h>

#include <set>

namespace veltarn::db {
namespace {

// The value line after the last `before` (a line of its own) and the code line after it, replaced.
std::string replacedValue(std::string text, const std::string& before, const std::string& value) {
    std::size_t at = text.rfind(before);
    EXPECT_NE(at, std::string::npos) << before;
    std::size_t start = text.find('\n', at + before.size()) + 1;
    std::size_t end = text.find_first_of("\r\n", start);
    return text.replace(start, end - start, value);
}

// The handles the drawing's objects have (group 5, and 105 of dimension styles; not $HANDSEED).
std::set<Handle> handlesIn(const std::string& text) {
    std::set<Handle> handles;
    auto file = dxf::TagFile::parse(text, "t.dxf");
    EXPECT_TRUE(file.ok()) << file.message();
    for (std::size_t i = 1; file.ok() && i < file->size(); ++i)
        if ((file->code(i) == 5 || file->code(i) == 105) && !file->is(i - 1, 9, "$HANDSEED"))
            handles.insert(parseHandle(file->text(i)).value());
    return handles;
}

// A new drawing with two lines, read from its text with `seed` as $HANDSEED and, when given, the
// second line's handle replaced by `lastLine`.
std::string drawingText(const std::string& seed, const std::string& lastLine = {}) {
    Database made = Database::createNew();
    made.appendEntity(made.modelSpace(), newLine(made, {0, 0, 0}, {1, 0, 0})).value();
    made.appendEntity(made.modelSpace(), newLine(made, {0, 1, 0}, {1, 1, 0})).value();
    std::string text = replacedValue(made.toText().value(), "$HANDSEED\n", seed);
    if (!lastLine.empty()) text = replacedValue(text, "\nLINE\n", lastLine);
    EXPECT_TRUE(lastLine.empty() || handlesIn(text).count(parseHandle(lastLine).value()));
    return text;
}

// One object of each kind a command adds; their handles.
std::vector<Handle> addOneOfEach(Database& db) {
    std::vector<Handle> added;
    auto take = [&](Result<Handle> made) {
        EXPECT_TRUE(made.ok()) << made.message();
        added.push_back(made.ok() ? *made : kNoHandle);
    };
    take(db.appendEntity(db.modelSpace(), newCircle(db, {0, 0, 0}, 1)));
    take(writeLayer(db, Layer{.name = "Walls"}));
    take(addXrecord(db, db.namedObjectsDictionary(), "DATA", {TypedValue::ofText(1, "x")}));
    take(db.addBlock("DOOR"));
    return added;
}

TEST(HandleSeed, AnExhaustedOrLowSeedGivesHandlesAboveTheLargestInUse) {
    for (const char* seed : {"FFFFFFFFFFFFFFFF", "10", "0"}) {
        const std::string text = drawingText(seed);
        const std::set<Handle> inUse = handlesIn(text);
        Database db = test::parseOrFail(text);
        std::vector<Handle> added = addOneOfEach(db);
        EXPECT_GT(added.front(), *inUse.rbegin()) << seed;
        for (Handle handle : added) EXPECT_FALSE(inUse.count(handle)) << seed << ": " << formatHandle(handle) << " was in use";

        // Saved and read again, the drawing goes on above everything it holds.
        Database again = test::parseOrFail(db.toText().value());
        const std::set<Handle> nowInUse = handlesIn(again.toText().value());
        for (Handle handle : added) EXPECT_TRUE(nowInUse.count(handle)) << seed << ": " << formatHandle(handle) << " was not saved";
        Handle next = again.appendEntity(again.modelSpace(), newPoint(again, {2, 2, 0})).value();
        EXPECT_GT(next, *nowInUse.rbegin()) << seed;
        EXPECT_EQ(again.typeName(added.front()), "CIRCLE");
        EXPECT_EQ(again.typeName(added[1]), "LAYER");
    }
}

TEST(HandleSeed, TheLastHandlesAreHandedOutThenTheDrawingSaysItHasNoneLeft) {
    const Handle largest = 0xFFFFFFFFFFFFFFEFu;
    Database db = test::parseOrFail(drawingText("FFFFFFFFFFFFFFFF", formatHandle(largest)));
    std::set<Handle> added;
    Result<Handle> last = kNoHandle;
    for (int i = 0; i < 20; ++i) {
        Result<Handle> made = db.appendEntity(db.modelSpace(), newPoint(db, {double(i), 0, 0}));
        if (!made) break;
        EXPECT_GT(*made, largest);
        EXPECT_TRUE(added.insert(*made).second) << formatHandle(*made) << " twice";
        last = made;
    }
    ASSERT_FALSE(added.empty());
    EXPECT_EQ(*last, kLastHandle);
    const std::string before = db.toText().value();

    const std::string noneLeft = "test.dxf: the drawing has no handle left for a new object";
    auto entity = db.appendEntity(db.modelSpace(), newPoint(db, {2, 0, 0}));
    ASSERT_FALSE(entity.ok());
    EXPECT_EQ(entity.message(), noneLeft);
    EXPECT_FALSE(writeLayer(db, Layer{.name = "Walls"}).ok());
    EXPECT_FALSE(addXrecord(db, db.namedObjectsDictionary(), "DATA", {TypedValue::ofText(1, "x")}).ok());
    auto block = db.addBlock("DOOR");
    ASSERT_FALSE(block.ok());
    EXPECT_EQ(block.message(), noneLeft);
    EXPECT_EQ(db.toText().value(), before);

    // The largest handle there is in use: the drawing reads, and nothing is left.
    Database full = test::parseOrFail(drawingText("FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF"));
    EXPECT_EQ(full.entitiesOf(full.modelSpace()).size(), 2u);
    auto refused = full.appendEntity(full.modelSpace(), newPoint(full, {0, 0, 0}));
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.message(), noneLeft);
}

}  // namespace
}  // namespace veltarn::db
