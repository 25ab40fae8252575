// One session of the workbench with the module loaded: what `veltarn` and the desktop window both
// build, so that the two front ends differ only in where their input comes from and where their
// output goes.
//
// How a command that waits at a prompt runs under a window's event loop: the command processor
// pulls its input. A prompt asks the CommandInput for the next line, and the CommandInput asks
// its line source. The program's source reads a script or the terminal; the desktop's source runs
// a nested event loop until the command-line widget hands over a line (and gives no line, which
// cancels the prompt, when the window closes). While that nested loop turns, the command's handler
// stays where it is on the stack: the view may redraw (reading the drawing only), and palette
// actions only queue command lines with sendStringToExecute, which run after the waiting command
// ends. The module never knows which front end it runs in.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "base/Result.h"
#include "cad/commands/HostSession.h"
#include "cad/editor/CommandInput.h"
#include "cad/seam/WorkbenchHost.h"

namespace veltarn::cad {

class WorkbenchSession {
public:
    using Output = std::function<void(const std::wstring&)>;

    // `output` receives the command line's text; the user's settings are read from and written to
    // `settingsFile`. The host commands are registered; the module is not loaded yet.
    WorkbenchSession(Output output, const std::filesystem::path& settingsFile);
    // Unloads the module when it is still loaded.
    ~WorkbenchSession();
    WorkbenchSession(const WorkbenchSession&) = delete;
    WorkbenchSession& operator=(const WorkbenchSession&) = delete;

    // Opens `drawing` as the document and loads the module, which is then told of every document
    // opened and closed until finish().
    void start(std::unique_ptr<seam::WorkbenchDatabase> drawing);
    // Where commands read their input from from now on.
    void setInput(editor::CommandInput input) { workbench_.commandLine().input() = std::move(input); }
    // Runs one command (or one empty line); false when the input has ended or QUIT was given.
    bool step();
    // Tells the module the document closes and unloads it. Done once; the destructor does it too.
    void finish();

    // Saves the current drawing to `path`, with the session's header settings given back to it.
    // The notice of a saved drawing's new version (or empty text) when saved.
    Result<std::string> save(const std::filesystem::path& path);

    seam::WorkbenchHost& host() { return workbench_; }
    editor::CommandLine& commandLine() { return workbench_.commandLine(); }
    bool quitRequested() const { return commands_.quitRequested; }
    // The first SAVE or SAVEAS that failed on its file; empty when none did.
    const std::string& saveError() const { return commands_.saveError; }

private:
    seam::WorkbenchHost workbench_;
    HostSession commands_;
    bool moduleLoaded_ = false;
};

}  // namespace veltarn::cad
