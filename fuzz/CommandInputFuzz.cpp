// Fuzz target for the command line's input stream: any bytes, typed into a workbench session with
// a small drawing and the commands that prompt in every way (words, lines, numbers, points,
// keywords, selections, transparent commands, lisp calls, cancels). Besides crashes and hangs it
// checks that the session always comes back to the "Command: " prompt with no command left
// running and no object left open.
//
// Deep nesting needs long inputs ("'GETVAR\n" twenty thousand times): an input that starts with
// byte 1 and a count N stands for the rest of it repeated N * 100 times. Run it with the command
// names and the transparent quote as a dictionary, and room for long inputs:
//   build-fuzz/bin/command_input_fuzz -dict=fuzz/command.dict -max_len=200000 -max_total_time=600 corpus
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "cad/commands/HostSession.h"
#include "cad/db/EntityFactory.h"
#include "host/Utf8.h"

using namespace veltarn;

namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

// Commands that prompt each way; file commands that write are left out so that no input writes
// files. SCRIPT stays: it only reads, and a script that starts itself must be refused.
void registerPromptingCommands(seam::WorkbenchHost& host) {
    host::Editor& editor = host.editor();
    host.commandStack().addCommand(L"FUZZ", L"ASK", L"ASK", 0, [&editor] {
        std::wstring text;
        int integer = 0;
        double real = 0;
        host::Point3d point;
        if (editor.getString(L"Word: ", false, text) != host::PromptStatus::kNormal) return;
        if (editor.getString(L"Line: ", true, text) != host::PromptStatus::kNormal) return;
        if (editor.getInteger(L"Integer: ", integer) == host::PromptStatus::kCancel) return;
        if (editor.getReal(L"Real: ", real) == host::PromptStatus::kCancel) return;
        if (editor.getPoint(L"Point: ", nullptr, point) == host::PromptStatus::kCancel) return;
        editor.getKeyword(L"[Yes/No]: ", {L"Yes", L"No"}, text);
    });
    host.commandStack().addCommand(L"FUZZ", L"NESTED", L"NESTED", 0, [&editor] {
        editor.command({{1, std::wstring(L"ASK")}, {1, std::wstring(L"a")}, {1, std::wstring(L"\\")}});
    });
    host.commandStack().addCommand(L"FUZZ", L"SEND", L"SEND", 0, [&host] {
        host.documents().sendStringToExecute(*host.documents().current(), L"GETVAR CMDNAMES\n");
    });
}

// A settings file that names an empty support path, so that no run makes a new user's support
// folder (which would write files on every start); beside it the scripts the dictionary names:
// one that starts itself at its end, and two that start each other.
const std::filesystem::path& settingsFile() {
    static const std::filesystem::path file = [] {
        const std::filesystem::path folder = std::filesystem::temp_directory_path() / "veltarn_command_input_fuzz";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "settings") << "supportPath=\n";
        std::ofstream(folder / "self.scr") << "GETVAR CMDNAMES\nSCRIPT\n" << (folder / "self.scr").string() << "\n";
        std::ofstream(folder / "ping.scr") << "'GETVAR\nSCRIPT\n" << (folder / "pong.scr").string() << "\n";
        std::ofstream(folder / "pong.scr") << "ASK a\nSCRIPT\n" << (folder / "ping.scr").string() << "\n";
        return folder / "settings";
    }();
    return file;
}

// The input as typed: the bytes, or for an input that starts with byte 1 and a count N the rest
// repeated N * 100 times.
std::string typedInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size < 2 || data[0] != 1) return bytes;
    const std::string piece = bytes.substr(2);
    const std::size_t repeats = std::size_t{data[1]} * 100;
    std::string text;
    text.reserve(piece.size() * repeats);
    for (std::size_t i = 0; i < repeats; ++i) text += piece;
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::size_t printed = 0;
    seam::WorkbenchHost host([&printed](const std::wstring& text) { printed += text.size(); }, settingsFile());
    cad::HostSession session(host);
    cad::registerUndoCommands(session);
    cad::registerSelectionCommands(session);
    cad::registerListCommand(session);
    cad::registerLayerCommand(session);
    cad::registerHelpCommand(session);
    cad::registerScriptCommand(session);
    registerPromptingCommands(host);

    auto drawing = std::make_unique<seam::WorkbenchDatabase>(db::Database::createNew());
    db::Database& db = drawing->raw();
    (void)db.appendEntity(db.modelSpace(), db::newLine(db, {0, 0, 0}, {5, 5, 0}));
    (void)db.appendEntity(db.modelSpace(), db::newCircle(db, {10, 10, 0}, 2));
    host.openDocument(std::move(drawing));

    host.commandLine().input().append(host::fromUtf8(typedInput(data, size)));
    // Every step reads at least one character or ends the input, so this ends.
    while (host.commandLine().step()) {
    }
    require(host.commandLine().runningCommands().empty(), "a command is still running after the input ended");
    require(host.currentDrawing()->openCount() == 0, "an object was left open");
    return 0;
}
