// The module's own two dialogs, "Classification parameters" and "Remove". A front end with windows
// gives the module its implementation; without one they are asked on the command line, one prompt
// per control in the dialog's order, in the module's "[0/1]<%i>" style. Users' scripts answer
// those prompts, so their words never change.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Editor.h"

namespace veltarn {

struct ModuleState;

// The four check boxes of "Classification parameters", in its order.
struct ClassificationParameters {
    bool assignGraphicalProperties = true;
    bool attachObjectData = true;
    bool changeObject = true;
    bool defineFieldValues = true;
};

class ModuleDialogs {
public:
    virtual ~ModuleDialogs() = default;

    // Shows `parameters` and, on OK, leaves there the boxes as the user left them and returns true;
    // Cancel returns false and changes nothing. "Change object" and "Define field OD" are offered
    // only while "Attach OD" is checked; the caller applies its own rule for storing them.
    virtual bool classificationParameters(ClassificationParameters& parameters) = 0;

    // The user marks some of `names` ("Select All" marks every one). On OK the marked ones are put
    // in `chosen` in the order of `names` and true is returned; Cancel returns false.
    virtual bool chooseForRemoval(const std::vector<std::wstring>& names, std::vector<std::wstring>& chosen) = 0;
};

// The dialogs on the command line. Enter keeps a box as shown; other answers are read as integers
// (the _wtoi rule) and clamped to 0 or 1; any cancelled prompt cancels the dialog.
class PromptDialogs : public ModuleDialogs {
public:
    explicit PromptDialogs(host::Editor& editor) : editor_(editor) {}

    // "Assign graphical properties", "Attach OD", then, while that is 1, "Change object" and
    // "Define field OD".
    bool classificationParameters(ClassificationParameters& parameters) override;
    // "Select All [0/1]<0>: ", then, unless all were selected, "Remove <name>? [0/1]<0>: " per name.
    bool chooseForRemoval(const std::vector<std::wstring>& names, std::vector<std::wstring>& chosen) override;

private:
    // A 0/1 prompt; false when cancelled.
    bool askFlag(const std::wstring& caption, bool& value);

    host::Editor& editor_;
};

// The dialogs a command shows: the window's when the front end set them in `state`, else prompts
// on `editor`'s command line.
ModuleDialogs& moduleDialogs(ModuleState& state, host::Editor& editor);

}  // namespace veltarn
