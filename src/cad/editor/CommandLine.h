// The workbench's command line: the "Command: " prompt, the module's prompts, command runs with
// their flags, nesting and notifications, and the queue of strings sent by commands.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cad/editor/CommandInput.h"
#include "cad/editor/CommandRegistry.h"
#include "cad/editor/SystemVariableTable.h"
#include "host/Editor.h"

namespace veltarn::editor {

class CommandLine : public host::Editor {
public:
    // Commands (and variable prompts) run inside each other at most this deep, the outermost
    // command included: "'GETVAR" typed at each prompt of the one before must not use up the stack.
    static constexpr std::size_t kMaxNesting = 16;

    using Output = std::function<void(const std::wstring&)>;
    // Object selection in the modes that need the drawing; set by whoever owns the drawing.
    using Selector = std::function<host::PromptStatus(host::SelectionMode, std::vector<host::ObjectId>&)>;

    // `output` receives the transcript: prompts, echoed answers (when echoing), and what commands
    // print. Registers GETVAR and SETVAR and the computed variable CMDNAMES.
    CommandLine(CommandRegistry& registry, SystemVariableTable& variables, Output output);

    CommandInput& input() { return input_; }
    // Echo answers after their prompts, as a transcript of a script reads; off when a person types
    // at a terminal, which shows the typing itself.
    void setEcho(bool echo) { echo_ = echo; }
    void setSelector(Selector selector) { selector_ = std::move(selector); }

    // sendStringToExecute: text sent while a command runs waits until the outermost command has
    // ended, then runs before any further typed input, in the order sent.
    void sendString(const std::wstring& text);

    // One turn of the "Command: " prompt: reads a command name (or a lisp call, or a variable name)
    // and runs it; Enter alone runs the last command started here again. False when the input has
    // ended.
    bool step();
    // Turns until the input ends.
    void run();

    // The names of the running commands, outermost first, joined by "'" (the CMDNAMES value).
    std::wstring runningCommands() const;

    // host::Editor
    host::PromptStatus getString(const std::wstring& prompt, bool allowSpaces, std::wstring& answer,
                                 std::size_t maxLength = 132) override;
    host::PromptStatus getInteger(const std::wstring& prompt, int& answer) override;
    host::PromptStatus getReal(const std::wstring& prompt, double& answer) override;
    host::PromptStatus getPoint(const std::wstring& prompt, const host::Point3d* base, host::Point3d& answer) override;
    host::PromptStatus getKeyword(const std::wstring& prompt, const std::vector<std::wstring>& keywords,
                                  std::wstring& answer) override;
    host::PromptStatus select(host::SelectionMode mode, std::vector<host::ObjectId>& ids) override;
    std::vector<host::ObjectId> pickFirst() const override { return pickFirst_; }
    // Tells the reactors when the set becomes another one.
    void setPickFirst(const std::vector<host::ObjectId>& ids) override;
    void print(const std::wstring& text) override;
    void messageBox(const std::wstring& text, const std::wstring& caption, host::MessageIcon icon) override;
    host::PromptStatus command(const host::ResultBuffer& tokens) override;
    void addReactor(host::EditorReactor* reactor) override;
    void removeReactor(host::EditorReactor* reactor) override;

private:
    enum class Outcome { kEnded, kCancelled, kFailed, kRefused };
    struct Frame {
        std::wstring name;
        bool cancelled = false;
    };
    // One answer: from the token feed of a nested command first, then from the input.
    struct Answer {
        InputRead::Kind kind = InputRead::Kind::kEnd;
        std::wstring text;
        std::optional<host::TypedValue> token;  // set when the answer came from the feed
    };

    Answer readAnswer(const std::wstring& prompt, bool allowSpaces);
    host::PromptStatus statusOf(const Answer& answer);
    Outcome execute(const Command& command, const std::wstring& name);
    // False, with a message, when running `name` inside what runs now would nest too deep.
    bool mayNest(const std::wstring& name);
    void promptVariable(const std::wstring& name);
    void callFunction(const std::wstring& expression);
    void notify(void (host::EditorReactor::*event)(const std::wstring&), const std::wstring& name);
    void showPrompt(const std::wstring& prompt);
    void echo(const std::wstring& text);
    bool inPaperSpace() const;

    CommandRegistry& registry_;
    SystemVariableTable& variables_;
    Output output_;
    CommandInput input_;
    Selector selector_;
    bool echo_ = true;
    int quiet_ = 0;  // > 0 while a nested command runs with CMDECHO 0
    std::size_t variablePrompts_ = 0;  // variable prompts running, which nest like commands
    std::vector<Frame> frames_;
    std::vector<std::wstring> held_;
    std::deque<host::TypedValue> feed_;
    std::vector<host::ObjectId> pickFirst_;
    std::vector<host::EditorReactor*> reactors_;
    std::wstring lastCommand_;  // global name of the last command started at "Command: "
};

}  // namespace veltarn::editor
