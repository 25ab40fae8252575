// The workbench host: documents, the queue of sent strings, side drawings, undo steps per command.
#include "cad/seam/WorkbenchHost.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "cad/db/EntityFactory.h"
#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"
#include "host/DatabaseReactor.h"
#include "host/EditorReactor.h"

namespace veltarn::seam {
namespace {

namespace fs = std::filesystem;

class WorkbenchHostTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_seam_" + std::to_string(::getpid()));
        fs::create_directories(dir_);
        host_.openDocument(std::make_unique<WorkbenchDatabase>(db::Database::createNew()));
    }
    void TearDown() override {
        fs::remove_all(dir_);
        fs::remove_all(fs::temp_directory_path() / ("veltarn_seam_settings_" + std::to_string(::getpid())));
    }

    std::wstring type(const std::wstring& text) {
        output_.clear();
        host_.commandLine().input().append(text);
        host_.commandLine().run();
        return output_;
    }

    fs::path dir_;
    std::wstring output_;
    WorkbenchHost host_{[this](const std::wstring& text) { output_ += text; }, fs::temp_directory_path() / ("veltarn_seam_settings_" + std::to_string(::getpid())) / "settings"};
};

TEST_F(WorkbenchHostTest, SentStringsRunAfterTheCommandThatSentThem) {
    auto& commands = host_.commandStack();
    commands.addCommand(L"T", L"SENDER", L"SENDER", 0, [this] {
        host_.documents().sendStringToExecute(*host_.documents().current(), L"SECOND\n");
        host_.editor().print(L"sender ends\n");
    });
    commands.addCommand(L"T", L"SECOND", L"SECOND", 0, [this] { host_.editor().print(L"second runs\n"); });
    EXPECT_EQ(type(L"SENDER\n"), L"Command: SENDER\nsender ends\nCommand: SECOND\nsecond runs\n");
}

TEST_F(WorkbenchHostTest, EachCommandIsOneUndoStepAndMarksTheDrawingModified) {
    host_.commandStack().addCommand(L"T", L"TWOLINES", L"TWOLINES", 0, [this] {
        host::Database* db = host_.workingDatabase();
        (void)db->appendEntity(db->modelSpace(), host::EntityClass::kLine);
        (void)db->appendEntity(db->modelSpace(), host::EntityClass::kLine);
    });
    host_.commandStack().addCommand(L"T", L"LOOK", L"LOOK", 0, [] {});
    WorkbenchDatabase& drawing = *host_.currentDrawing();
    type(L"LOOK\n");
    EXPECT_FALSE(drawing.modified()) << "a command that changes nothing";
    type(L"TWOLINES\n");
    EXPECT_TRUE(drawing.modified());
    EXPECT_EQ(drawing.blockEntities(drawing.modelSpace()).size(), 2u);
    EXPECT_TRUE(drawing.undo());
    EXPECT_TRUE(drawing.blockEntities(drawing.modelSpace()).empty()) << "both lines go with one undo";
    EXPECT_FALSE(drawing.undo());
}

TEST_F(WorkbenchHostTest, SideDrawingsAreDxfWhateverTheirExtension) {
    const fs::path asDwg = dir_ / "blocks.dwg";
    ASSERT_TRUE(db::Database::createNew().save(asDwg).ok());
    auto side = host_.readDrawing(asDwg.wstring());
    ASSERT_TRUE(side);
    EXPECT_TRUE(side->hasSymbol(host::SymbolTable::kLayer, L"0"));
    EXPECT_EQ(host_.documents().documentOf(*side), nullptr) << "a side drawing is no document";
    EXPECT_EQ(host_.documents().documentOf(*host_.workingDatabase()), host_.documents().current());

    const fs::path realDwg = dir_ / "real.dwg";
    std::ofstream(realDwg, std::ios::binary) << std::string("AC1032\0\0\0\0\0\x03\x01", 13) << std::string(200, '\x7f');
    EXPECT_EQ(host_.readDrawing(realDwg.wstring()), nullptr);
    EXPECT_EQ(host_.readDrawing((dir_ / "missing.dxf").wstring()), nullptr);
}

TEST_F(WorkbenchHostTest, DocumentEventsAndNamesFollowTheOpenDrawing) {
    std::vector<std::string> events;
    host_.setDocumentEvents([&] { events.push_back("close"); }, [&] { events.push_back("open"); });
    EXPECT_EQ(type(L"DWGNAME\n"), L"Command: DWGNAME\nDWGNAME = \"Drawing1.dxf\" (read only)\n");
    const fs::path file = dir_ / "roads.dxf";
    ASSERT_TRUE(db::Database::createNew().save(file).ok());
    host_.openDocument(std::move(WorkbenchDatabase::read(file).value()));
    EXPECT_EQ(events, (std::vector<std::string>{"close", "open"}));
    EXPECT_EQ(host_.documents().current()->fileName(), L"roads.dxf");
    auto prefix = host_.systemVariables().get(L"DWGPREFIX");
    EXPECT_EQ(prefix->text, fs::canonical(dir_).wstring() + L"/");

    auto lock = host_.documents().lock(*host_.documents().current(), host::LockMode::kExclusiveWrite);
    EXPECT_TRUE(lock.locked());
    EXPECT_EQ(host_.workbenchDocuments().lockDepth(), 1);
    { auto nested = host_.documents().lock(*host_.documents().current(), host::LockMode::kShared); }
    EXPECT_EQ(host_.workbenchDocuments().lockDepth(), 1);
}

