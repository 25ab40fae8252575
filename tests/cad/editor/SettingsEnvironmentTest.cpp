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

TEST(SettingsEnvironment, namedValuesAreKeptBetweenSessionsBesideThePath) {
    const fs::path dir = fs::temp_directory_path() / ("veltarn_values_" + std::to_string(::getpid()));
    const fs::path file = dir / "settings";
    {
        editor::SettingsEnvironment first(file, L"/usr/share/veltarn/support");
        EXPECT_EQ(first.setting(L"palette.visible"), std::nullopt);
        ASSERT_TRUE(first.setSetting(L"palette.visible", L"1"));
        ASSERT_TRUE(first.setSetting(L"palette.recent", L"Road=a=b \u00FC"));  // "=" in a value is fine
        ASSERT_TRUE(first.setSetting(L"palette.visible", L"0"));               // replaced, not added
        EXPECT_FALSE(first.setSetting(L"", L"x"));
        EXPECT_FALSE(first.setSetting(L"a=b", L"x"));
        EXPECT_FALSE(first.setSetting(L"line", L"two\nlines"));
        EXPECT_EQ(first.setting(L"line"), std::nullopt);
        ASSERT_TRUE(first.setSetting(L"supportPath", L"/opt/s"));  // the path's own key sets the path
        EXPECT_EQ(first.supportPath(), L"/opt/s");
    }
    editor::SettingsEnvironment second(file, L"ignored");
    EXPECT_EQ(second.setting(L"palette.visible"), L"0");
    EXPECT_EQ(second.setting(L"palette.recent"), L"Road=a=b \u00FC");
    EXPECT_EQ(second.supportPath(), L"/opt/s");
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    EXPECT_EQ(text.str(), "palette.recent=Road=a=b \xC3\xBC\npalette.visible=0\nsupportPath=/opt/s\n");
    fs::remove_all(dir);
}
