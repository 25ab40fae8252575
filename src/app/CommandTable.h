// The module's 28 commands: names, registration order and flags.
#pragma once

#include <array>
#include <string_view>

#include "commands/CheckCommands.h"
#include "commands/ClassifyCommands.h"
#include "commands/DuplicateCommands.h"
#include "commands/LoadCommands.h"
#include "commands/RestoreCommand.h"
#include "commands/RoundCommand.h"
#include "commands/SelectionCommands.h"
#include "commands/SortCommand.h"
#include "commands/StatCommand.h"
#include "commands/TemplateCommand.h"
#include "gui/AboutCommand.h"
#include "host/CommandFlags.h"
#include "module/CommandContext.h"

namespace veltarn {

inline constexpr std::wstring_view kCommandGroup = L"VELTARN";

// Every command may take the pick-first set, keeps it, and is refused in paper space.
inline constexpr int kCommandFlags =
    host::CommandFlags::kUsePickSet | host::CommandFlags::kRedraw | host::CommandFlags::kNoPaperSpace;
static_assert(kCommandFlags == 70);

struct CommandEntry {
    std::wstring_view name;  // global name; the local name is the same
    // Stops with "Error: no file loaded.\n" when no classifier is loaded, before the handler runs.
    bool needsClassifier;
    // The command itself, in the file of its family (src/commands, src/draw, src/gui); null while
    // the command is not built, which then says so when typed.
    ModuleCommand handler = nullptr;
};

// In registration order: the order is part of the interface (the host lists commands this way).
// Adding a command is one line here: its handler in the entry of its name.
inline constexpr std::array<CommandEntry, 28> kCommandTable = {{
    {L"VELTARN_CLASSIFY", true, &classifyCommand},
    {L"VELTARN_CLASSIFY_AUTO", true, &classifyAutoCommand},
    {L"VELTARN_DRAW", true},
    {L"VELTARN_GUI", false},
    {L"VELTARN_PROPERTIES", false},
    {L"VELTARN_LOAD", false, &loadCommand},
    {L"VELTARN_RESTORE", true, &restoreCommand},
    {L"VELTARN_RELOAD", false, &reloadCommand},
    {L"VELTARN_REMOVE", true, &removeCommand},
    {L"VELTARN_REMOVE_ALL", true, &removeAllCommand},
    {L"VELTARN_SEL", true, &selectCommand},
    {L"VELTARN_SEL_CLASS", true, &selectClassCommand},
    {L"VELTARN_SEL_EXT", true, &selectExtendedCommand},
    {L"VELTARN_SEL_ALL", true, &selectAllCommand},
    {L"VELTARN_SEL_NULL", true, &selectNullCommand},
    {L"VELTARN_ASSERT", true, &assertCommand},
    {L"VELTARN_SORT", true, &sortCommand},
    {L"VELTARN_SEL_CLASSIFIED", true, &selectClassifiedCommand},
    {L"VELTARN_SEL_DUPLICATES", false, &selectDuplicatesCommand},
    {L"VELTARN_DEL_DUPLICATES", false, &deleteDuplicatesCommand},
    {L"VELTARN_ROUND", true, &roundCommand},
    {L"VELTARN_TEMPLATE", false, &templateCommand},
    {L"VELTARN_TYPE", false, &typeCommand},
    {L"VELTARN_STAT", true, &statCommand},
    {L"VELTARN_ABOUT", false, &aboutCommand},
    {L"VELTARN_IMPL_INSRT", true},
    {L"VELTARN_IMPL_TXT", true},
    {L"VELTARN_IMPL_MTXT", true},
}};

// The index of `name` (global name, any case) in the table; -1 when it is none of ours.
int commandIndex(std::wstring_view name);

}  // namespace veltarn
