#include "app/CVeltarnApp.h"
#include "app/ModuleEntry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "TestHost.h"
#include "cad/editor/CommandRegistry.h"
#include "host/Utf8.h"

using namespace veltarn;
using veltarn::testing::TestHost;
namespace fs = std::filesystem;

namespace {

// A palette set whose pages write their lists as real files and which logs what happens to it.
class FilePaletteSet : public ClassificationPaletteSet {
public:
    FilePaletteSet(std::vector<std::wstring>& log, bool recentPage, bool favoritesPage)
        : log_(log), recentPage_(recentPage), favoritesPage_(favoritesPage) {}
    bool hasClassificationPage() const override { return true; }
    bool hasRecentPage() const override { return recentPage_; }
    bool hasFavoritesPage() const override { return favoritesPage_; }
    void setClassifier(const Classifier*) override { log_.push_back(L"classification page: new classifier"); }
    void loadRecent(const std::wstring&) override { log_.push_back(L"load recent"); }
    void loadFavorites(const std::wstring&) override { log_.push_back(L"load favorites"); }
    void addRecent(const std::wstring& name) override { log_.push_back(L"recent: " + name); }
    void refreshRecent() override { log_.push_back(L"refresh recent"); }
    void refreshFavorites() override { log_.push_back(L"refresh favorites"); }
    void saveRecent(const std::wstring& path) override { write(path, L"recent"); }
    void saveFavorites(const std::wstring& path) override { write(path, L"favorites"); }
    void destroyWindow() override { log_.push_back(L"destroy palette set"); }

private:
    void write(const std::wstring& path, const std::wstring& what) {
        std::ofstream(host::toUtf8(path)) << "Road\t0\n";
        log_.push_back(L"save " + what);
    }
    std::vector<std::wstring>& log_;
    bool recentPage_, favoritesPage_;
};

class LoggingPropertiesSet : public PropertiesPaletteSet {
public:
    explicit LoggingPropertiesSet(std::vector<std::wstring>& log) : log_(log) {}
    void setClassifier(const Classifier*) override { log_.push_back(L"properties: new classifier"); }
    void destroyWindow() override { log_.push_back(L"destroy properties set"); }

private:
    std::vector<std::wstring>& log_;
};

class CVeltarnAppTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_app_" + std::to_string(::getpid()));
        fs::create_directories(dir_);
        classifierPath_ = host::fromUtf8((dir_ / "roads.txt").string());
    }
    void TearDown() override { fs::remove_all(dir_); }

    bool listFilesExist() const {
        return fs::exists(host::toUtf8(classifierPath_ + L".recent")) ||
               fs::exists(host::toUtf8(classifierPath_ + L".favorites"));
    }
    void loadClassifier() {
        state_.classifier = std::make_unique<Classifier>(classifierPath_);
        state_.classifierPath = classifierPath_;
    }

    TestHost host_;
    ModuleState state_;
    CVeltarnApp app_{host_, state_};
    std::vector<std::wstring> log_;
    fs::path dir_;
    std::wstring classifierPath_;
};

