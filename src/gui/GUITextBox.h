// The module's one box for a longer read-only text: the about text, the statistics report.
#pragma once

#include <string>

#include "host/Dialogs.h"

namespace veltarn {

class GUITextBox {
public:
    GUITextBox(std::wstring title, const std::wstring& text, int width, int height);

    // Replaces the text. Each line feed becomes a carriage return and a line feed, as the window's
    // edit control wants its lines; one already preceded by a carriage return gets a second one.
    void setText(const std::wstring& text);

    const std::wstring& title() const { return title_; }
    // The text as the box shows it, carriage returns included.
    const std::wstring& text() const { return text_; }
    int width() const { return width_; }
    int height() const { return height_; }

    // Shows the box and returns when the user closed it; on the command line the host prints the
    // title and the text. The host gets the lines as they were given: it lays them out itself.
    void showModal(host::Dialogs& dialogs) const;

private:
    std::wstring title_;
    std::wstring text_;
    std::wstring lines_;  // as given
    int width_;
    int height_;
};

}  // namespace veltarn
