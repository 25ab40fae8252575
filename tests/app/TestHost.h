// A host for the module-entry tests over the workbench's command line and command registry;
// documents, drawings and dialogs are not needed here and answer "none".
#pragma once

#include <string>
#include <vector>

#include "cad/editor/CommandLine.h"
#include "cad/editor/CommandRegistry.h"
#include "cad/editor/SystemVariableTable.h"
#include "host/Host.h"

namespace veltarn::testing {

// The command line, noting the selection modes asked for.
class RecordingCommandLine : public editor::CommandLine {
public:
    using CommandLine::CommandLine;
    host::PromptStatus select(host::SelectionMode mode, std::vector<host::ObjectId>& ids) override {
        selections.push_back(mode);
        return CommandLine::select(mode, ids);
    }
    std::vector<host::SelectionMode> selections;
};

// The command registry, noting the groups removed, in order.
class RecordingRegistry : public editor::CommandRegistry {
public:
    bool removeGroup(const std::wstring& group) override {
        removedGroups.push_back(group);
        return CommandRegistry::removeGroup(group);
    }
    std::vector<std::wstring> removedGroups;
};

class TestHost : public host::Host {
public:
    host::Documents& documents() override { return documents_; }
    host::Editor& editor() override { return commandLine; }
    host::CommandStack& commandStack() override { return commands; }
    host::SystemVariables& systemVariables() override { return variables; }
    host::Environment& environment() override { return environment_; }
    host::Dialogs& dialogs() override { return dialogs_; }
    host::Palettes& palettes() override { return palettes_; }
    host::Database* workingDatabase() override { return nullptr; }
    std::unique_ptr<host::Database> readDrawing(const std::wstring&) override { return nullptr; }

    // Types `input` at the command line and runs it to its end; returns the transcript.
    std::wstring type(const std::wstring& input) {
        output.clear();
        commandLine.input().append(input);
        commandLine.run();
        return output;
    }

    RecordingRegistry commands;
    editor::SystemVariableTable variables;
    std::wstring output;
    RecordingCommandLine commandLine{commands, variables, [this](const std::wstring& text) { output += text; }};

private:
    struct NoDocuments : host::Documents {
        host::Document* current() override { return nullptr; }
        host::Document* documentOf(const host::Database&) override { return nullptr; }
        void sendStringToExecute(host::Document&, const std::wstring&, bool, bool, bool) override {}
        host::DocumentLock lock(host::Document&, host::LockMode) override { return {}; }
        void addReactor(host::DocumentReactor*) override {}
        void removeReactor(host::DocumentReactor*) override {}
    } documents_;
    struct NoEnvironment : host::Environment {
        std::wstring supportPath() const override { return {}; }
        bool setSupportPath(const std::wstring&) override { return false; }
        std::optional<std::wstring> setting(const std::wstring&) const override { return std::nullopt; }
        bool setSetting(const std::wstring&, const std::wstring&) override { return false; }
    } environment_;
    struct NoDialogs : host::Dialogs {
        std::optional<std::wstring> openFile(const host::FileDialogRequest&) override { return std::nullopt; }
        std::optional<std::wstring> saveFile(const host::FileDialogRequest&) override { return std::nullopt; }
        void textBox(const std::wstring&, const std::wstring&, int, int) override {}
    } dialogs_;
    struct NoPalettes : host::Palettes {
        bool addFactory(std::unique_ptr<host::PaletteSetFactory>) override { return false; }
        void removeFactory(const std::wstring&) override {}
        host::PaletteContent* show(const std::wstring&) override { return nullptr; }
        void hide(const std::wstring&) override {}
        bool isVisible(const std::wstring&) const override { return false; }
        host::PaletteContent* content(const std::wstring&) override { return nullptr; }
        void destroy(const std::wstring&) override {}
        bool wasVisible(const std::wstring&) const override { return false; }
    } palettes_;
};

}  // namespace veltarn::testing