TEST_F(CVeltarnAppTest, initRegistersTheSampleGroupThenTheModulesCommandsInTableOrderWithFlags70) {
    ASSERT_EQ(app_.On_kInitAppMsg(), AppResult::kRetOK);
    const std::vector<std::wstring> expected = {
        L"VELTARN_CLASSIFY", L"VELTARN_CLASSIFY_AUTO", L"VELTARN_DRAW", L"VELTARN_GUI", L"VELTARN_PROPERTIES",
        L"VELTARN_LOAD", L"VELTARN_RESTORE", L"VELTARN_RELOAD", L"VELTARN_REMOVE", L"VELTARN_REMOVE_ALL",
        L"VELTARN_SEL", L"VELTARN_SEL_CLASS", L"VELTARN_SEL_EXT", L"VELTARN_SEL_ALL", L"VELTARN_SEL_NULL",
        L"VELTARN_ASSERT", L"VELTARN_SORT", L"VELTARN_SEL_CLASSIFIED", L"VELTARN_SEL_DUPLICATES",
        L"VELTARN_DEL_DUPLICATES", L"VELTARN_ROUND", L"VELTARN_TEMPLATE", L"VELTARN_TYPE", L"VELTARN_STAT",
        L"VELTARN_ABOUT", L"VELTARN_IMPL_INSRT", L"VELTARN_IMPL_TXT", L"VELTARN_IMPL_MTXT"};
    std::vector<editor::Command> commands;
    for (const editor::Command* c : host_.commands.commands())
        if (c->group == L"MyGroup" || c->group == L"VELTARN") commands.push_back(*c);
    ASSERT_EQ(commands.size(), 3 + expected.size());

    EXPECT_EQ(commands[0].globalName, L"MyCommand");
    EXPECT_EQ(commands[0].localName, L"MyCommandLocal");
    EXPECT_EQ(commands[0].flags, 0);
    EXPECT_EQ(commands[1].globalName, L"MyPickFirst");
    EXPECT_EQ(commands[1].localName, L"MyPickFirstLocal");
    EXPECT_EQ(commands[1].flags, 2);
    EXPECT_EQ(commands[2].globalName, L"MySessionCmd");
    EXPECT_EQ(commands[2].localName, L"MySessionCmdLocal");
    EXPECT_EQ(commands[2].flags, 0x200000);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(commands[i].group, L"MyGroup");

    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& c = commands[3 + i];
        EXPECT_EQ(c.group, L"VELTARN");
        EXPECT_EQ(c.globalName, expected[i]);
        EXPECT_EQ(c.localName, expected[i]);
        EXPECT_EQ(c.flags, 70) << c.globalName;
    }
}

TEST_F(CVeltarnAppTest, unbuiltCommandsSayWhyTheyDoNothing) {
    app_.On_kInitAppMsg();
    EXPECT_EQ(host_.type(L"veltarn_classify\nVELTARN_GUI\n"),
              L"Command: veltarn_classify\nError: no file loaded.\n"
              L"Command: VELTARN_GUI\nError: 'VELTARN_GUI' is not available yet.\n");
    // With a classifier the same command gets past the check and says it is not built.
    loadClassifier();
    EXPECT_EQ(host_.type(L"_VELTARN_DRAW\n"),
              L"Command: _VELTARN_DRAW\nError: 'VELTARN_DRAW' is not available yet.\n");
}

// A command's handler gets the host and the module state, after the classifier check of its entry.
void countRun(CommandContext& context) {
    context.host.editor().print(L"ran with " + std::to_wstring(context.state.classifierPath.size()) + L"\n");
}

TEST_F(CVeltarnAppTest, aTablesHandlersRunWithTheirContextAfterTheClassifierCheck) {
    const std::array<CommandEntry, 2> table{{{L"VELTARN_DRAW", true, &countRun}, {L"VELTARN_ABOUT", false, &countRun}}};
    CVeltarnApp app(host_, state_, table);
    app.On_kInitAppMsg();
    EXPECT_EQ(host_.type(L"veltarn_draw\nveltarn_about\n"),
              L"Command: veltarn_draw\nError: no file loaded.\nCommand: veltarn_about\nran with 0\n");
    loadClassifier();
    EXPECT_EQ(host_.type(L"veltarn_draw\n"), L"Command: veltarn_draw\nran with " + std::to_wstring(classifierPath_.size()) + L"\n");
}

TEST_F(CVeltarnAppTest, sampleCommandsAndLispFunctionBehaveAsTheTemplateDefinesThem) {
    app_.On_kInitAppMsg();
    EXPECT_EQ(host_.type(L"MyPickFirstLocal\nMyCommandLocal\n_MySessionCmd\n"),
              L"Command: MyPickFirstLocal\nCommand: MyCommandLocal\nCommand: _MySessionCmd\n");
    EXPECT_EQ(host_.commandLine.selections, std::vector<host::SelectionMode>{host::SelectionMode::kImplied});

    // The lisp function is defined per document.
    EXPECT_EQ(host_.commands.findFunction(L"MyLispFunction"), nullptr);
    app_.dispatch(AppMessage::kLoadDwg);
    EXPECT_EQ(host_.type(L"(MyLispFunction)\n"), L"Command: (MyLispFunction)\nnil\n");
    app_.dispatch(AppMessage::kUnloadDwg);
    EXPECT_EQ(host_.commands.findFunction(L"MyLispFunction"), nullptr);
}

