#include "cad/editor/CommandRegistry.h"

#include <algorithm>

#include "host/LowerCase.h"

namespace veltarn::editor {

bool CommandRegistry::addCommand(const std::wstring& group, const std::wstring& globalName,
                                 const std::wstring& localName, int flags, host::CommandHandler handler) {
    if (globalName.empty() || localName.empty() || !handler) return false;
    for (const auto& c : commands_)
        if (c->group == group && host::equalsIgnoringCase(c->globalName, globalName)) return false;
    commands_.push_back(std::make_unique<Command>(Command{group, globalName, localName, flags, std::move(handler)}));
    return true;
}

bool CommandRegistry::removeGroup(const std::wstring& group) {
    return std::erase_if(commands_, [&](const auto& c) { return c->group == group; }) > 0;
}

bool CommandRegistry::defineFunction(const std::wstring& name, host::FunctionHandler handler) {
    if (name.empty() || !handler) return false;
    functions_[host::toLower(name)] = std::move(handler);
    return true;
}

bool CommandRegistry::undefineFunction(const std::wstring& name) { return functions_.erase(host::toLower(name)) > 0; }

const Command* CommandRegistry::find(std::wstring_view name, bool global) const {
    auto match = [&](bool byGlobal) -> const Command* {
        for (auto it = commands_.rbegin(); it != commands_.rend(); ++it)
            if (host::equalsIgnoringCase(byGlobal ? (*it)->globalName : (*it)->localName, name)) return it->get();
        return nullptr;
    };
    if (global) return match(true);
    if (const Command* local = match(false)) return local;
    return match(true);
}

const host::FunctionHandler* CommandRegistry::findFunction(std::wstring_view name) const {
    auto it = functions_.find(host::toLower(name));
    return it == functions_.end() ? nullptr : &it->second;
}

std::vector<const Command*> CommandRegistry::commands() const {
    std::vector<const Command*> out;
    for (const auto& c : commands_) out.push_back(c.get());
    return out;
}

}  // namespace veltarn::editor
