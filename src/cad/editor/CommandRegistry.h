// The commands and lisp functions of the command line, by group and name.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/CommandStack.h"

namespace veltarn::editor {

struct Command {
    std::wstring group;
    std::wstring globalName;
    std::wstring localName;
    int flags = 0;
    host::CommandHandler handler;
};

class CommandRegistry : public host::CommandStack {
public:
    bool addCommand(const std::wstring& group, const std::wstring& globalName, const std::wstring& localName,
                    int flags, host::CommandHandler handler) override;
    bool removeGroup(const std::wstring& group) override;
    bool defineFunction(const std::wstring& name, host::FunctionHandler handler) override;
    bool undefineFunction(const std::wstring& name) override;

    // The command typed as `name` (any case): by global name when `global` (the name was typed with
    // "_"), else by local name and then by global name. The group registered last wins a name that
    // several groups use. Null when none.
    const Command* find(std::wstring_view name, bool global) const;
    const host::FunctionHandler* findFunction(std::wstring_view name) const;
    // Every command in registration order.
    std::vector<const Command*> commands() const;

private:
    std::vector<std::unique_ptr<Command>> commands_;
    std::map<std::wstring, host::FunctionHandler> functions_;  // by lower-case name
};

}  // namespace veltarn::editor
