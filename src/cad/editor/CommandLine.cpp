#include "cad/editor/CommandLine.h"

#include <algorithm>
#include <cwctype>

#include "host/CommandFlags.h"
#include "host/EditorReactor.h"
#include "host/Format.h"
#include "host/LowerCase.h"

namespace veltarn::editor {
namespace {

constexpr wchar_t kVariableGroup[] = L"WORKBENCH";

std::wstring upper(std::wstring text) {
    for (wchar_t& c : text) c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
    return text;
}

// A typed command name without its "_" (global name) and "." (the built-in, not a redefinition)
// prefixes, which may come in either order.
std::wstring stripPrefixes(std::wstring name, bool& global) {
    global = false;
    for (int i = 0; i < 2 && !name.empty(); ++i) {
        if (name[0] == L'_') { global = true; name.erase(0, 1); }
        else if (name[0] == L'.') name.erase(0, 1);
    }
    return name;
}

// The text an answer token stands for, as if typed.
std::wstring tokenText(const host::TypedValue& token) {
    if (token.isText()) return token.text();
    if (token.isInteger()) return host::format(L"%i", token.integer());
    if (token.isReal()) return host::format(L"%.12g", token.real());
    if (token.isPoint()) {
        const host::Point3d p = token.point();
        return host::format(L"%.12g,%.12g,%.12g", p.x, p.y, p.z);
    }
    if (token.isHandle()) return host::format(L"%llX", static_cast<long long>(token.handle().handle));
    return {};
}

std::optional<host::Point3d> parsePoint(const std::wstring& text) {
    auto value = SystemVariableTable::parse(host::VariableType::kPoint3d, text);
    if (!value) return std::nullopt;
    return value->point;
}

}  // namespace

CommandLine::CommandLine(CommandRegistry& registry, SystemVariableTable& variables, Output output)
    : registry_(registry), variables_(variables), output_(std::move(output)) {
    variables_.defineComputed(L"CMDNAMES", host::VariableType::kString,
                              [this] { return host::VariableValue::ofString(runningCommands()); });
    registry_.addCommand(kVariableGroup, L"GETVAR", L"GETVAR", host::CommandFlags::kTransparent, [this] {
        std::wstring name;
        if (getString(L"Enter variable name: ", false, name) != host::PromptStatus::kNormal || name.empty()) return;
        if (auto value = variables_.get(name)) print(variables_.display(*value) + L"\n");
        else print(L"Unknown variable name \"" + upper(name) + L"\".\n");
    });
    registry_.addCommand(kVariableGroup, L"SETVAR", L"SETVAR", host::CommandFlags::kTransparent, [this] {
        std::wstring name;
        if (getString(L"Enter variable name: ", false, name) != host::PromptStatus::kNormal || name.empty()) return;
        if (!variables_.has(name)) {
            print(L"Unknown variable name \"" + upper(name) + L"\".\n");
            return;
        }
        promptVariable(name);
    });
}

void CommandLine::print(const std::wstring& text) {
    if (output_) output_(text);
}

void CommandLine::showPrompt(const std::wstring& prompt) {
    if (quiet_ == 0) print(prompt);
}

void CommandLine::echo(const std::wstring& text) {
    if (echo_ && quiet_ == 0) print(text + L"\n");
}

void CommandLine::messageBox(const std::wstring& text, const std::wstring& caption, host::MessageIcon) {
    std::wstring line = text;
    while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r')) line.pop_back();
    print(caption + L": " + line + L"\n");
}

void CommandLine::addReactor(host::EditorReactor* reactor) {
    if (reactor) reactors_.push_back(reactor);
}

void CommandLine::removeReactor(host::EditorReactor* reactor) {
    auto it = std::find(reactors_.begin(), reactors_.end(), reactor);
    if (it != reactors_.end()) reactors_.erase(it);
}

void CommandLine::setPickFirst(const std::vector<host::ObjectId>& ids) {
    if (ids == pickFirst_) return;
    pickFirst_ = ids;
    const std::vector<host::EditorReactor*> snapshot = reactors_;
    for (host::EditorReactor* reactor : snapshot)
        if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end()) reactor->pickFirstModified();
}

void CommandLine::notify(void (host::EditorReactor::*event)(const std::wstring&), const std::wstring& name) {
    // A reactor may remove itself, or others, while it is told: each is called only while it is
    // still registered.
    const std::vector<host::EditorReactor*> snapshot = reactors_;
    for (host::EditorReactor* reactor : snapshot)
        if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end()) (reactor->*event)(name);
}

std::wstring CommandLine::runningCommands() const {
    std::wstring names;
    for (const Frame& frame : frames_) {
        if (!names.empty()) names += L'\'';
        names += frame.name;
    }
    return names;
}

