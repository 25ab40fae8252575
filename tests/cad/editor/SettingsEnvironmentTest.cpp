#include "cad/editor/SettingsEnvironment.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <unistd.h>

using namespace veltarn;
namespace fs = std::filesystem;

TEST(SettingsEnvironment, theSupportPathSurvivesTheSessionAndOtherSettingsAreKept) {
    const fs::path dir = fs::temp_directory_path() / ("veltarn_settings_" + std::to_string(::getpid()));
    const fs::path file = dir / "sub" / "settings";
    {
        editor::SettingsEnvironment first(file, L"/usr/share/veltarn/support");
        EXPECT_EQ(first.supportPath(), L"/usr/share/veltarn/support");  // no file yet
        ASSERT_TRUE(first.setSupportPath(L"/srv/u/support;/srv/u/f\u00FCr"));
    }
    std::ofstream(file, std::ios::app) << "other=1\n";
    {
        editor::SettingsEnvironment second(file, L"ignored");
        EXPECT_EQ(second.supportPath(), L"/srv/u/support;/srv/u/f\u00FCr");
        EXPECT_FALSE(second.setSupportPath(L"a\nb"));
        EXPECT_EQ(second.supportPath(), L"/srv/u/support;/srv/u/f\u00FCr");
        ASSERT_TRUE(second.setSupportPath(L""));
    }
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    EXPECT_EQ(text.str(), "other=1\nsupportPath=\n");
    fs::remove_all(dir);
}
