// The module-wide objects: one of each per process, all empty until a command creates them. Every
// command reaches them through its CommandContext.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "module/CommandOptions.h"
#include "module/ModuleDialogs.h"
#include "module/PaletteSet.h"
#include "classifier/Classifier.h"

namespace veltarn {

struct ModuleState {
    // The loaded classifier, replaced whole by every load or reload; null before the first load.
    std::unique_ptr<Classifier> classifier;
    // Full path of the last classifier file chosen; kept after the classifier is gone.
    std::wstring classifierPath;
    // Frees a separate resource library. Nothing in the module sets one (its texts are built in),
    // but unloading honours the slot so that a host which does set it gets it freed.
    std::function<void()> freeResourceLibrary;
    // Created by VELTARN_GUI and VELTARN_PROPERTIES on first use; ended at unload.
    std::unique_ptr<ClassificationPaletteSet> paletteSet;
    std::unique_ptr<PropertiesPaletteSet> propertiesPaletteSet;
    // The module's own dialogs as windows, set by a front end that has them; null on the command
    // line, where they are asked as prompts (made on first use).
    std::unique_ptr<ModuleDialogs> windowDialogs;
    std::unique_ptr<ModuleDialogs> promptDialogs;
    // What the commands remember of their last answers.
    CommandOptions options;
};

// The one state of this process. Commands reach it here; tests build their own ModuleState.
ModuleState& moduleState();

}  // namespace veltarn