void CommandLine::sendString(const std::wstring& text) {
    if (frames_.empty()) input_.queue(text);
    else held_.push_back(text);
}

bool CommandLine::inPaperSpace() const {
    auto tilemode = variables_.get(L"TILEMODE");
    return tilemode && tilemode->integer == 0;
}

bool CommandLine::mayNest(const std::wstring& name) {
    if (frames_.size() + variablePrompts_ < kMaxNesting) return true;
    print(name + host::format(L": cancelled, commands nest at most %i deep.\n", static_cast<int>(kMaxNesting)));
    return false;
}

CommandLine::Outcome CommandLine::execute(const Command& command, const std::wstring& name) {
    if (!mayNest(name)) return Outcome::kRefused;
    if ((command.flags & host::CommandFlags::kNoPaperSpace) && inPaperSpace()) {
        print(L"Command not allowed in a layout: " + name + L"\n");
        return Outcome::kRefused;
    }
    if (!(command.flags & host::CommandFlags::kUsePickSet)) setPickFirst({});
    // A copy: the handler may remove its own group while it runs.
    const host::CommandHandler handler = command.handler;
    const int flags = command.flags;
    frames_.push_back({name, false});
    notify(&host::EditorReactor::commandWillStart, name);
    bool failed = false;
    try {
        handler();
    } catch (...) {
        // A command that throws is a failed command, not a failed program.
        failed = true;
    }
    const bool cancelled = frames_.back().cancelled;
    frames_.pop_back();
    if (!(flags & host::CommandFlags::kRedraw) && !(flags & host::CommandFlags::kTransparent)) setPickFirst({});
    if (frames_.empty()) {
        for (const std::wstring& text : held_) input_.queue(text);
        held_.clear();
    }
    if (failed) {
        notify(&host::EditorReactor::commandFailed, name);
        return Outcome::kFailed;
    }
    if (cancelled) {
        notify(&host::EditorReactor::commandCancelled, name);
        return Outcome::kCancelled;
    }
    notify(&host::EditorReactor::commandEnded, name);
    return Outcome::kEnded;
}

bool CommandLine::step() {
    // A script's transcript does not end on a dangling prompt; a person at a terminal needs the
    // prompt before typing, so it is shown first there.
    if (echo_ && !input_.skipBlanks()) return false;
    print(L"Command: ");
    std::optional<wchar_t> next = input_.skipBlanks();
    if (!next) {
        if (!echo_) print(L"\n");
        return false;
    }
    if (*next == L'(') {
        InputRead expression = input_.readExpression();
        if (expression.kind == InputRead::Kind::kCancel) {
            print(L"*Cancel*\n");
            return true;
        }
        echo(expression.text);
        callFunction(expression.text);
        return true;
    }
    InputRead word = input_.readWord();
    if (word.kind == InputRead::Kind::kEnd) return false;
    if (word.kind == InputRead::Kind::kCancel) {
        print(L"*Cancel*\n");
        return true;
    }
    std::wstring typed = word.text;
    if (typed.empty()) {
        // Enter repeats the last command, named as if typed; with none yet it does nothing.
        const Command* last = lastCommand_.empty() ? nullptr : registry_.find(lastCommand_, true);
        if (!last) {
            echo(typed);
            return true;
        }
        if (quiet_ == 0) print(upper(last->globalName) + L"\n");
        execute(*last, upper(last->globalName));
        return true;
    }
    echo(word.text);
    if (typed[0] == L'\'') typed.erase(0, 1);  // transparent form, same at this prompt
    if (typed.empty()) return true;
    bool global = false;
    const std::wstring name = stripPrefixes(typed, global);
    if (const Command* command = registry_.find(name, global)) {
        lastCommand_ = command->globalName;
        execute(*command, upper(command->globalName));
    } else if (!global && variables_.has(name)) {
        promptVariable(name);
    } else {
        print(L"Unknown command \"" + upper(typed) + L"\".\n");
    }
    return true;
}

void CommandLine::run() {
    while (step()) {}
}

