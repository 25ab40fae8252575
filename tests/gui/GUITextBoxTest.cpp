#include "gui/AboutCommand.h"
#include "gui/GUITextBox.h"

#include <gtest/gtest.h>

namespace veltarn {
namespace {

class RecordingDialogs : public host::Dialogs {
public:
    std::optional<std::wstring> openFile(const host::FileDialogRequest&) override { return std::nullopt; }
    std::optional<std::wstring> saveFile(const host::FileDialogRequest&) override { return std::nullopt; }
    void textBox(const std::wstring& title, const std::wstring& text, int width, int height) override {
        shown = title + L"|" + text + L"|" + std::to_wstring(width) + L"x" + std::to_wstring(height);
    }
    std::wstring shown;
};

// The window's edit control wants carriage returns; the conversion does not look back, so a
// carriage return already there gets a second one.
TEST(GUITextBox, EveryLineFeedGetsACarriageReturnAndTheHostGetsTheLinesAsGiven) {
    GUITextBox box(L"Statistics", L"a\nb\r\nc", 500, 400);
    EXPECT_EQ(box.text(), L"a\r\nb\r\r\nc");
    box.setText(L"\n\n");
    EXPECT_EQ(box.text(), L"\r\n\r\n");

    RecordingDialogs dialogs;
    GUITextBox(L"About", L"x\ny", 500, 400).showModal(dialogs);
    EXPECT_EQ(dialogs.shown, L"About|x\ny|500x400");
}

TEST(GUITextBox, AboutTextNamesTheProductAndThisBuildsVersion) {
    const std::wstring text = aboutText();
    EXPECT_EQ(text.rfind(L"VELTARN\nVersion ", 0), 0u);
    EXPECT_EQ(text.find(L"%s"), std::wstring::npos);
    EXPECT_NE(text.find(L"without warranty"), std::wstring::npos);
}

}  // namespace
}  // namespace veltarn
