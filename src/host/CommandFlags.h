// The flags a command is registered with: how the command line treats it.
#pragma once

namespace veltarn::host {

namespace CommandFlags {
inline constexpr int kModal = 0x00;         // runs only when no other command runs
inline constexpr int kTransparent = 0x01;   // may run inside another command ('name)
inline constexpr int kUsePickSet = 0x02;    // may take the pick-first set
inline constexpr int kRedraw = 0x04;        // the pick-first set is kept through the command
inline constexpr int kNoPaperSpace = 0x40;  // refused while a paper-space layout is current
inline constexpr int kSession = 0x200000;   // runs in the application's context, not a document's
}  // namespace CommandFlags

}  // namespace veltarn::host
