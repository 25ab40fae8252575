// The object-data test: does an object carry the data of a class (or of a class group), and with
// the value check on, do its values obey the class's fields? docs/class-tests.md explains the
// rules for users; they are:
//
//   A class holds when, for every table of the class, the object has a record of that table
//   (names compared without regard to case) whose key field holds the class's key value
//   ("$(obj_name)" filled with the class's display name, compared as text without regard to
//   case). A class without tables never holds. A class group holds when any class of it, or of a
//   group below it, holds.
//
//   With the value check on, every field of those records (only the required ones, when asked
//   so) must also obey its definition (FieldRules.h). The first matching record of each table is
//   the one checked.
#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "commands/ClassIndex.h"
#include "commands/Fault.h"
#include "commands/FieldRules.h"

namespace veltarn {

enum class ValueCheck {
    kOff,             // keys only
    kRequiredFields,  // keys, and the values of fields with the attribute "required"
    kEveryField,      // keys, and every value
};

class ObjectDataTest {
public:
    explicit ObjectDataTest(const ClassIndex& index) : index_(index) {}

    // What a name stands for, looked up once for a run over many objects: a class, else the
    // classes of the first group of that name, else nothing (the test never holds).
    struct Target {
        const ClassDef* def = nullptr;
        const ClassNode* node = nullptr;
        std::vector<const ClassDef*> members;  // of the group and the groups below it
    };
    Target classOrGroup(std::wstring_view name) const;
    // Only a group: a class name gives an empty target.
    Target group(std::wstring_view name) const;

    // Whether `records` (all records of one object) satisfy `target`. With `why`, the reasons it
    // does not are appended (every fault, not only the first).
    bool holds(const std::vector<ObjectDataRecord>& records, const Target& target, ValueCheck check,
               Faults* why = nullptr);
    bool holds(const std::vector<ObjectDataRecord>& records, const ClassDef& def, ValueCheck check,
               Faults* why = nullptr);

private:
    const std::wstring& keyValue(const ClassDef& def, const TableDef& table, const FieldDef& key);

    const ClassIndex& index_;
    FieldRules rules_;
    std::unordered_map<const TableDef*, std::wstring> keyValues_;
};

}  // namespace veltarn