void CommandLine::promptVariable(const std::wstring& name) {
    const std::wstring key = upper(name);
    std::optional<host::VariableValue> value = variables_.get(key);
    if (!value) return;
    if (variables_.isReadOnly(key)) {
        print(key + L" = " + variables_.display(*value) + L" (read only)\n");
        return;
    }
    if (!mayNest(key)) return;
    const bool text = value->type == host::VariableType::kString;
    std::wstring answer;
    // Counted while it waits, also when what runs inside it throws.
    struct Counted {
        std::size_t& count;
        explicit Counted(std::size_t& c) : count(c) { ++count; }
        ~Counted() { --count; }
    } counted(variablePrompts_);
    const host::PromptStatus status =
        getString(L"Enter new value for " + key + L" <" + variables_.display(*value) + L">: ", text, answer);
    if (status != host::PromptStatus::kNormal || answer.empty()) return;
    // "." clears a text variable, as "" cannot be typed.
    if (text && answer == L".") answer.clear();
    std::optional<host::VariableValue> parsed = SystemVariableTable::parse(value->type, answer);
    if (!parsed || !variables_.set(key, *parsed)) print(L"Invalid value for " + key + L".\n");
}

void CommandLine::callFunction(const std::wstring& expression) {
    // "(name arg ...)": arguments are numbers or texts in double quotes.
    std::wstring inner = expression;
    if (!inner.empty() && inner.front() == L'(') inner.erase(0, 1);
    if (!inner.empty() && inner.back() == L')') inner.pop_back();
    std::vector<std::wstring> words;
    std::wstring current;
    bool quoted = false;
    for (wchar_t c : inner) {
        if (c == L'"') {
            quoted = !quoted;
            current += c;
        } else if (!quoted && (c == L' ' || c == L'\t' || c == L'\n' || c == L'\r')) {
            if (!current.empty()) words.push_back(std::move(current));
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty()) words.push_back(std::move(current));
    if (words.empty()) {
        print(L"nil\n");
        return;
    }
    const host::FunctionHandler* function = registry_.findFunction(words[0]);
    if (!function) {
        print(L"error: no function definition: " + upper(words[0]) + L"\n");
        return;
    }
    host::ResultBuffer args, result;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::wstring& w = words[i];
        if (w.size() >= 2 && w.front() == L'"' && w.back() == L'"') {
            args.emplace_back(1, std::wstring(w.substr(1, w.size() - 2)));
        } else if (auto real = SystemVariableTable::parse(host::VariableType::kReal, w)) {
            if (w.find_first_of(L".eE") == std::wstring::npos) args.emplace_back(90, static_cast<std::int32_t>(real->real));
            else args.emplace_back(40, real->real);
        } else {
            args.emplace_back(1, w);
        }
    }
    const host::FunctionHandler handler = *function;
    if (handler(args, result) != host::PromptStatus::kNormal) {
        print(L"error: function cancelled\n");
        return;
    }
    if (result.empty()) {
        print(L"nil\n");
        return;
    }
    std::wstring shown;
    for (const host::TypedValue& value : result) {
        if (!shown.empty()) shown += L' ';
        shown += value.isText() ? L"\"" + value.text() + L"\"" : tokenText(value);
    }
    print(shown + L"\n");
}

CommandLine::Answer CommandLine::readAnswer(const std::wstring& prompt, bool allowSpaces) {
    while (true) {
        showPrompt(prompt);
        if (!feed_.empty()) {
            const host::TypedValue token = feed_.front();
            feed_.pop_front();
            // A single backslash hands this prompt to the user.
            if (!(token.isText() && token.text() == L"\\")) {
                echo(tokenText(token));
                return {InputRead::Kind::kText, tokenText(token), token};
            }
        }
        InputRead read = allowSpaces ? input_.readLine() : input_.readWord();
        if (read.kind != InputRead::Kind::kText) return {read.kind, {}, std::nullopt};
        echo(read.text);
        // "'name" runs a transparent command or shows a variable, then asks again.
        if (read.text.size() > 1 && read.text[0] == L'\'') {
            bool global = false;
            const std::wstring name = stripPrefixes(read.text.substr(1), global);
            const Command* command = registry_.find(name, global);
            if (command && (command->flags & host::CommandFlags::kTransparent)) {
                execute(*command, upper(command->globalName));
                continue;
            }
            if (!command && variables_.has(name)) {
                promptVariable(name);
                continue;
            }
        }
        return {InputRead::Kind::kText, std::move(read.text), std::nullopt};
    }
}

host::PromptStatus CommandLine::statusOf(const Answer& answer) {
    switch (answer.kind) {
        case InputRead::Kind::kText: return host::PromptStatus::kNormal;
        case InputRead::Kind::kCancel:
            if (!frames_.empty()) frames_.back().cancelled = true;
            print(L"*Cancel*\n");
            return host::PromptStatus::kCancel;
        case InputRead::Kind::kEnd: return host::PromptStatus::kError;
    }
    return host::PromptStatus::kError;
}

host::PromptStatus CommandLine::getString(const std::wstring& prompt, bool allowSpaces, std::wstring& answer,
                                          std::size_t maxLength) {
    Answer read = readAnswer(prompt, allowSpaces);
    const host::PromptStatus status = statusOf(read);
    if (status == host::PromptStatus::kNormal) answer = read.text.substr(0, maxLength);
    return status;
}

