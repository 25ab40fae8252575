#include "cad/commands/ObjectGathering.h"

namespace veltarn::cad {

std::optional<std::vector<host::ObjectId>> gatherObjects(host::Editor& editor) {
    std::vector<host::ObjectId> ids = editor.pickFirst();
    if (!ids.empty()) return ids;
    if (editor.select(host::SelectionMode::kInteractive, ids) != host::PromptStatus::kNormal) return std::nullopt;
    return ids;
}

}  // namespace veltarn::cad
