// The answers the module's commands remember from one run to the next: module-wide, for as long
// as the module is loaded, not per drawing and not saved. Each command has its own copies.
#pragma once

#include <string>

#include "module/ModuleDialogs.h"

namespace veltarn {

struct SelectionOptions {
    int useProperties = 1;
    int useObjects = 1;
    int match = 1;
};

struct CommandOptions {
    SelectionOptions selectExtended;      // VELTARN_SEL_EXT
    SelectionOptions selectAll;           // VELTARN_SEL_ALL
    int selectClassifiedMatch = 1;        // VELTARN_SEL_CLASSIFIED
    int selectNullCheckNonRequired = 0;   // VELTARN_SEL_NULL
    int assertCheckNonRequired = 0;       // VELTARN_ASSERT
    int restoreMode = 0;                  // VELTARN_RESTORE: 0 all, 1 default
    ClassificationParameters classification;  // VELTARN_CLASSIFY's dialog
    int autoMode = 0;                     // VELTARN_CLASSIFY_AUTO: 0 properties, 1 classes
    int autoUndrawable = 0;               // VELTARN_CLASSIFY_AUTO: also classes not flagged
    std::wstring templateFormat = L"%t_%i_%L";  // VELTARN_TEMPLATE: how objects are named
    int roundDecimals = -1;               // VELTARN_ROUND; -1 until first asked: then LUPREC
    double duplicateTolerance = 1e-6;     // VELTARN_SEL_DUPLICATES and VELTARN_DEL_DUPLICATES, shared
};

}  // namespace veltarn
