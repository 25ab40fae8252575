#include "cad/editor/CommandLineDialogs.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "cad/editor/CommandLine.h"
#include "host/Utf8.h"

using namespace veltarn;
namespace fs = std::filesystem;

namespace {

class CommandLineDialogsTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_dialogs_" + std::to_string(::getpid()));
        fs::create_directories(dir_);
        std::ofstream(dir_ / "roads.txt") << "class\n";
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::wstring path(const char* name) const { return host::fromUtf8((dir_ / name).string()); }
    void type(const std::wstring& text) {
        transcript_.clear();
        line_.input().append(text);
    }

    fs::path dir_;
    editor::CommandRegistry registry_;
    editor::SystemVariableTable variables_;
    std::wstring transcript_;
    editor::CommandLine line_{registry_, variables_, [this](const std::wstring& t) { transcript_ += t; }};
    editor::CommandLineDialogs dialogs_{line_};
};

TEST_F(CommandLineDialogsTest, openTakesATypedOrInitialExistingFile) {
    host::FileDialogRequest request;
    request.initialPath = path("roads.txt");
    type(L"\n" + path("missing.txt") + L"\n" + path("roads") + L"\n");
    EXPECT_EQ(dialogs_.openFile(request), path("roads.txt"));  // Enter takes the initial name
    EXPECT_EQ(dialogs_.openFile(request), std::nullopt);
    EXPECT_NE(transcript_.find(L"File not found: " + path("missing.txt")), std::wstring::npos);
    request.defaultExtension = L"txt";
    EXPECT_EQ(dialogs_.openFile(request), path("roads.txt"));
    type(L"\x03");
    EXPECT_EQ(dialogs_.openFile(request), std::nullopt);
}

TEST_F(CommandLineDialogsTest, saveAsksBeforeReplacingAndNeedsAnExistingFolder) {
    host::FileDialogRequest request;
    request.defaultExtension = L"txt";
    request.confirmOverwrite = true;
    type(path("new file") + L"\n" + path("roads.txt") + L"\nno\n" + path("roads.txt") + L"\ny\n" +
         path("nofolder/x.txt") + L"\n");
    EXPECT_EQ(dialogs_.saveFile(request), path("new file.txt"));
    EXPECT_EQ(dialogs_.saveFile(request), std::nullopt);
    EXPECT_EQ(dialogs_.saveFile(request), path("roads.txt"));
    EXPECT_EQ(dialogs_.saveFile(request), std::nullopt);
    EXPECT_NE(transcript_.find(L"Folder not found: "), std::wstring::npos);
}

}  // namespace
