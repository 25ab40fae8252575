// The workbench's own commands over a real drawing: what a transcript alone does not show (files
// written, reactors told, the object-data place in LIST, scripts within scripts).
#include "cad/commands/HostSession.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "cad/db/EntityFactory.h"
#include "cad/db/SymbolTables.h"
#include "host/DatabaseReactor.h"

namespace veltarn::cad {
namespace {

namespace fs = std::filesystem;

class HostCommandsTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_commands_" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        previous_ = fs::current_path();
        fs::current_path(dir_);
        registerHostCommands(session_);
        host_.openDocument(std::make_unique<seam::WorkbenchDatabase>(db::Database::createNew()));
        db::Database& db = host_.currentDrawing()->raw();
        line_ = *db.appendEntity(db.modelSpace(), db::newLine(db, {0, 0, 0}, {1, 1, 0}));
    }
    void TearDown() override {
        fs::current_path(previous_);
        fs::remove_all(dir_);
    }

    std::wstring type(const std::wstring& text) {
        output_.clear();
        host_.commandLine().input().append(text);
        while (!session_.quitRequested && host_.commandLine().step()) {
        }
        return output_;
    }
    bool hasLayer(const char* name) { return db::readLayer(host_.currentDrawing()->raw(), name).has_value(); }

    fs::path dir_, previous_;
    std::wstring output_;
    seam::WorkbenchHost host_{[this](const std::wstring& text) { output_ += text; }, "/nonexistent/settings"};
    HostSession session_{host_};
    db::Handle line_ = 0;
};

TEST_F(HostCommandsTest, QuitSavesAChangedDrawingWhenTheAnswerIsYesAndStopsTheSession) {
    type(L"-LAYER N Roads\n\nSAVEAS kept.dxf\n-LAYER N Rivers\n\nQUIT\nYes\nHELP\n");
    EXPECT_TRUE(session_.quitRequested);
    EXPECT_EQ(output_.find(L"Command: HELP"), std::wstring::npos) << "nothing runs after QUIT";
    auto saved = seam::WorkbenchDatabase::read(dir_ / "kept.dxf");
    ASSERT_TRUE(saved.ok()) << saved.message();
    EXPECT_TRUE(db::readLayer(saved.value()->raw(), "Rivers")) << "saved on quit, with the last change";
    EXPECT_FALSE(host_.currentDrawing()->modified());
}

TEST_F(HostCommandsTest, AFailedSaveSaysWhyAndKeepsTheDrawingModified) {
    type(L"-LAYER N Roads\n\nSAVEAS\n" + dir_.wstring() + L"/no/such/folder/x.dxf\n");
    EXPECT_NE(output_.find(L"Folder not found"), std::wstring::npos) << output_;
    fs::create_directories(dir_ / "blocked.dxf");
    type(L"SAVEAS blocked.dxf\n");
    EXPECT_NE(output_.find(L"Not a file"), std::wstring::npos) << output_;
    EXPECT_TRUE(host_.currentDrawing()->modified());
    EXPECT_TRUE(host_.currentDrawing()->path().empty());
}

TEST_F(HostCommandsTest, EraseTellsTheReactorsAndUndoBringsTheEntityBack) {
    struct Erasures : host::DatabaseReactor {
        void objectErased(host::Database&, host::ObjectId id, bool erased) override {
            events.push_back(std::to_string(id.handle) + (erased ? " erased" : " back"));
        }
        std::vector<std::string> events;
    } reactor;
    host_.currentDrawing()->addReactor(&reactor);
    type(L"ERASE last\n\nU\n");
    host_.currentDrawing()->removeReactor(&reactor);
    const std::string id = std::to_string(line_);
    EXPECT_EQ(reactor.events, (std::vector<std::string>{id + " erased", id + " back"}));
    EXPECT_TRUE(host_.currentDrawing()->raw().exists(line_));
}

TEST_F(HostCommandsTest, ListLeavesThePlaceForObjectDataAfterTheExtensionDictionary) {
    session_.listObjectData = [](host::Database&, host::ObjectId id) {
        return L"  Object data of " + std::to_wstring(id.handle) + L"\n";
    };
    const std::wstring listed = type(L"LIST all\n\n");
    const std::size_t layer = listed.find(L"Layer: \"0\""), data = listed.find(L"Object data of " + std::to_wstring(line_));
    ASSERT_NE(data, std::wstring::npos) << listed;
    EXPECT_LT(layer, data);
}

TEST_F(HostCommandsTest, AScriptRunsAfterTheCommandAndMayStartAnotherScript) {
    std::ofstream(dir_ / "outer.scr") << "-LAYER N Outer\n\nSCRIPT inner\nGETVAR CLAYER";  // no last line end
    std::ofstream(dir_ / "inner.scr") << "\xEF\xBB\xBF-LAYER M Inner\n\n";
    type(L"SCRIPT outer\n-LAYER N Typed\n\n");
    EXPECT_TRUE(hasLayer("Outer") && hasLayer("Inner") && hasLayer("Typed"));
    // The inner script ran before the rest of the outer one: CLAYER is already the new layer.
    EXPECT_NE(output_.find(L"Enter variable name: CLAYER\n\"Inner\"\n"), std::wstring::npos) << output_;
    EXPECT_LT(output_.find(L"\"Inner\""), output_.find(L"Typed"));
}

}  // namespace
}  // namespace veltarn::cad
