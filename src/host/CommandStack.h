// The registry of commands and lisp functions of the command line.
#pragma once

#include <functional>
#include <string>

#include "host/PromptStatus.h"
#include "host/ResultBuffer.h"

namespace veltarn::host {

using CommandHandler = std::function<void()>;
// A lisp function: `args` are its arguments; it fills `result` (left empty, the caller gets nil).
using FunctionHandler = std::function<PromptStatus(const ResultBuffer& args, ResultBuffer& result)>;

class CommandStack {
public:
    virtual ~CommandStack() = default;

    // Registers a command under `group`. `globalName` is typed with a leading "_"; `localName`
    // without it (both answer to any case). `flags` are CommandFlags. False, with nothing
    // registered, when the name is already a command of the group or either name is empty.
    virtual bool addCommand(const std::wstring& group, const std::wstring& globalName,
                            const std::wstring& localName, int flags, CommandHandler handler) = 0;

    // Removes every command of `group`; false when the group has none.
    virtual bool removeGroup(const std::wstring& group) = 0;

    // Lisp functions callable from the command line as "(name args...)". defineFunction() replaces
    // an earlier definition of the same name; undefineFunction() is false when there was none.
    virtual bool defineFunction(const std::wstring& name, FunctionHandler handler) = 0;
    virtual bool undefineFunction(const std::wstring& name) = 0;
};

}  // namespace veltarn::host
