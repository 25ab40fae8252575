// Object selection over a real drawing: window against crossing, last, previous, handles, all.
#include "cad/seam/ObjectSelector.h"

#include <gtest/gtest.h>

#include "cad/db/EntityFactory.h"
#include "cad/db/SymbolTables.h"
#include "cad/seam/WorkbenchHost.h"

namespace veltarn::seam {
namespace {

class ObjectSelectorTest : public ::testing::Test {
protected:
    void SetUp() override {
        host_.openDocument(std::make_unique<WorkbenchDatabase>(db::Database::createNew()));
        db::Database& db = host_.currentDrawing()->raw();
        inside_ = *db.appendEntity(db.modelSpace(), db::newLine(db, {1, 1, 0}, {4, 4, 0}));
        across_ = *db.appendEntity(db.modelSpace(), db::newCircle(db, {10, 5, 0}, 2));  // x 8..12
        arc_ = *db.appendEntity(db.modelSpace(), db::newArc(db, {20, 0, 0}, 5, 0, 90));  // x 20..25, y 0..5
    }

    // Answers `script` to an interactive selection; the handles chosen.
    std::vector<db::Handle> select(const std::wstring& script, host::PromptStatus expected = host::PromptStatus::kNormal) {
        host_.commandLine().input().append(script);
        std::vector<host::ObjectId> ids;
        EXPECT_EQ(host_.selector().select(host::SelectionMode::kInteractive, ids), expected);
        std::vector<db::Handle> handles;
        for (auto id : ids) handles.push_back(id.handle);
        return handles;
    }

    std::wstring output_;
    WorkbenchHost host_{[this](const std::wstring& text) { output_ += text; }, "/nonexistent/settings"};
    db::Handle inside_ = 0, across_ = 0, arc_ = 0;
};

TEST_F(ObjectSelectorTest, WindowTakesWhatLiesInsideCrossingWhatTouches) {
    EXPECT_EQ(select(L"w 0,0 10,10\n\n"), std::vector<db::Handle>{inside_});
    EXPECT_EQ(select(L"c 0,0 10,10\n\n"), (std::vector<db::Handle>{inside_, across_}));
    // A box given by its points: to the right a window, to the left a crossing.
    EXPECT_EQ(select(L"0,0 10,10\n\n"), std::vector<db::Handle>{inside_});
    EXPECT_EQ(select(L"10,10 0,0\n\n"), (std::vector<db::Handle>{inside_, across_}));
    // The arc's extents are its quarter, not its whole circle.
    EXPECT_EQ(select(L"w 19,-1 26,6\n\n"), std::vector<db::Handle>{arc_});
}

TEST_F(ObjectSelectorTest, LastPreviousHandlesAllAndDuplicates) {
    wchar_t hex[32];
    std::swprintf(hex, 32, L"%llX", static_cast<unsigned long long>(across_));
    EXPECT_EQ(select(std::wstring(hex) + L"\nl\n\n"), (std::vector<db::Handle>{across_, arc_}));
    output_.clear();
    EXPECT_EQ(select(L"p\nall\n\n"), (std::vector<db::Handle>{across_, arc_, inside_}));
    EXPECT_EQ(output_, L"Select objects: p\n2 found\nSelect objects: all\n3 found (2 duplicate), 3 total\nSelect objects: \n");
    output_.clear();
    EXPECT_EQ(select(L"nonsense\n\n"), std::vector<db::Handle>{});
    EXPECT_NE(output_.find(L"*Invalid selection*"), std::wstring::npos);
    EXPECT_EQ(select(L"w 0,0 \x03", host::PromptStatus::kCancel), std::vector<db::Handle>{}) << "a cancel drops the whole set";
}

TEST_F(ObjectSelectorTest, EntitiesOnFrozenOrOffLayersCannotBePicked) {
    db::Database& db = host_.currentDrawing()->raw();
    db::Layer hidden;
    hidden.name = "Hidden";
    hidden.off = true;
    ASSERT_TRUE(db::writeLayer(db, hidden).ok());
    db::TagList tags = db::newLine(db, {2, 2, 0}, {3, 3, 0});
    tags.setIn("AcDbEntity", 8, "Hidden");
    const db::Handle off = *db.appendEntity(db.modelSpace(), tags);
    EXPECT_EQ(select(L"w 0,0 10,10\n\n"), std::vector<db::Handle>{inside_});
    EXPECT_EQ(select(L"l\n\n"), std::vector<db::Handle>{arc_});
    auto all = select(L"all\n\n");
    EXPECT_NE(std::find(all.begin(), all.end(), off), all.end()) << "all takes layers that are off, not frozen";
}

}  // namespace
}  // namespace veltarn::seam
