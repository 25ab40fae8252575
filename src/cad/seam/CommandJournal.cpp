#include "cad/seam/CommandJournal.h"

#include "cad/seam/ValueConversion.h"

namespace veltarn::seam {

void CommandJournal::commandWillStart(const std::wstring& command) {
    WorkbenchDatabase* drawing = drawing_ ? drawing_() : nullptr;
    if (!drawing || exempt_.count(command)) {
        open_.push_back({});
        return;
    }
    db::Database& db = drawing->raw();
    // Counted after begin(), which drops the steps that were undone.
    db.beginCommand(narrow(command));
    open_.push_back({drawing, db.journal().changes().size(), db.isR12()});
}

void CommandJournal::finish(const std::wstring&) {
    if (open_.empty()) return;
    const Open step = open_.back();
    open_.pop_back();
    // The drawing may have been replaced meanwhile (a nested OPEN): end only the one begun here.
    WorkbenchDatabase* drawing = drawing_ ? drawing_() : nullptr;
    if (!step.drawing || step.drawing != drawing) return;
    db::Database& db = drawing->raw();
    db.endCommand();
    // A command that recorded changes changed the drawing, and so did one that converted it from
    // R12 (it is saved as 2018 now, whatever the count of changes says).
    if (db.journal().changes().size() > step.stepsBefore || (step.wasR12 && !db.isR12())) drawing->setModified(true);
}

}  // namespace veltarn::seam
