// SELECT and ERASE.
#include "cad/commands/HostSession.h"

#include "cad/commands/ObjectGathering.h"
#include "host/CommandFlags.h"
#include "host/Format.h"

namespace veltarn::cad {

void registerSelectionCommands(HostSession& session) {
    host::CommandStack& commands = session.host.commandStack();
    const std::wstring group = kHostGroup;
    // The chosen objects become the pick-first set, as a selection made without a command leaves
    // them: the next command that takes the pick-first set works on them. Kept past the command's
    // end by its flags.
    commands.addCommand(group, L"SELECT", L"SELECT", host::CommandFlags::kRedraw, [&session] {
        std::vector<host::ObjectId> ids;
        host::Editor& editor = session.host.editor();
        if (editor.select(host::SelectionMode::kInteractive, ids) != host::PromptStatus::kNormal) return;
        editor.setPickFirst(ids);
    });
    commands.addCommand(group, L"ERASE", L"ERASE", host::CommandFlags::kUsePickSet, [&session] {
        host::Editor& editor = session.host.editor();
        std::optional<std::vector<host::ObjectId>> ids = gatherObjects(editor);
        host::Database* db = session.host.workingDatabase();
        if (!ids || !db) return;
        int locked = 0;
        for (host::ObjectId id : *ids) {
            auto object = db->openObject(id, host::OpenMode::kWrite);
            if (!object) {
                if (db->openObject(id, host::OpenMode::kRead)) ++locked;
                continue;
            }
            object->erase();
        }
        if (locked == 1) editor.print(L"1 was on a locked layer.\n");
        else if (locked > 1) editor.print(host::format(L"%i were on a locked layer.\n", locked));
    });
}

}  // namespace veltarn::cad
