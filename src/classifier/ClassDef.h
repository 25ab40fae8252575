// One classifiable object definition ("obj_name" and the lines that follow it).
#pragma once

#include "classifier/ObjectProperties.h"
#include "classifier/TableDef.h"
#include "classifier/VariableSetting.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn {

inline constexpr std::size_t kMaxClassNameLength = 132;

struct ClassDef {
    // The name in lower case: the definition's identity in the classifier.
    std::wstring key;
    // The name as written, at most kMaxClassNameLength characters.
    std::wstring name;
    // Automatic classification may use it; off whenever the enclosing class's flag is off.
    bool flag = false;
    // The priority among definitions that match the same entity.
    std::int32_t number = 0;
    // The optional last column of "obj_name": an icon file or a note, as written.
    std::wstring text;
    // Entity type names; the first one decides what is drawn.
    std::vector<std::wstring> types;
    ObjectProperties properties;
    std::vector<TableDef> tables;
    std::vector<VariableSetting> variables;

    // A name and at least one type.
    bool isComplete() const;
    // Complete, and the first type is not "?".
    bool isValid() const;

    // The table called `name` (without regard to case), or null.
    const TableDef* findTable(std::wstring_view name) const;
};

// The entity types of an "obj_type" column: names separated by commas, each trimmed of blanks.
// An empty item makes the whole list empty, so that the definition is incomplete.
std::vector<std::wstring> parseTypeList(std::wstring_view text);

}  // namespace veltarn
