#include "cad/editor/CommandInput.h"

#include "host/LowerCase.h"

namespace veltarn::editor {
namespace {

constexpr wchar_t kCtrlC = 3;

bool isLineEnd(wchar_t c) { return c == L'\n' || c == L'\r'; }

InputRead text(std::wstring s) {
    // The word Esc, as a script writes a cancel, is no answer.
    if (host::equalsIgnoringCase(s, L"Esc")) return {InputRead::Kind::kCancel, {}};
    return {InputRead::Kind::kText, std::move(s)};
}

}  // namespace

void CommandInput::append(const std::wstring& text) { primary_.insert(primary_.end(), text.begin(), text.end()); }

void CommandInput::queue(const std::wstring& text) { queued_.insert(queued_.end(), text.begin(), text.end()); }

void CommandInput::queueFirst(const std::wstring& text) {
    // What was queued before, running scripts' rest included, now ends later.
    for (RunningScript& script : scripts_) script.end += text.size();
    queued_.insert(queued_.begin(), text.begin(), text.end());
}

void CommandInput::queueScript(const std::wstring& text, const std::wstring& script) {
    queueFirst(text);
    scripts_.push_back({script, queuedRead_ + text.size()});
}

bool CommandInput::scriptRunning(const std::wstring& script) const {
    for (const RunningScript& running : scripts_)
        if (running.name == script) return true;
    return sourceScript_ && !script.empty() && sourceScript_() == script;
}

std::optional<wchar_t> CommandInput::peek() {
    if (!queued_.empty()) return queued_.front();
    while (primary_.empty()) {
        if (!source_) return std::nullopt;
        std::optional<std::wstring> line = source_();
        if (!line) {
            source_ = nullptr;
            return std::nullopt;
        }
        append(*line);
    }
    return primary_.front();
}

void CommandInput::pop() {
    if (!queued_.empty()) {
        queued_.pop_front();
        ++queuedRead_;
        while (!scripts_.empty() && scripts_.back().end < queuedRead_) scripts_.pop_back();
    } else if (!primary_.empty()) {
        primary_.pop_front();
        // Every queued script has been read to its end and past it.
        scripts_.clear();
    }
}

void CommandInput::popLineEnd(wchar_t first) {
    pop();
    if (first == L'\r') {
        std::optional<wchar_t> next = peek();
        if (next && *next == L'\n') pop();
    }
}

std::optional<wchar_t> CommandInput::skipBlanks() {
    std::optional<wchar_t> c = peek();
    while (c && (*c == L' ' || *c == L'\t')) {
        pop();
        c = peek();
    }
    return c;
}

InputRead CommandInput::readWord() {
    std::optional<wchar_t> c = skipBlanks();
    if (!c) return {InputRead::Kind::kEnd, {}};
    std::wstring word;
    while (c) {
        if (*c == kCtrlC) {
            pop();
            return {InputRead::Kind::kCancel, {}};
        }
        if (*c == L' ' || *c == L'\t') {
            pop();
            break;
        }
        if (isLineEnd(*c)) {
            popLineEnd(*c);
            break;
        }
        word += *c;
        pop();
        c = peek();
    }
    return text(std::move(word));
}

InputRead CommandInput::readLine() {
    std::optional<wchar_t> c = peek();
    if (!c) return {InputRead::Kind::kEnd, {}};
    std::wstring line;
    while (c) {
        if (*c == kCtrlC) {
            pop();
            return {InputRead::Kind::kCancel, {}};
        }
        if (isLineEnd(*c)) {
            popLineEnd(*c);
            break;
        }
        line += *c;
        pop();
        c = peek();
    }
    return text(std::move(line));
}

InputRead CommandInput::readExpression() {
    std::optional<wchar_t> c = peek();
    if (!c) return {InputRead::Kind::kEnd, {}};
    std::wstring expression;
    int depth = 0;
    bool inString = false;
    while (c) {
        if (*c == kCtrlC) {
            pop();
            return {InputRead::Kind::kCancel, {}};
        }
        expression += *c;
        pop();
        if (inString) {
            if (*c == L'"') inString = false;
        } else if (*c == L'"') {
            inString = true;
        } else if (*c == L'(') {
            ++depth;
        } else if (*c == L')' && --depth <= 0) {
            break;
        }
        c = peek();
    }
    // The rest of the line after the expression (its line end, as a rule) goes with it.
    c = skipBlanks();
    if (c && isLineEnd(*c)) popLineEnd(*c);
    return {InputRead::Kind::kText, std::move(expression)};
}

}  // namespace veltarn::editor
