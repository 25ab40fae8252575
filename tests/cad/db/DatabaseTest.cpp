// The object index: lossless round trips, handles and owners, open modes, creation and erasure.
#include "TestSupport.h"

#include "cad/db/DrawOrder.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/Multileader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace veltarn::db {
namespace {

using test::audit;

std::string readBytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

TagList line(double x1, double y1, double x2, double y2, const std::string& layer = "0") {
    return {{0, "LINE"}, {100, "AcDbEntity"}, {8, layer}, {100, "AcDbLine"}, {10, std::to_string(x1)}, {20, std::to_string(y1)},
            {30, "0"}, {11, std::to_string(x2)}, {21, std::to_string(y2)}, {31, "0"}};
}

TEST(DatabaseRoundTrip, UnchangedDrawingsAreWrittenByteForByte) {
    std::vector<std::filesystem::path> files;
    ASSERT_TRUE(std::filesystem::is_directory("/usr/share/librecad/library")) << "LibreCAD's parts library is missing (Debian package librecad)";
    for (const auto& entry : std::filesystem::recursive_directory_iterator("/usr/share/librecad/library"))
        if (entry.path().extension() == ".dxf") files.push_back(entry.path());
    files.push_back(test::generated("all-2018.dxf", "60 --kinds all"));
    files.push_back(test::generated("all-r12.dxf", "40 --kinds all --version R12"));
    files.push_back(test::generated("all-2000-bin.dxf", "40 --kinds all --version R2000 --binary"));
    for (const auto& file : files) {
        auto db = Database::load(file);
        ASSERT_TRUE(db.ok()) << db.message();
        auto text = db->toText();
        ASSERT_TRUE(text.ok()) << text.message();
        EXPECT_EQ(*text, readBytes(file)) << file;
    }
}

TEST(DatabaseObjects, HandlesOwnersAndReferencesResolve) {
    Database db = test::loadOrFail(test::generated("all-2018.dxf", "60 --kinds all"));
    Handle model = db.modelSpace();
    ASSERT_NE(model, kNoHandle);
    EXPECT_EQ(db.typeName(model), "BLOCK_RECORD");
    auto entities = db.entitiesOf(model);
    ASSERT_GE(entities.size(), 60u);
    for (Handle entity : entities) {
        EXPECT_EQ(db.ownerOf(entity), model) << formatHandle(entity);
        EXPECT_EQ(db.blockOf(entity), model);
        EXPECT_LT(entity, db.handleSeed());
        // Every pointer an entity holds leads to an object of the drawing.
        for (const TagValue& tag : db.tags(entity))
            if (tag.code >= 330 && tag.code <= 369 && tag.value != "0") {
                EXPECT_EQ(db.status(parseHandle(tag.value).value()), OpenStatus::Ok) << tag.code << " " << tag.value;
            }
    }
    Handle root = db.namedObjectsDictionary();
    EXPECT_EQ(db.typeName(root), "DICTIONARY");
    EXPECT_EQ(db.ownerOf(root), kNoHandle);
    EXPECT_NE(db.findRecord("LAYER", "layer_03"), kNoHandle);
    EXPECT_EQ(db.typeName(db.findBlock("mark")), "BLOCK_RECORD");
}

TEST(DatabaseObjects, OpenModesTellMissingErasedAndLockedApart) {
    Database db = Database::createNew();
    auto layer = db.addRecord("LAYER", {{0, "LAYER"}, {100, "AcDbSymbolTableRecord"}, {100, "AcDbLayerTableRecord"},
                                        {2, "Locked"}, {70, "4"}, {62, "1"}, {6, "Continuous"}});
    ASSERT_TRUE(layer.ok()) << layer.message();
    auto onLocked = db.appendEntity(db.modelSpace(), line(0, 0, 1, 1, "Locked"));
    auto free = db.appendEntity(db.modelSpace(), line(0, 0, 2, 2));
    ASSERT_TRUE(onLocked.ok() && free.ok());

    EXPECT_EQ(db.openForWrite(*onLocked).status(), OpenStatus::OnLockedLayer);
    EXPECT_EQ(db.openForWrite(*onLocked, true).status(), OpenStatus::Ok);
    EXPECT_TRUE(db.isOnLockedLayer(*onLocked));
    EXPECT_FALSE(db.isOnLockedLayer(*free));
    EXPECT_FALSE(db.isOnLockedLayer(*layer));  // a record lies on no layer
    TagList tags;
    EXPECT_EQ(db.read(*onLocked, tags), OpenStatus::Ok);  // reading is allowed on a locked layer
    EXPECT_EQ(db.read(0xFFFFFF, tags), OpenStatus::NotFound);

    EXPECT_EQ(db.erase(*free), OpenStatus::Ok);
    EXPECT_EQ(db.erase(*free), OpenStatus::Erased);
    EXPECT_EQ(db.openForWrite(*free).status(), OpenStatus::Erased);
    EXPECT_EQ(db.entitiesOf(db.modelSpace()), std::vector<Handle>{*onLocked});
}

TEST(DatabaseObjects, WrittenObjectsKeepTheirChangesAndUnchangedOnesTheirBytes) {
    Database db = Database::createNew();
    auto a = db.appendEntity(db.modelSpace(), line(0, 0, 1, 1));
    ASSERT_TRUE(a.ok());
    auto first = db.toText();
    ASSERT_TRUE(first.ok());
    Database again = test::parseOrFail(*first);
    Handle entity = again.entitiesOf(again.modelSpace()).at(0);
    {
        ObjectWriter writer = again.openForWrite(entity);
        ASSERT_TRUE(writer);
    }  // opened and closed without a change: the file stays as it was
    EXPECT_EQ(again.toText().value(), *first);
    {
        ObjectWriter writer = again.openForWrite(entity);
        writer.tags().setIn("AcDbEntity", gc::kColor, "3");
    }
    Database third = test::parseOrFail(again.toText().value());
    EXPECT_EQ(third.tags(entity).integer(gc::kColor), 3);
}

TEST(DatabaseObjects, CreatedEntitiesAndBlocksAreCompleteForOtherReaders) {
    Database db = Database::createNew();
    auto block = db.addBlock("Pin", {1, 2, 0});
    ASSERT_TRUE(block.ok()) << block.message();
    EXPECT_FALSE(db.addBlock("PIN").ok());  // names compare without case
    ASSERT_TRUE(db.appendEntity(*block, line(0, 0, 1, 0)).ok());
    auto inModel = db.appendEntity(db.modelSpace(), line(5, 5, 6, 6));
    auto inPaper = db.appendEntity(db.paperSpace(), line(5, 5, 6, 6));
    ASSERT_TRUE(inModel.ok() && inPaper.ok());
    auto gone = db.appendEntity(db.modelSpace(), line(7, 7, 8, 8));
    ASSERT_TRUE(db.erase(*gone) == OpenStatus::Ok);

    auto dir = test::scratchDir("created");
    ASSERT_TRUE(db.save(dir / "created.dxf").ok());
    Database back = test::loadOrFail(dir / "created.dxf");
    EXPECT_EQ(back.entitiesOf(back.modelSpace()), std::vector<Handle>{*inModel});
    EXPECT_EQ(back.entitiesOf(back.paperSpace()), std::vector<Handle>{*inPaper});
    EXPECT_EQ(back.entitiesOf(back.findBlock("pin")).size(), 1u);
    EXPECT_EQ(back.status(*gone), OpenStatus::NotFound);
    EXPECT_GT(back.handleSeed(), *gone);
    EXPECT_EQ(back.headerVariable("$HANDSEED"), formatHandle(db.handleSeed()));
    EXPECT_EQ(audit(dir / "created.dxf"), "");
}

TEST(DatabaseObjects, NewDrawingIsCleanForTheAuditor) {
    auto dir = test::scratchDir("new");
    ASSERT_TRUE(Database::createNew().save(dir / "new.dxf").ok());
    EXPECT_EQ(audit(dir / "new.dxf"), "");
}

// A drawing gets the CLASSES entry of a class type with its first object of that type (other
// programs skip such objects without it), once, and loses it again when that is undone.
TEST(DatabaseClasses, TheFirstObjectOfAClassTypeBringsItsEntry) {
    Database db = test::loadOrFail(test::generated("basic-R2010.dxf", "12 --version R2010"));
    ASSERT_FALSE(db.hasClass("MULTILEADER"));
    ASSERT_FALSE(db.hasClass("SORTENTSTABLE"));
    ASSERT_TRUE(db.hasClass("LAYOUT"));
    const std::string before = test::withoutSeed(db);
    db.beginCommand("MLEADER");
    for (int i = 0; i < 2; ++i)
        ASSERT_TRUE(db.appendEntity(db.modelSpace(), newMultileader(db, {5, 5, 0}, 1, "note", {{0, 0, 0}}).value()).ok());
    db.endCommand();
    EXPECT_TRUE(db.hasClass("MULTILEADER"));
    const std::string text = db.toText().value();
    EXPECT_EQ(text.find("ACDB_MLEADER_CLASS"), text.rfind("ACDB_MLEADER_CLASS"));
    ASSERT_TRUE(db.undo());
    EXPECT_FALSE(db.hasClass("MULTILEADER"));
    EXPECT_TRUE(test::withoutSeed(db) == before);
    ASSERT_TRUE(db.redo());

    std::vector<Handle> model = db.entitiesOf(db.modelSpace());
    ASSERT_TRUE(setRelativeDrawOrder(db, db.modelSpace(), {model.back(), model.front()}).ok());
    EXPECT_TRUE(db.hasClass("SORTENTSTABLE"));
    auto dir = test::scratchDir("classes");
    ASSERT_TRUE(db.save(dir / "c.dxf").ok());
    EXPECT_EQ(test::audit(dir / "c.dxf"), "");
    Database back = test::loadOrFail(dir / "c.dxf");
    EXPECT_TRUE(back.hasClass("MULTILEADER") && back.hasClass("SORTENTSTABLE"));
}

}  // namespace
}  // namespace veltarn::db
