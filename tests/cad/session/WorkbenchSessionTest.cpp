// The session both front ends build: the module loads with the first drawing, follows the
// documents, and is gone after finish().
#include "cad/session/WorkbenchSession.h"
#include "ExternalTools.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace veltarn::cad {
namespace {

namespace fs = std::filesystem;

TEST(WorkbenchSession, TheModuleLoadsWithTheFirstDrawingAndFollowsTheDocuments) {
    const fs::path settings = fs::temp_directory_path() / ("veltarn_session_" + std::to_string(::getpid())) / "settings";
    std::wstring transcript;
    auto type = [&](WorkbenchSession& session, const std::wstring& text) {
        transcript.clear();
        session.commandLine().input().append(text);
        while (session.step()) {
        }
        return transcript;
    };
    {
        WorkbenchSession session([&](const std::wstring& text) { transcript += text; }, settings);
        EXPECT_NE(type(session, L"VELTARN_SEL\n").find(L"Unknown command"), std::wstring::npos) << "not loaded yet";
        session.start(std::make_unique<seam::WorkbenchDatabase>(db::Database::createNew()));
        EXPECT_EQ(type(session, L"VELTARN_SEL\n"), L"Command: VELTARN_SEL\nError: no file loaded.\n");
        // The module's lisp function is defined per document: a new drawing has it again.
        EXPECT_EQ(type(session, L"NEW\n(MyLispFunction)\n"), L"Command: NEW\nCommand: (MyLispFunction)\nnil\n");
        EXPECT_EQ(session.saveError(), "");
        auto saved = session.save(settings.parent_path() / "out.dxf");
        ASSERT_TRUE(saved.ok()) << saved.message();
        EXPECT_EQ(testtools::workbenchAudit(settings.parent_path() / "out.dxf"), "");
        EXPECT_TRUE(fs::exists(settings.parent_path() / "out.dxf"));
        session.finish();
        EXPECT_NE(type(session, L"VELTARN_SEL\n").find(L"Unknown command"), std::wstring::npos) << "unloaded";
        EXPECT_NE(type(session, L"QUIT\n"), L"");
        EXPECT_TRUE(session.quitRequested());
    }  // a second finish(), by the destructor, does nothing
    fs::remove_all(settings.parent_path());
}

}  // namespace
}  // namespace veltarn::cad
