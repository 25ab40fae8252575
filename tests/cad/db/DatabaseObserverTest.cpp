// Change notifications: what the seam relays to the module's database reactors.
#include "TestSupport.h"

#include "cad/db/EntityFactory.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/ExtensionDictionary.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

class Recorder : public DatabaseObserver {
public:
    void objectAppended(const Database& db, Handle object) override {
        events += "+" + std::string(db.typeName(object)) + " ";
    }
    void objectErased(const Database& db, Handle object, bool erased) override {
        events += (erased ? "-" : "^") + std::string(db.typeName(object)) + " ";
    }
    void objectModified(const Database& db, Handle object) override { events += "~" + std::string(db.typeName(object)) + " "; }
    std::string events;
};

TEST(DatabaseObserver, SeesAppendsErasesAndTheirUndoAndRedo) {
    Database db = Database::createNew();
    Recorder recorder;
    db.addObserver(&recorder);
    db.addObserver(&recorder);  // added once only

    db.beginCommand("LINE");
    Handle line = db.appendEntity(db.modelSpace(), newLine(db, {0, 0, 0}, {1, 1, 0})).value();
    {
        ObjectWriter w = db.openForWrite(line);
        setColor(w.tags(), Color::ofIndex(3));
    }
    {
        ObjectWriter untouched = db.openForWrite(line);  // closed unchanged: no notification
    }
    db.endCommand();
    EXPECT_EQ(recorder.events, "+LINE ~LINE ");

    recorder.events.clear();
    Handle kept = appendEntityWithXrecord(db, db.modelSpace(), newCircle(db, {}, 1), "ROADS", {TypedValue::ofInteger(90, 1)}).value();
    EXPECT_EQ(recorder.events, "+CIRCLE +DICTIONARY +XRECORD ");

    // Undo reports the net change per object: the line was created and changed, so it is erased.
    recorder.events.clear();
    ASSERT_TRUE(db.undo());
    EXPECT_EQ(recorder.events, "-LINE ");
    recorder.events.clear();
    ASSERT_TRUE(db.redo());
    EXPECT_EQ(recorder.events, "^LINE ");

    recorder.events.clear();
    db.beginCommand("ERASE");
    ASSERT_EQ(eraseObject(db, kept), OpenStatus::Ok);
    db.endCommand();
    EXPECT_EQ(recorder.events, "-XRECORD -DICTIONARY -CIRCLE ");
    recorder.events.clear();
    ASSERT_TRUE(db.undo());
    EXPECT_EQ(recorder.events, "^XRECORD ^DICTIONARY ^CIRCLE ");

    // An observer removed hears nothing more.
    db.removeObserver(&recorder);
    recorder.events.clear();
    (void)db.appendEntity(db.modelSpace(), newPoint(db, {}));
    ASSERT_TRUE(db.redo());
    EXPECT_EQ(recorder.events, "");
}

// The catcher of the draw command removes itself when its command ends, from inside a notification.
TEST(DatabaseObserver, MayRemoveItselfWhileBeingNotified) {
    struct OneShot : DatabaseObserver {
        Database* db = nullptr;
        int calls = 0;
        void objectAppended(const Database&, Handle) override {
            ++calls;
            db->removeObserver(this);
        }
    };
    Database db = Database::createNew();
    OneShot first, second;
    first.db = second.db = &db;
    db.addObserver(&first);
    db.addObserver(&second);
    (void)db.appendEntity(db.modelSpace(), newPoint(db, {}));
    (void)db.appendEntity(db.modelSpace(), newPoint(db, {}));
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
}

}  // namespace
}  // namespace veltarn::db
