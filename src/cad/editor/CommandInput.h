// The command line's one input stream: typed or scripted text, and text queued by commands.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace veltarn::editor {

// What one read gave. A cancel consumes only the character 3 (or the word Esc): what follows it
// stays, so that "\x03\x03veltarn_draw Road\n" cancels two prompts and then starts a command.
struct InputRead {
    enum class Kind {
        kText,    // an answer (possibly empty: Enter alone)
        kCancel,  // character 3, or the word Esc
        kEnd,     // no input left
    };
    Kind kind = Kind::kEnd;
    std::wstring text;
};

// Characters come from two places: text queued by commands (sendStringToExecute), which is read
// first, and the primary source (a script, standard input), pulled one line at a time when the
// queue is empty. A read never waits on the primary source while queued text is left.
class CommandInput {
public:
    // Returns the next line of the primary source, its line end included; nullopt at its end.
    using LineSource = std::function<std::optional<std::wstring>()>;
    // The script the primary source's last line came from (what scriptRunning() compares), empty
    // for a line that is no script's.
    using SourceScript = std::function<std::wstring()>;

    CommandInput() = default;
    explicit CommandInput(LineSource source, SourceScript script = nullptr)
        : source_(std::move(source)), sourceScript_(std::move(script)) {}

    // Adds text to the primary input, after what is there ("\n" is Enter).
    void append(const std::wstring& text);
    // Adds text to the queue, after earlier queued text and before all primary input.
    void queue(const std::wstring& text);
    // Adds text to the front of the queue, before all other input: a script started from a script
    // runs at once, and the rest of the outer one after it.
    void queueFirst(const std::wstring& text);
    // queueFirst() for the text of the script `script`, which counts as running until input past
    // its end is read: through the command that its last line starts.
    void queueScript(const std::wstring& text, const std::wstring& script);
    // True while `script` runs, from the queue or the primary source; a script that starts itself,
    // directly or through others, would never end.
    bool scriptRunning(const std::wstring& script) const;
    // True when queued text is waiting.
    bool hasQueued() const { return !queued_.empty(); }
    // The next character after spaces and tabs, which are consumed; nullopt at the end. Pulls a
    // line from the primary source when nothing is buffered, so it waits for a typed line.
    std::optional<wchar_t> skipBlanks();

    // A word: leading spaces skipped, then up to a space or a line end, which is consumed. An
    // empty line gives the empty word (Enter). Used for command names and answers without spaces.
    InputRead readWord();
    // A line: everything up to the line end, which is consumed; spaces kept. Used for answers that
    // may hold spaces.
    InputRead readLine();
    // Text up to and including the parenthesis that closes the one at the start, across spaces
    // and line ends (a lisp expression typed at the command line). The opening "(" must be next.
    InputRead readExpression();

private:
    std::optional<wchar_t> peek();
    void pop();
    // Consumes a line end that starts with `first`: "\n", "\r\n" or a lone "\r".
    void popLineEnd(wchar_t first);

    // A queued script and the count of queued characters read once its last one has been.
    struct RunningScript {
        std::wstring name;
        std::uint64_t end = 0;
    };

    LineSource source_;
    SourceScript sourceScript_;
    std::vector<RunningScript> scripts_;  // outermost first; the innermost ends first
    std::uint64_t queuedRead_ = 0;
    std::deque<wchar_t> queued_;
    std::deque<wchar_t> primary_;
};

}  // namespace veltarn::editor
