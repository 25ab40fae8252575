#include "gui/GUITextBox.h"

namespace veltarn {

GUITextBox::GUITextBox(std::wstring title, const std::wstring& text, int width, int height)
    : title_(std::move(title)), width_(width), height_(height) {
    setText(text);
}

void GUITextBox::setText(const std::wstring& text) {
    lines_ = text;
    text_.clear();
    text_.reserve(text.size() + text.size() / 16);
    for (wchar_t c : text) {
        if (c == L'\n') text_ += L'\r';
        text_ += c;
    }
}

void GUITextBox::showModal(host::Dialogs& dialogs) const { dialogs.textBox(title_, lines_, width_, height_); }

}  // namespace veltarn
