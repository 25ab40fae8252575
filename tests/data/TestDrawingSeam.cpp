// Opens workbench drawings for the object-data tests through the workbench's own implementation
// of the seam.
#include "TestDrawing.h"
#include "ExternalTools.h"

#include "cad/seam/WorkbenchDatabase.h"

#include <gtest/gtest.h>

namespace veltarn::test {

namespace {

class Drawing : public TestDrawing {
public:
    explicit Drawing(std::unique_ptr<seam::WorkbenchDatabase> db) : db_(std::move(db)) {}

    host::Database& db() override { return *db_; }
    void save(const std::filesystem::path& path) override {
        auto saved = db_->raw().save(path);
        ASSERT_TRUE(saved.ok()) << saved.message();
        // What a test saves must be sound: a command that writes a broken drawing fails a test.
        EXPECT_EQ(testtools::workbenchAudit(path), "") << path;
    }
    void beginCommand(const std::string& name) override { db_->raw().beginCommand(name); }
    void endCommand() override { db_->raw().endCommand(); }
    bool undo() override { return db_->undo(); }
    bool redo() override { return db_->redo(); }

private:
    std::unique_ptr<seam::WorkbenchDatabase> db_;
};

}  // namespace

std::unique_ptr<TestDrawing> TestDrawing::load(const std::string& fixture) {
    return read(std::filesystem::path(VELTARN_SOURCE_DIR) / "tests/data/data" / fixture);
}

std::unique_ptr<TestDrawing> TestDrawing::read(const std::filesystem::path& path) {
    auto loaded = seam::WorkbenchDatabase::read(path);
    if (!loaded) {
        ADD_FAILURE() << loaded.message();
        return createNew();
    }
    return std::make_unique<Drawing>(std::move(*loaded));
}

std::unique_ptr<TestDrawing> TestDrawing::createNew() {
    return std::make_unique<Drawing>(std::make_unique<seam::WorkbenchDatabase>(db::Database::createNew()));
}

}  // namespace veltarn::test
