// The captions of the module's two dialogs and of their controls, in the dialogs' order.
#pragma once

namespace veltarn::dialog_texts {

// "Classification parameters": the four check boxes, ids 106 to 109.
inline constexpr const wchar_t* kAssignGraphicalProperties = L"Assign graphical properties";  // 106
inline constexpr const wchar_t* kAttachOd = L"Attach OD";                                      // 107
inline constexpr const wchar_t* kChangeObject = L"Change object";                              // 108
inline constexpr const wchar_t* kDefineFieldOd = L"Define field OD";                           // 109

// "Remove": a list of names to mark, and a button that marks them all.
inline constexpr const wchar_t* kSelectAll = L"Select All";

}  // namespace veltarn::dialog_texts
