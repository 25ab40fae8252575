// Undo and redo of whole commands: the drawing returns exactly to what it was.
#include "TestSupport.h"

#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Xrecord.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

using test::withoutSeed;

TEST(Undo, CommandsAreUndoneAndRedoneWholeWithTheirObjectData) {
    Database db = Database::createNew();
    Handle kept = db.appendEntity(db.modelSpace(), newLine(db, {0, 0, 0}, {1, 0, 0})).value();
    Handle doomed = db.appendEntity(db.modelSpace(), newCircle(db, {0, 0, 0}, 1)).value();
    const std::string before = withoutSeed(db);
    EXPECT_FALSE(db.undo());  // changes outside a command are not recorded

    db.beginCommand("CLASSIFY");
    {
        ObjectWriter w = db.openForWrite(kept);
        setColor(w.tags(), Color::ofIndex(1));
    }
    Handle xdictionary = createExtensionDictionary(db, kept).value();
    Handle xrecord = addXrecord(db, xdictionary, "ROADS", {TypedValue::ofText(1, "a"), TypedValue::ofReal(40, 2)}).value();
    db.beginCommand("inner");  // a command run inside another joins it
    ASSERT_EQ(eraseObject(db, doomed), OpenStatus::Ok);
    db.endCommand();
    Handle added = db.appendEntity(db.modelSpace(), newPoint(db, {5, 5, 0})).value();
    db.endCommand();
    db.beginCommand("NOTHING");
    db.endCommand();  // changed nothing: leaves nothing to undo
    const std::string after = withoutSeed(db);
    ASSERT_NE(after, before);
    EXPECT_EQ(db.journal().nextUndoName(), "CLASSIFY");

    ASSERT_TRUE(db.undo());
    EXPECT_TRUE(withoutSeed(db) == before);
    EXPECT_EQ(db.status(added), OpenStatus::Erased);
    EXPECT_EQ(db.status(doomed), OpenStatus::Ok);
    EXPECT_EQ(extensionDictionary(db, kept), kNoHandle);
    EXPECT_FALSE(db.undo());

    ASSERT_TRUE(db.redo());
    EXPECT_TRUE(withoutSeed(db) == after);
    EXPECT_EQ(readXrecord(db, xrecord).value().at(1).real, 2);
    EXPECT_FALSE(db.redo());

    // A new command after an undo drops what could have been redone.
    ASSERT_TRUE(db.undo());
    db.beginCommand("ERASE");
    ASSERT_EQ(db.erase(kept), OpenStatus::Ok);
    db.endCommand();
    EXPECT_FALSE(db.redo());
    ASSERT_TRUE(db.undo());
    EXPECT_TRUE(withoutSeed(db) == before);
}

// The bulk path for entities with object data records its three objects like any other change.
TEST(Undo, BulkCreatedEntitiesWithTheirDataAreUndoneWhole) {
    Database db = Database::createNew();
    const std::string before = withoutSeed(db);
    db.beginCommand("VELTARN_DRAW");
    Handle line = appendEntityWithXrecord(db, db.modelSpace(), newLine(db, {0, 0, 0}, {1, 0, 0}), "ROADS",
                                          {TypedValue::ofText(1, "road-1"), TypedValue::ofReal(40, 5.5)}).value();
    db.endCommand();
    const std::string after = withoutSeed(db);
    Handle xrecord = findEntry(db, extensionDictionary(db, line), "ROADS");
    ASSERT_TRUE(db.undo());
    EXPECT_TRUE(withoutSeed(db) == before);
    EXPECT_EQ(db.status(xrecord), OpenStatus::Erased);
    ASSERT_TRUE(db.redo());
    EXPECT_TRUE(withoutSeed(db) == after);
    EXPECT_EQ(readXrecord(db, xrecord).value().at(0).text, "road-1");
}

}  // namespace
}  // namespace veltarn::db
