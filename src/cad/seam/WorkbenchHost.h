// The workbench as the module's host: the command line, its commands and variables, the open
// drawing, dialogs on the command line, the user's settings, and side drawings read from files.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "cad/editor/CommandLine.h"
#include "cad/editor/CommandLineDialogs.h"
#include "cad/seam/WorkbenchPalettes.h"
#include "cad/editor/CommandRegistry.h"
#include "cad/editor/SettingsEnvironment.h"
#include "cad/editor/SystemVariableTable.h"
#include "cad/seam/CommandJournal.h"
#include "cad/seam/ObjectSelector.h"
#include "cad/seam/WorkbenchDocuments.h"
#include "host/Host.h"

namespace veltarn::seam {

class WorkbenchHost : public host::Host {
public:
    // Told when a document is about to close and when one has opened (the module defines its
    // per-document lisp functions then).
    using DocumentEvent = std::function<void()>;

    // `output` receives the command line's transcript; `settingsFile` keeps the support path.
    WorkbenchHost(editor::CommandLine::Output output, std::filesystem::path settingsFile);
    ~WorkbenchHost() override;
    WorkbenchHost(const WorkbenchHost&) = delete;
    WorkbenchHost& operator=(const WorkbenchHost&) = delete;

    editor::CommandLine& commandLine() { return commandLine_; }
    editor::CommandRegistry& registry() { return registry_; }
    editor::SystemVariableTable& variables() { return variables_; }
    WorkbenchDocuments& workbenchDocuments() { return documents_; }
    ObjectSelector& selector() { return selector_; }
    CommandJournal& journal() { return journal_; }

    // The current document's drawing; null when none is open.
    WorkbenchDatabase* currentDrawing();
    // Makes `drawing` the current document: the document before is closed (its close event first),
    // the variables its header keeps (current layer, units, precision...) follow the drawing's,
    // the previous selection set and the pick-first set are emptied, and the open event is sent.
    void openDocument(std::unique_ptr<WorkbenchDatabase> drawing);
    void setDocumentEvents(DocumentEvent closing, DocumentEvent opened);
    // Closes the current document, sending its close event.
    void closeDocument();

    // For the duration of a command that works on another drawing; null restores the current one.
    void setWorkingDatabase(host::Database* database) { working_ = database; }

    // host::Host
    host::Documents& documents() override { return documents_; }
    host::Editor& editor() override { return commandLine_; }
    host::CommandStack& commandStack() override { return registry_; }
    host::SystemVariables& systemVariables() override { return variables_; }
    host::Environment& environment() override { return environment_; }
    host::Dialogs& dialogs() override { return dialogs_; }
    host::Palettes& palettes() override { return palettes_; }
    // The same dialogs, with what the workbench's own commands ask of them beyond the seam.
    editor::CommandLineDialogs& commandLineDialogs() { return dialogs_; }
    host::Database* workingDatabase() override;
    // Any path is read as DXF, so ".dxf", ".dwg" and ".dwt" paths that hold DXF load; a real DWG
    // file, a missing file or a damaged one gives null.
    std::unique_ptr<host::Database> readDrawing(const std::wstring& path) override;

private:
    editor::CommandRegistry registry_;
    editor::SystemVariableTable variables_;
    editor::CommandLine commandLine_;
    editor::CommandLineDialogs dialogs_;
    editor::SettingsEnvironment environment_;
    WorkbenchPalettes palettes_{environment_};  // after the settings it saves to
    WorkbenchDocuments documents_;
    ObjectSelector selector_;
    CommandJournal journal_;
    host::Database* working_ = nullptr;
    DocumentEvent closing_, opened_;
};

}  // namespace veltarn::seam
