// The named objects dictionary of an R12 drawing, which has none: reads see an empty stand-in and
// change nothing; the first write converts the drawing, after which both ids open the real root.
#include "cad/seam/WorkbenchDatabase.h"

#include <gtest/gtest.h>

#include "cad/db/EntityFactory.h"
#include "cad/seam/CommandJournal.h"

namespace veltarn::seam {
namespace {

using host::ObjectId;
using host::OpenMode;

const char* const kR12 =
    "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n"
    "0\nSECTION\n2\nENTITIES\n0\nLINE\n5\n20\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n0\nENDSEC\n0\nEOF\n";
const ObjectId kLine{0x20};

WorkbenchDatabase readR12() {
    auto parsed = db::Database::parse(kR12, "r12.dxf");
    EXPECT_TRUE(parsed.ok()) << parsed.message();
    return WorkbenchDatabase(parsed.ok() ? std::move(*parsed) : db::Database::createNew());
}

std::string text(const WorkbenchDatabase& drawing) {
    auto written = drawing.raw().toText();
    return written.ok() ? *written : written.message();
}

TEST(R12NamedObjects, ReadingTheStandInChangesNothing) {
    WorkbenchDatabase drawing = readR12();
    const ObjectId root = drawing.namedObjectsDictionary();
    ASSERT_FALSE(root.isNull());
    EXPECT_EQ(drawing.namedObjectsDictionary(), root) << "stable";
    EXPECT_NE(root, kLine);
    {
        auto first = drawing.openDictionary(root, OpenMode::kRead);
        auto second = drawing.openDictionary(root, OpenMode::kRead);
        ASSERT_TRUE(first && second);
        EXPECT_EQ(first->id(), root);
        EXPECT_TRUE(first->find(L"ODEMUDATA").isNull());
        EXPECT_TRUE(first->entries().empty());
        EXPECT_TRUE(first->ownerId().isNull());
        EXPECT_TRUE(first->addDictionary(L"X").isNull()) << "a read open adds nothing";
        EXPECT_EQ(drawing.openObject(root, OpenMode::kWrite), nullptr) << "refused while read: and nothing converted";
        EXPECT_FALSE(first->upgradeOpen()) << "another reader holds it";
        EXPECT_TRUE(drawing.raw().isR12());
    }
    EXPECT_EQ(drawing.openCount(), 0u);
    EXPECT_TRUE(drawing.raw().isR12());
    EXPECT_EQ(text(drawing), kR12) << "an untouched R12 drawing is written as it was read";
}

TEST(R12NamedObjects, WritingConvertsAndBothIdsOpenOneObject) {
    WorkbenchDatabase drawing = readR12();
    const ObjectId standIn = drawing.namedObjectsDictionary();
    ObjectId mine;
    {
        auto root = drawing.openDictionary(standIn, OpenMode::kWrite);
        ASSERT_TRUE(root);
        EXPECT_FALSE(drawing.raw().isR12());
        mine = root->addDictionary(L"MINE");
        ASSERT_FALSE(mine.isNull());
        const ObjectId real = drawing.namedObjectsDictionary();
        EXPECT_NE(real, standIn);
        EXPECT_EQ(drawing.openObject(real, OpenMode::kRead), nullptr) << "the writer holds the real root as well";
    }
    const ObjectId real = drawing.namedObjectsDictionary();
    auto byStandIn = drawing.openDictionary(standIn, OpenMode::kRead);
    auto byReal = drawing.openDictionary(real, OpenMode::kRead);
    ASSERT_TRUE(byStandIn && byReal);
    EXPECT_EQ(byStandIn->find(L"MINE"), mine);
    EXPECT_EQ(byReal->find(L"MINE"), mine);
    EXPECT_EQ(byStandIn->entries(), byReal->entries());
    EXPECT_EQ(drawing.openDictionary(mine, OpenMode::kRead)->ownerId(), real);
    EXPECT_FALSE(byReal->upgradeOpen()) << "two readers of one object";
    byStandIn.reset();
    EXPECT_TRUE(byReal->upgradeOpen());
    byReal.reset();
    EXPECT_EQ(drawing.openCount(), 0u);
    EXPECT_NE(text(drawing).find("AC1032"), std::string::npos);
    EXPECT_FALSE(drawing.raw().saveNotice().empty());
}

TEST(R12NamedObjects, AReaderHeldAcrossAConversionSeesTheRealRoot) {
    // Upgraded itself, once the only reader.
    WorkbenchDatabase drawing = readR12();
    {
        auto root = drawing.openDictionary(drawing.namedObjectsDictionary(), OpenMode::kRead);
        ASSERT_TRUE(root && root->upgradeOpen());
        EXPECT_FALSE(drawing.raw().isR12());
        EXPECT_FALSE(root->addXrecord(L"NOTE").isNull());
        EXPECT_TRUE(root->has(L"NOTE"));
    }
    EXPECT_EQ(drawing.openCount(), 0u);

    // Converted by another change while it is held: it shows the real entries, and counts as a
    // reader of the real root.
    WorkbenchDatabase other = readR12();
    auto root = other.openDictionary(other.namedObjectsDictionary(), OpenMode::kRead);
    ASSERT_TRUE(root);
    ASSERT_TRUE(other.openObject(kLine, OpenMode::kWrite)->createExtensionDictionary());
    EXPECT_FALSE(other.raw().isR12());
    EXPECT_FALSE(root->entries().empty()) << "the standard entries of a 2018 root";
    EXPECT_EQ(other.openObject(other.namedObjectsDictionary(), OpenMode::kWrite), nullptr);
    root.reset();
    EXPECT_EQ(other.openCount(), 0u);
    EXPECT_NE(other.openObject(other.namedObjectsDictionary(), OpenMode::kWrite), nullptr);
}

TEST(R12NamedObjects, ACommandThatConvertsMarksTheDrawingModified) {
    WorkbenchDatabase drawing = readR12();
    CommandJournal journal([&] { return &drawing; });
    // Earlier commands leave more recorded changes than the converted drawing starts with.
    for (int i = 0; i < 3; ++i) {
        journal.commandWillStart(L"LINE");
        ASSERT_TRUE(drawing.raw().appendEntity(drawing.raw().modelSpace(), db::newLine(drawing.raw(), {}, {1, 1, 0})).ok());
        journal.commandEnded(L"LINE");
    }
    drawing.setModified(false);
    journal.commandWillStart(L"VELTARN_LOAD");
    EXPECT_NE(drawing.openObject(drawing.namedObjectsDictionary(), OpenMode::kWrite), nullptr);
    journal.commandEnded(L"VELTARN_LOAD");
    EXPECT_FALSE(drawing.raw().isR12());
    EXPECT_TRUE(drawing.modified()) << "it is saved as 2018 now";

    // Undone, it is the R12 drawing again, whose stand-in reads empty; the lines stay undoable.
    ASSERT_TRUE(drawing.undo());
    EXPECT_TRUE(drawing.raw().isR12());
    auto root = drawing.openDictionary(drawing.namedObjectsDictionary(), OpenMode::kRead);
    ASSERT_TRUE(root);
    EXPECT_TRUE(root->entries().empty());
    root.reset();
    ASSERT_TRUE(drawing.undo());
    EXPECT_EQ(drawing.raw().entitiesOf(drawing.raw().modelSpace()).size(), 3u);
}

}  // namespace
}  // namespace veltarn::seam