host::PromptStatus CommandLine::getInteger(const std::wstring& prompt, int& answer) {
    while (true) {
        Answer read = readAnswer(prompt, false);
        const host::PromptStatus status = statusOf(read);
        if (status != host::PromptStatus::kNormal) return status;
        if (read.text.empty()) return host::PromptStatus::kNone;
        auto value = SystemVariableTable::parse(host::VariableType::kLong, read.text);
        if (value) {
            answer = value->integer;
            return status;
        }
        print(L"Requires an integer.\n");
    }
}

host::PromptStatus CommandLine::getReal(const std::wstring& prompt, double& answer) {
    while (true) {
        Answer read = readAnswer(prompt, false);
        const host::PromptStatus status = statusOf(read);
        if (status != host::PromptStatus::kNormal) return status;
        if (read.text.empty()) return host::PromptStatus::kNone;
        auto value = SystemVariableTable::parse(host::VariableType::kReal, read.text);
        if (value) {
            answer = value->real;
            return status;
        }
        print(L"Requires a number.\n");
    }
}

host::PromptStatus CommandLine::getPoint(const std::wstring& prompt, const host::Point3d*, host::Point3d& answer) {
    while (true) {
        Answer read = readAnswer(prompt, false);
        std::optional<host::Point3d> point;
        if (read.token && read.token->isPoint()) point = read.token->point();
        const host::PromptStatus status = statusOf(read);
        if (status != host::PromptStatus::kNormal) return status;
        if (read.text.empty()) return host::PromptStatus::kNone;
        if (!point) point = parsePoint(read.text);
        if (point) {
            answer = *point;
            return status;
        }
        print(L"Requires a point.\n");
    }
}

host::PromptStatus CommandLine::getKeyword(const std::wstring& prompt, const std::vector<std::wstring>& keywords,
                                           std::wstring& answer) {
    while (true) {
        Answer read = readAnswer(prompt, false);
        const host::PromptStatus status = statusOf(read);
        if (status != host::PromptStatus::kNormal) return status;
        if (read.text.empty()) return host::PromptStatus::kNone;
        std::wstring typed = read.text;
        if (!typed.empty() && typed[0] == L'_') typed.erase(0, 1);
        const std::wstring* found = nullptr;
        int prefixMatches = 0;
        for (const std::wstring& keyword : keywords) {
            if (host::equalsIgnoringCase(keyword, typed)) {
                found = &keyword;
                prefixMatches = 1;
                break;
            }
            if (keyword.size() > typed.size() && host::equalsIgnoringCase(keyword.substr(0, typed.size()), typed)) {
                found = &keyword;
                ++prefixMatches;
            }
        }
        if (found && prefixMatches == 1) {
            answer = *found;
            return status;
        }
        print(L"Invalid option keyword.\n");
    }
}

host::PromptStatus CommandLine::select(host::SelectionMode mode, std::vector<host::ObjectId>& ids) {
    if (mode == host::SelectionMode::kImplied) {
        ids.insert(ids.end(), pickFirst_.begin(), pickFirst_.end());
        return host::PromptStatus::kNormal;
    }
    if (selector_) return selector_(mode, ids);
    print(L"Object selection needs a drawing.\n");
    return host::PromptStatus::kError;
}

host::PromptStatus CommandLine::command(const host::ResultBuffer& tokens) {
    if (tokens.empty() || !tokens.front().isText()) return host::PromptStatus::kError;
    bool global = false;
    const std::wstring name = stripPrefixes(tokens.front().text(), global);
    const Command* found = registry_.find(name, global);
    if (!found) {
        print(L"Unknown command \"" + upper(tokens.front().text()) + L"\".\n");
        return host::PromptStatus::kError;
    }
    std::deque<host::TypedValue> saved = std::move(feed_);
    feed_.assign(tokens.begin() + 1, tokens.end());
    auto echoSetting = variables_.get(L"CMDECHO");
    const bool quiet = echoSetting && echoSetting->integer == 0;
    if (quiet) ++quiet_;
    const Outcome outcome = execute(*found, upper(found->globalName));
    if (quiet) --quiet_;
    feed_ = std::move(saved);
    switch (outcome) {
        case Outcome::kEnded: return host::PromptStatus::kNormal;
        case Outcome::kCancelled: return host::PromptStatus::kCancel;
        case Outcome::kFailed:
        case Outcome::kRefused: return host::PromptStatus::kError;
    }
    return host::PromptStatus::kError;
}

}  // namespace veltarn::editor
