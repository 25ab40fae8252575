// Palette sets made by the module's factories: made once, shown and hidden, their state kept in
// the user's settings and given back in the next session.
#include "cad/seam/WorkbenchPalettes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

#include "cad/editor/SettingsEnvironment.h"

namespace veltarn::seam {
namespace {

namespace fs = std::filesystem;

struct Pages : host::PaletteContent {
    std::wstring page = L"Classification";
};

class ClassificationFactory : public host::PaletteSetFactory {
public:
    explicit ClassificationFactory(int& made) : made_(made) {}
    std::wstring id() const override { return L"{4E00EAC5-B698-445f-B8D0-5486239FAEC4}"; }
    std::wstring title() const override { return L"Classification"; }
    std::unique_ptr<host::PaletteContent> create() override {
        ++made_;
        return std::make_unique<Pages>();
    }
    std::wstring saveState(const host::PaletteContent& content) const override {
        return static_cast<const Pages&>(content).page;
    }
    void restoreState(host::PaletteContent& content, const std::wstring& state) override {
        static_cast<Pages&>(content).page = state;
    }

private:
    int& made_;
};

TEST(WorkbenchPalettes, SetsAreMadeOnceAndOpenInTheNextSessionAsTheyWereLeft) {
    const fs::path file = fs::temp_directory_path() / ("veltarn_palettes_" + std::to_string(::getpid())) / "settings";
    const std::wstring id = L"{4E00EAC5-B698-445f-B8D0-5486239FAEC4}";
    int made = 0;
    {
        editor::SettingsEnvironment settings(file, L"");
        WorkbenchPalettes palettes(settings);
        ASSERT_TRUE(palettes.addFactory(std::make_unique<ClassificationFactory>(made)));
        EXPECT_FALSE(palettes.addFactory(std::make_unique<ClassificationFactory>(made))) << "one factory per id";
        EXPECT_EQ(palettes.content(id), nullptr) << "not made before it is shown";
        EXPECT_EQ(palettes.show(L"{no such set}"), nullptr);
        auto* pages = static_cast<Pages*>(palettes.show(id));
        ASSERT_NE(pages, nullptr);
        pages->page = L"Favorites";
        palettes.hide(id);
        EXPECT_FALSE(palettes.isVisible(id));
        EXPECT_EQ(palettes.show(id), pages) << "shown again, not made again";
        EXPECT_EQ(made, 1);
        EXPECT_FALSE(palettes.wasVisible(id)) << "nothing saved yet";
    }  // the session ends with the set shown
    {
        editor::SettingsEnvironment settings(file, L"");
        WorkbenchPalettes palettes(settings);
        ASSERT_TRUE(palettes.addFactory(std::make_unique<ClassificationFactory>(made)));
        EXPECT_TRUE(palettes.wasVisible(id));
        auto* pages = static_cast<Pages*>(palettes.show(id));
        ASSERT_NE(pages, nullptr);
        EXPECT_EQ(pages->page, L"Favorites");
        palettes.hide(id);
        palettes.removeFactory(id);
        EXPECT_EQ(palettes.show(id), nullptr);
        EXPECT_FALSE(palettes.wasVisible(id)) << "it was hidden when it ended";
    }
    EXPECT_EQ(made, 2);
    fs::remove_all(file.parent_path());
}

}  // namespace
}  // namespace veltarn::seam
