#include "ProgramInputFeed.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "cad/commands/HostSession.h"
#include "base/RegularFile.h"
#include "host/Utf8.h"

#ifdef VELTARN_HAVE_LIBEDIT
#include <editline/readline.h>
#endif

namespace veltarn::app {
namespace {

// Hands out the lines of one text, each with its line end.
LineSource linesOf(std::wstring text) {
    auto shared = std::make_shared<std::wstring>(std::move(text));
    auto position = std::make_shared<std::size_t>(0);
    return [shared, position]() -> std::optional<std::wstring> {
        if (*position >= shared->size()) return std::nullopt;
        std::size_t end = shared->find(L'\n', *position);
        end = end == std::wstring::npos ? shared->size() : end + 1;
        std::wstring line = shared->substr(*position, end - *position);
        *position = end;
        return line;
    };
}

// Ctrl+C at the terminal cancels the prompt that waits, as in a CAD program, instead of ending the
// program: the signal only interrupts the read, which then hands the command line character 3.
volatile std::sig_atomic_t interrupted = 0;

void onInterrupt(int) { interrupted = 1; }

void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no restart: the read returns at once
    sigaction(SIGINT, &action, nullptr);
}

// The cancel that a Ctrl+C during a read stands for, when there was one.
std::optional<std::wstring> takeInterrupt() {
    if (!interrupted) return std::nullopt;
    interrupted = 0;
    std::fputs("^C\n", stdout);
    std::fflush(stdout);
    return std::wstring(1, L'\x03');
}

}  // namespace

dxf::Result<ScriptFeed> feedOfInputs(const std::vector<ProgramInput>& inputs) {
    std::string all;
    // Where each script's bytes end in `all`, with the script's identity.
    std::vector<std::pair<std::size_t, std::wstring>> scripts;
    for (const ProgramInput& input : inputs) {
        if (input.kind == ProgramInput::Kind::kCommand) {
            all += input.value;
            continue;
        }
        FileBytes read = readRegularFile(input.value, kMaxTextFileBytes);
        if (read.problem == FileProblem::kCannotOpen) return dxf::makeError(input.value + ": cannot read the script");
        if (!read.ok()) return dxf::makeError(read.error);
        std::string text = std::move(read.bytes);
        if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
        // Each script ends its last line, so that the next piece starts on a line of its own.
        if (!text.empty() && text.back() != '\n') text += '\n';
        const std::size_t start = all.size();
        all += text;
        scripts.emplace_back(start, cad::scriptIdentity(input.value));
        scripts.emplace_back(all.size(), std::wstring());
    }
    // The lines are handed out of the decoded text, whose offsets differ from the bytes'; line ends
    // decode one to one, so each line's script is known by its number: the script that holds its end.
    auto lineScripts = std::make_shared<std::vector<std::wstring>>();
    std::size_t piece = 0;
    std::wstring current;
    for (std::size_t i = 0; i < all.size(); ++i) {
        while (piece < scripts.size() && scripts[piece].first <= i) current = scripts[piece++].second;
        if (all[i] == '\n') lineScripts->push_back(current);
    }
    lineScripts->push_back(current);
    auto handedOut = std::make_shared<std::size_t>(0);
    LineSource lines = [source = linesOf(host::fromUtf8(all)), handedOut]() mutable -> std::optional<std::wstring> {
        std::optional<std::wstring> line = source();
        if (line) ++*handedOut;
        return line;
    };
    auto script = [lineScripts, handedOut]() -> std::wstring {
        if (*handedOut == 0) return {};
        return (*lineScripts)[std::min(*handedOut, lineScripts->size()) - 1];
    };
    return ScriptFeed{std::move(lines), std::move(script)};
}

LineSource feedOfStandardInput() {
    return []() -> std::optional<std::wstring> {
        std::string line;
        if (!std::getline(std::cin, line)) return std::nullopt;
        // A last line without its line end is still a line.
        return host::fromUtf8(line) + L"\n";
    };
}

LineSource feedOfTerminal(std::function<std::string()> takePrompt) {
    catchInterrupts();
#ifdef VELTARN_HAVE_LIBEDIT
    return [takePrompt]() -> std::optional<std::wstring> {
        const std::string prompt = takePrompt();
        char* typed = ::readline(prompt.c_str());
        if (interrupted) {
            std::free(typed);
            return takeInterrupt();
        }
        if (!typed) {
            std::fputs("\n", stdout);
            return std::nullopt;
        }
        std::string line(typed);
        std::free(typed);
        if (!line.empty()) ::add_history(line.c_str());
        return host::fromUtf8(line) + L"\n";
    };
#else
    return [takePrompt]() -> std::optional<std::wstring> {
        std::fputs(takePrompt().c_str(), stdout);
        std::fflush(stdout);
        std::string line;
        if (!std::getline(std::cin, line)) {
            if (!interrupted) return std::nullopt;
            std::cin.clear();
            return takeInterrupt();
        }
        return host::fromUtf8(line) + L"\n";
    };
#endif
}

}  // namespace veltarn::app