TEST_F(CVeltarnAppTest, unloadTearsDownInOrderAndSavesListsBesideTheClassifier) {
    app_.On_kInitAppMsg();
    loadClassifier();
    state_.paletteSet = std::make_unique<FilePaletteSet>(log_, true, true);
    state_.propertiesPaletteSet = std::make_unique<LoggingPropertiesSet>(log_);
    state_.freeResourceLibrary = [&] { log_.push_back(L"free resource library"); };

    EXPECT_EQ(app_.On_kUnloadAppMsg(), AppResult::kRetOK);
    const std::vector<std::wstring> expected = {L"save favorites", L"save recent", L"destroy palette set",
                                                L"destroy properties set", L"free resource library"};
    EXPECT_EQ(log_, expected);
    EXPECT_TRUE(fs::exists(host::toUtf8(classifierPath_ + L".favorites")));
    EXPECT_TRUE(fs::exists(host::toUtf8(classifierPath_ + L".recent")));
    EXPECT_FALSE(state_.paletteSet || state_.propertiesPaletteSet || state_.classifier || state_.freeResourceLibrary);
    EXPECT_EQ(host_.commands.removedGroups, (std::vector<std::wstring>{L"VELTARN", L"MyGroup"}));
    EXPECT_EQ(host_.type(L"veltarn_classify\nMyCommand\n"),
              L"Command: veltarn_classify\nUnknown command \"VELTARN_CLASSIFY\".\n"
              L"Command: MyCommand\nUnknown command \"MYCOMMAND\".\n");
}

TEST_F(CVeltarnAppTest, unloadWithoutClassifierWritesNoListsEvenWithPalettes) {
    state_.paletteSet = std::make_unique<FilePaletteSet>(log_, true, true);
    state_.classifierPath = classifierPath_;  // a path alone is not a loaded classifier
    app_.On_kUnloadAppMsg();
    EXPECT_FALSE(listFilesExist());
    EXPECT_EQ(log_, std::vector<std::wstring>{L"destroy palette set"});
}

TEST_F(CVeltarnAppTest, unloadWithClassifierButNoPaletteSetWritesNoLists) {
    loadClassifier();
    app_.On_kUnloadAppMsg();
    EXPECT_FALSE(listFilesExist());
    EXPECT_FALSE(state_.classifier);
}

TEST_F(CVeltarnAppTest, unloadSavesOnlyThePagesThatExist) {
    loadClassifier();
    state_.paletteSet = std::make_unique<FilePaletteSet>(log_, true, false);
    app_.On_kUnloadAppMsg();
    EXPECT_TRUE(fs::exists(host::toUtf8(classifierPath_ + L".recent")));
    EXPECT_FALSE(fs::exists(host::toUtf8(classifierPath_ + L".favorites")));
}

TEST(ModuleEntry, loadsOnceAndIgnoresMessagesWhenNotLoaded) {
    TestHost host;
    EXPECT_EQ(veltarnEntryPoint(AppMessage::kLoadDwg, host), AppResult::kRetOK);  // not loaded yet
    EXPECT_EQ(host.commands.findFunction(L"MyLispFunction"), nullptr);
    ASSERT_EQ(veltarnEntryPoint(AppMessage::kInitApp, host), AppResult::kRetOK);
    EXPECT_NE(loadedApp(), nullptr);
    EXPECT_EQ(veltarnEntryPoint(AppMessage::kInitApp, host), AppResult::kRetError);
    EXPECT_EQ(host.commands.commands().size(), 2u + 31u);  // GETVAR, SETVAR; the refused load added nothing
    EXPECT_EQ(veltarnEntryPoint(AppMessage::kUnloadApp, host), AppResult::kRetOK);
    EXPECT_EQ(loadedApp(), nullptr);
    EXPECT_EQ(host.commands.commands().size(), 2u);
}

}  // namespace
