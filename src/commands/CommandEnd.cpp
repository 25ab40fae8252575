#include "commands/CommandEnd.h"

namespace veltarn {

void sendFollowUpCommands(host::Host& host, const std::set<std::wstring>& blocksToSynchronise, bool regenerate) {
    host::Document* document = host.documents().current();
    if (!document || (blocksToSynchronise.empty() && !regenerate)) return;
    host::SystemVariables& variables = host.systemVariables();
    const std::optional<host::VariableValue> echo = variables.get(L"CMDECHO");
    variables.set(L"CMDECHO", host::VariableValue::ofShort(0));
    for (const std::wstring& block : blocksToSynchronise)
        host.documents().sendStringToExecute(*document, L"_.attsync _n " + block + L"\n", true, false, false);
    if (regenerate) host.documents().sendStringToExecute(*document, L"_.regen\n", true, false, false);
    if (echo) variables.set(L"CMDECHO", *echo);
}

}  // namespace veltarn
