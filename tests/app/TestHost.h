// A host for the module-entry tests: a command stack that runs commands by name and an editor that
// records what is printed. Stands in only until the workbench's command processor can be used.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/Host.h"
#include "host/LowerCase.h"

namespace veltarn::testing {

struct RegisteredCommand {
    std::wstring group, globalName, localName;
    int flags = 0;
    host::CommandHandler handler;
};

class TestCommandStack : public host::CommandStack {
public:
    bool addCommand(const std::wstring& group, const std::wstring& globalName, const std::wstring& localName,
                    int flags, host::CommandHandler handler) override {
        for (const auto& c : commands)
            if (c.group == group && host::equalsIgnoringCase(c.globalName, globalName)) return false;
        commands.push_back({group, globalName, localName, flags, std::move(handler)});
        return true;
    }
    bool removeGroup(const std::wstring& group) override {
        removedGroups.push_back(group);
        return std::erase_if(commands, [&](const RegisteredCommand& c) { return c.group == group; }) > 0;
    }
    bool defineFunction(const std::wstring& name, host::FunctionHandler handler) override {
        functions[name] = std::move(handler);
        return true;
    }
    bool undefineFunction(const std::wstring& name) override { return functions.erase(name) > 0; }

    // Runs the command typed as `name`; false when there is none.
    bool run(const std::wstring& name) {
        for (auto& c : commands)
            if (host::equalsIgnoringCase(c.globalName, name) || host::equalsIgnoringCase(c.localName, name)) {
                c.handler();
                return true;
            }
        return false;
    }

    std::vector<RegisteredCommand> commands;
    std::vector<std::wstring> removedGroups;
    std::map<std::wstring, host::FunctionHandler> functions;
};

class TestEditor : public host::Editor {
public:
    host::PromptStatus getString(const std::wstring&, bool, std::wstring&, std::size_t) override { return host::PromptStatus::kError; }
    host::PromptStatus getInteger(const std::wstring&, int&) override { return host::PromptStatus::kError; }
    host::PromptStatus getReal(const std::wstring&, double&) override { return host::PromptStatus::kError; }
    host::PromptStatus getPoint(const std::wstring&, const host::Point3d*, host::Point3d&) override { return host::PromptStatus::kError; }
    host::PromptStatus getKeyword(const std::wstring&, const std::vector<std::wstring>&, std::wstring&) override {
        return host::PromptStatus::kError;
    }
    host::PromptStatus select(host::SelectionMode mode, std::vector<host::ObjectId>&) override {
        selections.push_back(mode);
        return host::PromptStatus::kNormal;
    }
    std::vector<host::ObjectId> pickFirst() const override { return {}; }
    void setPickFirst(const std::vector<host::ObjectId>&) override {}
    void print(const std::wstring& text) override { output += text; }
    void messageBox(const std::wstring& text, const std::wstring& caption, host::MessageIcon) override {
        output += caption + L": " + text;
    }
    host::PromptStatus command(const host::ResultBuffer&) override { return host::PromptStatus::kError; }
    void addReactor(host::EditorReactor*) override {}
    void removeReactor(host::EditorReactor*) override {}

    std::wstring output;
    std::vector<host::SelectionMode> selections;
};

class TestHost : public host::Host {
public:
    host::Documents& documents() override { return documents_; }
    host::Editor& editor() override { return testEditor; }
    host::CommandStack& commandStack() override { return commands; }
    host::SystemVariables& systemVariables() override { return variables_; }
    host::Environment& environment() override { return environment_; }
    host::Dialogs& dialogs() override { return dialogs_; }
    host::Database* workingDatabase() override { return nullptr; }
    std::unique_ptr<host::Database> readDrawing(const std::wstring&) override { return nullptr; }

    TestCommandStack commands;
    TestEditor testEditor;

private:
    struct NoDocuments : host::Documents {
        host::Document* current() override { return nullptr; }
        host::Document* documentOf(const host::Database&) override { return nullptr; }
        void sendStringToExecute(host::Document&, const std::wstring&, bool, bool, bool) override {}
        host::DocumentLock lock(host::Document&, host::LockMode) override { return {}; }
    } documents_;
    struct NoVariables : host::SystemVariables {
        std::optional<host::VariableValue> get(const std::wstring&) const override { return std::nullopt; }
        bool set(const std::wstring&, const host::VariableValue&) override { return false; }
    } variables_;
    struct NoEnvironment : host::Environment {
        std::wstring supportPath() const override { return {}; }
        bool setSupportPath(const std::wstring&) override { return false; }
    } environment_;
    struct NoDialogs : host::Dialogs {
        std::optional<std::wstring> openFile(const host::FileDialogRequest&) override { return std::nullopt; }
        std::optional<std::wstring> saveFile(const host::FileDialogRequest&) override { return std::nullopt; }
        bool classificationParameters(host::ClassificationParameters&) override { return false; }
        bool chooseForRemoval(const std::vector<std::wstring>&, std::vector<std::wstring>&) override { return false; }
        void textBox(const std::wstring&, const std::wstring&, int, int) override {}
    } dialogs_;
};

}  // namespace veltarn::testing
