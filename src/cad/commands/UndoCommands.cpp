// UNDO, U and REDO: whole commands of the drawing's journal, data included.
#include "cad/commands/HostSession.h"

#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"

namespace veltarn::cad {
namespace {

// Undoes up to `count` commands, naming each; says so when nothing is left.
void undoSteps(HostSession& session, int count) {
    seam::WorkbenchDatabase* drawing = session.host.currentDrawing();
    if (!drawing) return;
    host::Editor& editor = session.host.editor();
    for (int i = 0; i < count; ++i) {
        const std::wstring name = seam::wide(drawing->raw().journal().nextUndoName());
        if (!drawing->undo()) {
            editor.print(L"Everything has been undone\n");
            return;
        }
        editor.print(L"Undo " + name + L"\n");
    }
}

}  // namespace

void registerUndoCommands(HostSession& session) {
    host::CommandStack& commands = session.host.commandStack();
    const std::wstring group = kHostGroup;
    commands.addCommand(group, L"UNDO", L"UNDO", host::CommandFlags::kModal, [&session] {
        int count = 1;
        const host::PromptStatus status =
            session.host.editor().getInteger(L"Enter the number of operations to undo <1>: ", count);
        if (status == host::PromptStatus::kNone) count = 1;
        else if (status != host::PromptStatus::kNormal) return;
        if (count < 1) {
            session.host.editor().print(L"Requires a positive integer.\n");
            return;
        }
        undoSteps(session, count);
    });
    commands.addCommand(group, L"U", L"U", host::CommandFlags::kModal, [&session] { undoSteps(session, 1); });
    commands.addCommand(group, L"REDO", L"REDO", host::CommandFlags::kModal, [&session] {
        seam::WorkbenchDatabase* drawing = session.host.currentDrawing();
        if (!drawing) return;
        const db::UndoJournal& journal = drawing->raw().journal();
        const std::wstring name = journal.canRedo() ? seam::wide(journal.redoCommand().name) : std::wstring();
        if (!drawing->redo()) {
            session.host.editor().print(L"Nothing to redo\n");
            return;
        }
        session.host.editor().print(L"Redo " + name + L"\n");
    });
    // Undo and redo are no steps of their own, and a step begun on one drawing cannot end on
    // the next one.
    for (const wchar_t* name : {L"UNDO", L"U", L"REDO", L"NEW", L"OPEN", L"QUIT"}) session.host.journal().exempt(name);
}

}  // namespace veltarn::cad