// What the palettes listen to: objects changed in place, the pick-first set, documents coming and going.
TEST_F(WorkbenchHostTest, ReactorsHearOfModifiedObjectsThePickFirstSetAndDocuments) {
    struct Recorder : host::DatabaseReactor, host::EditorReactor, host::DocumentReactor {
        void objectModified(host::Database&, host::ObjectId id) override { events.push_back("modified " + std::to_string(id.handle)); }
        void pickFirstModified() override { events.push_back("pick-first"); }
        void documentActivated(host::Document& d) override { events.push_back("activated " + narrow(d.fileName())); }
        void documentToBeDestroyed(host::Document& d) override { events.push_back("closing " + narrow(d.fileName())); }
        std::vector<std::string> events;
    } recorder;
    host::Database& db = *host_.workingDatabase();
    auto line = db.appendEntity(db.modelSpace(), host::EntityClass::kLine);
    ASSERT_TRUE(line);
    const host::ObjectId id = line->id();
    line.reset();
    db.addReactor(&recorder);
    host_.editor().addReactor(&recorder);
    host_.documents().addReactor(&recorder);

    { EXPECT_TRUE(db.openEntity(id, host::OpenMode::kWrite)->setProperty(host::EntityProperty::kColor, host::Color::fromIndex(3))); }
    { auto unchanged = db.openEntity(id, host::OpenMode::kWrite); }  // opened for write, not changed
    host_.editor().setPickFirst({id});
    host_.editor().setPickFirst({id});  // the same set: no news
    db.removeReactor(&recorder);
    const fs::path file = dir_ / "next.dxf";
    ASSERT_TRUE(db::Database::createNew().save(file).ok());
    host_.openDocument(std::move(WorkbenchDatabase::read(file).value()));
    host_.editor().removeReactor(&recorder);
    host_.documents().removeReactor(&recorder);
    host_.closeDocument();

    const std::string modified = "modified " + std::to_string(id.handle);
    EXPECT_EQ(recorder.events, (std::vector<std::string>{modified, "pick-first", "closing Drawing1.dxf",
                                                         "pick-first", "activated next.dxf"}));
}

TEST_F(WorkbenchHostTest, TheSessionTakesTheVariablesTheDrawingsHeaderKeeps) {
    ASSERT_TRUE(host_.variables().set(L"INSUNITS", host::VariableValue::ofShort(0)));
    ASSERT_TRUE(host_.variables().set(L"CECOLOR", host::VariableValue::ofString(L"1")));
    auto drawing = WorkbenchDatabase::read(VELTARN_SOURCE_DIR "/examples/utility-survey.dxf");
    ASSERT_TRUE(drawing) << drawing.message();
    host_.openDocument(std::move(*drawing));
    EXPECT_EQ(host_.variables().get(L"INSUNITS")->integer, 6);  // metres
    EXPECT_EQ(host_.variables().get(L"CECOLOR")->text, L"BYLAYER");  // index 256 by its name
    EXPECT_EQ(host_.variables().get(L"CLAYER")->text, L"0");
    EXPECT_EQ(host_.variables().get(L"LTSCALE")->real, 1.0);
}

TEST_F(WorkbenchHostTest, ANewUserGetsASupportFolderOfTheirOwnFirstOnThePath) {
    const fs::path settings = dir_ / "config" / "settings";
    {
        WorkbenchHost fresh([](const std::wstring&) {}, settings);
        const std::wstring path = fresh.environment().supportPath();
        EXPECT_EQ(path.find(wide((dir_ / "config" / "support").string()) + L";"), 0u) << narrow(path);
        EXPECT_TRUE(fs::exists(dir_ / "config" / "support" / "acad.pat"));
        // Patterns of the copied files are found through the drawing.
        fresh.openDocument(std::make_unique<WorkbenchDatabase>(db::Database::createNew()));
        EXPECT_TRUE(fresh.currentDrawing()->hasHatchPattern(L"CROSSHATCH"));
        ASSERT_TRUE(fresh.environment().setSupportPath(L"/kept"));
    }
    // A path the user has set is theirs from then on.
    WorkbenchHost returning([](const std::wstring&) {}, settings);
    EXPECT_EQ(returning.environment().supportPath(), L"/kept");
}

}  // namespace
}  // namespace veltarn::seam
