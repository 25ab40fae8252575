// The dialogs the module shows: file choice, its own two dialogs, the text box.
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

// The four check boxes of the "Classification parameters" dialog, in its order.
struct ClassificationParameters {
    bool assignGraphicalProperties = true;
    bool attachObjectData = true;
    bool changeObject = true;
    bool defineFieldValues = true;
};

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // The full path of the file chosen; nullopt when the user cancelled. Open asks for an existing
    // file; save for a file in an existing folder.
    virtual std::optional<std::wstring> openFile(const FileDialogRequest& request) = 0;
    virtual std::optional<std::wstring> saveFile(const FileDialogRequest& request) = 0;

    // "Classification parameters": shows `parameters` and, on OK, leaves there the boxes as the user
    // left them and returns true; Cancel returns false and changes nothing. The "change object" box
    // is offered only while "attach object data" is checked; the caller applies its own rule for
    // storing it.
    virtual bool classificationParameters(ClassificationParameters& parameters) = 0;

    // "Remove": the user marks some of `names` ("Select All" marks every one). On OK the marked ones
    // are put in `chosen` in the order of `names` and true is returned; Cancel returns false.
    virtual bool chooseForRemoval(const std::vector<std::wstring>& names, std::vector<std::wstring>& chosen) = 0;

    // The modal read-only text box, `width` by `height` pixels where that means something.
    virtual void textBox(const std::wstring& title, const std::wstring& text, int width, int height) = 0;
};

}  // namespace veltarn::host
