// ATTSYNC: the references to a block given the attributes its definition has now, by name or by
// picking one reference; the values users typed stay.
#include "cad/commands/HostSession.h"

#include "base/Trim.h"
#include "cad/db/AttributeSync.h"
#include "cad/db/GroupCodes.h"
#include "cad/dxf/NumberText.h"
#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"
#include "host/Format.h"

namespace veltarn::cad {
namespace {

using host::PromptStatus;

bool isLayout(std::string_view name) {
    return db::sameName(name.substr(0, 12), "*Model_Space") || db::sameName(name.substr(0, 12), "*Paper_Space");
}

class AttsyncCommand {
public:
    explicit AttsyncCommand(HostSession& session)
        : editor_(session.host.editor()), db_(session.host.currentDrawing()->raw()) {}

    void run() {
        while (true) {
            std::wstring option;
            const PromptStatus status =
                editor_.getKeyword(L"Enter an option [?/Name/Select] <Select>: ", {L"?", L"Name", L"Select"}, option);
            if (status == PromptStatus::kNone)
                option = L"Select";
            else if (status != PromptStatus::kNormal)
                return;
            if (option != L"?") {
                if (db::Handle block = option == L"Name" ? byName() : byPick(); block != db::kNoHandle)
                    synchronize(block);
                return;
            }
            list();
        }
    }

private:
    void list() {
        int listed = 0;
        for (db::Handle block : db_.blocks()) {
            const std::string name = db_.blockName(block);
            if (isLayout(name) || db::attributeDefinitions(db_, block).empty()) continue;
            if (listed++ == 0) editor_.print(L"Blocks with attributes:\n");
            editor_.print(L"  " + seam::wide(name) + L"\n");
        }
        if (listed == 0) editor_.print(L"No block has attributes.\n");
    }

    db::Handle byName() {
        // Block names may hold spaces: the name ends at the line end.
        std::wstring answer;
        if (editor_.getString(L"Enter name of block to synchronize: ", true, answer) != PromptStatus::kNormal)
            return db::kNoHandle;
        const std::wstring name(trim(answer));
        if (name.empty()) return db::kNoHandle;
        const db::Handle block = db_.findBlock(seam::narrow(name));
        if (block == db::kNoHandle || isLayout(db_.blockName(block))) {
            editor_.print(L"Block " + name + L" not found.\n");
            return db::kNoHandle;
        }
        return block;
    }

    // A block reference picked by its handle (an attribute's handle picks its reference); asks
    // again until one is picked or the answer is empty.
    db::Handle byPick() {
        while (true) {
            std::wstring answer;
            if (editor_.getString(L"Select a block: ", false, answer) != PromptStatus::kNormal || answer.empty())
                return db::kNoHandle;
            const std::optional<db::Handle> picked = db::parseHandle(seam::narrow(answer));
            if (picked && db_.exists(*picked) && db_.typeName(*picked) == "INSERT") {
                const db::TagList tags = db_.tags(*picked);
                const std::string name(
                    dxf::trimSpaces(tags.text(db::gc::kName, 1, tags.find(db::gc::kStructure, 1)).value_or("")));
                const db::Handle block = db_.findBlock(name);
                if (block != db::kNoHandle) return block;
                editor_.print(L"Block " + seam::wide(name) + L" not found.\n");
                return db::kNoHandle;
            }
            editor_.print(L"Not a block reference.\n");
        }
    }

    void synchronize(db::Handle block) {
        const std::wstring name = seam::wide(db_.blockName(block));
        if (db::attributeDefinitions(db_, block).empty()) {
            editor_.print(L"Block " + name + L" has no attributes.\n");
            return;
        }
        auto synced = db::synchronizeAttributes(db_, block);
        if (!synced) {
            editor_.print(L"Error: " + seam::wide(synced.message()) + L"\n");
            return;
        }
        editor_.print(L"ATTSYNC block " + name + L"\n");
        if (synced->locked == 1)
            editor_.print(L"1 reference on a locked layer was left as it was.\n");
        else if (synced->locked > 1)
            editor_.print(host::format(L"%i references on locked layers were left as they were.\n", synced->locked));
        for (const std::string& problem : synced->problems)
            editor_.print(L"Error: " + seam::wide(problem) + L"\n");
    }

    host::Editor& editor_;
    db::Database& db_;
};

}  // namespace

void registerAttsyncCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"ATTSYNC", L"ATTSYNC",
        // The module sends it after a command whose result is the selection: that stays selected.
        host::CommandFlags::kUsePickSet | host::CommandFlags::kRedraw, [&session] {
        if (!session.host.currentDrawing()) return;
        AttsyncCommand(session).run();
    });
}

}  // namespace veltarn::cad
