#include "app/SampleCommands.h"

#include <string>
#include <vector>

#include "host/CommandFlags.h"

namespace veltarn {

void registerSampleGroup(host::Host& host) {
    const std::wstring group(kSampleGroup);
    host::CommandStack& commands = host.commandStack();
    commands.addCommand(group, L"MyCommand", L"MyCommandLocal", host::CommandFlags::kModal, [] {});
    // Asks for the pick-first set and drops it: the sample shows how a command reaches the set.
    commands.addCommand(group, L"MyPickFirst", L"MyPickFirstLocal", host::CommandFlags::kUsePickSet, [&host] {
        std::vector<host::ObjectId> ignored;
        host.editor().select(host::SelectionMode::kImplied, ignored);
    });
    commands.addCommand(group, L"MySessionCmd", L"MySessionCmdLocal", host::CommandFlags::kSession, [] {});
}

void removeSampleGroup(host::Host& host) { host.commandStack().removeGroup(std::wstring(kSampleGroup)); }

void defineSampleFunction(host::Host& host) {
    // Returns normally without a result, so the caller gets nil.
    host.commandStack().defineFunction(std::wstring(kSampleFunction),
                                       [](const host::ResultBuffer&, host::ResultBuffer&) {
                                           return host::PromptStatus::kNormal;
                                       });
}

void undefineSampleFunction(host::Host& host) {
    host.commandStack().undefineFunction(std::wstring(kSampleFunction));
}

}  // namespace veltarn
