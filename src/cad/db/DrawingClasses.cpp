// The CLASSES section: entries for the object types that are classes, added when a drawing gets
// its first object of such a type.
#include "cad/db/Database.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/NewDrawing.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {

bool Database::hasClass(std::string_view dxfName) const {
    auto named = [&](std::uint32_t slot) {
        const Slot& s = slots_[slot];
        if ((s.flags & kErased) || types_[s.type] != "CLASS") return false;
        TagList tags;
        decodeSlot(s, tags);
        return dxf::trimSpaces(tags.text(gc::kText).value_or("")) == dxfName;
    };
    // The file's entries come before its tables; new ones are anchored at the section's end.
    for (std::uint32_t i = 0; i < fileSlots_ && slots_[i].section <= Section::Classes; ++i)
        if (slots_[i].section == Section::Classes && named(i)) return true;
    std::uint32_t end = sectionEnd_[static_cast<int>(Section::Classes)];
    if (auto it = anchored_.find(end); it != anchored_.end())
        for (std::uint32_t slot : it->second)
            if (named(slot)) return true;
    return false;
}

void Database::ensureClass(std::string_view dxfName) {
    std::uint32_t end = sectionEnd_[static_cast<int>(Section::Classes)];
    if (end == kNoSlot || r12_) return;
    // The common case, every entity of a bulk append, is decided by the name alone.
    static const std::vector<std::string> kClassTypes = standardClassNames();
    bool known = false;
    for (const std::string& name : kClassTypes) known = known || name == dxfName;
    if (!known || hasClass(dxfName)) return;
    std::optional<TagList> entry = standardClass(dxfName);
    if (!entry) return;
    Slot slot;
    slot.section = Section::Classes;
    create(slot, end, *entry);
}

}  // namespace veltarn::db
