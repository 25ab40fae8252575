// The host's dialogs the module shows: file choice and the text box. The module's own two dialogs
// are module code (module/ModuleDialogs.h).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace veltarn::host {

struct FileDialogRequest {
    std::wstring title;
    std::wstring initialPath;       // file name (or full path) shown at first
    std::wstring defaultExtension;  // added to a typed name without one ("txt"); empty: none
    std::wstring filter;            // "Text files (*.txt)|*.txt||": description|pattern pairs
    bool confirmOverwrite = false;  // save: ask before replacing an existing file
    bool createPrompt = false;      // save: offer to create a new file
};

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // The full path of the file chosen; nullopt when the user cancelled. Open asks for an existing
    // file; save for a file in an existing folder.
    virtual std::optional<std::wstring> openFile(const FileDialogRequest& request) = 0;
    virtual std::optional<std::wstring> saveFile(const FileDialogRequest& request) = 0;

    // The modal read-only text box, `width` by `height` pixels where that means something.
    virtual void textBox(const std::wstring& title, const std::wstring& text, int width, int height) = 0;
};

}  // namespace veltarn::host
