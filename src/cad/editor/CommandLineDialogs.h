// The host's dialogs answered on the command line: file names typed, the text box printed.
#pragma once

#include "host/Dialogs.h"
#include "host/Editor.h"

namespace veltarn::editor {

// As CAD programs do with their file dialogs switched off: file names are typed, the text box is
// printed. A cancelled prompt cancels the dialog.
class CommandLineDialogs : public host::Dialogs {
public:
    explicit CommandLineDialogs(host::Editor& editor) : editor_(editor) {}

    // "Enter name of file to open <initial>: ". Enter takes the initial name; a name without an
    // extension gets the default one; a relative name is taken from the working folder. A file
    // that does not exist is reported and gives nullopt.
    std::optional<std::wstring> openFile(const host::FileDialogRequest& request) override;
    // "Enter name of file to save <initial>: ". The folder must exist; an existing file is replaced
    // only after "Replace it? [Yes/No] <No>: " is answered Yes, when the request asks for that.
    std::optional<std::wstring> saveFile(const host::FileDialogRequest& request) override;
    // Why the last saveFile() gave nullopt when a path was typed that cannot be saved to, as an
    // error message ("/a/b: folder not found", "/a/b.dxf: is a directory"): a failed save, not a
    // cancel. Empty otherwise.
    const std::wstring& saveRefusal() const { return saveRefusal_; }
    // The title on a line of its own, then the text.
    void textBox(const std::wstring& title, const std::wstring& text, int width, int height) override;

private:
    std::optional<std::wstring> askPath(const std::wstring& prompt, const host::FileDialogRequest& request);

    host::Editor& editor_;
    std::wstring saveRefusal_;
};

}  // namespace veltarn::editor
