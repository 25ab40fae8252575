// AUDIT: the drawing's invariants checked, one line per finding, and repaired on request. The
// repairs are changes of the command, so one UNDO takes them all back.
#include "cad/commands/HostSession.h"

#include "cad/audit/Auditor.h"
#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"

namespace veltarn::cad {

void registerAuditCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"AUDIT", L"AUDIT", host::CommandFlags::kModal, [&session] {
        seam::WorkbenchDatabase* drawing = session.host.currentDrawing();
        if (!drawing) return;
        host::Editor& editor = session.host.editor();
        std::wstring answer;
        const host::PromptStatus status =
            editor.getKeyword(L"Fix any errors detected? [Yes/No] <N>: ", {L"Yes", L"No"}, answer);
        if (status == host::PromptStatus::kNone)
            answer = L"No";
        else if (status != host::PromptStatus::kNormal)
            return;
        const std::vector<audit::Finding> findings =
            answer == L"Yes" ? audit::auditAndFix(drawing->raw()) : audit::auditDrawing(drawing->raw());
        for (const audit::Finding& finding : findings)
            editor.print(seam::wide(finding.code + ": " + finding.message) + L"\n");
        editor.print(seam::wide(audit::summary(findings)) + L"\n");
    });
}

}  // namespace veltarn::cad
