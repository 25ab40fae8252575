// kindOf: from a DXF type (and the flags that make derived kinds) to the kind's operations.
#include "cad/db/kinds/Kinds.h"

#include <array>
#include <utility>

namespace veltarn::db {
namespace {

constexpr std::array<std::pair<std::string_view, const EntityKindOps*>, 4> kByType{{
    {"ARC", &kinds::kArc},
    {"CIRCLE", &kinds::kCircle},
    {"LINE", &kinds::kLine},
    {"MLINE", &kinds::kMline},
}};

}  // namespace

const EntityKindOps* kindOf(std::string_view dxfType, const TagList& tags) {
    (void)tags;  // POLYLINE and INSERT will pick their derived kinds by their flags
    for (const auto& [type, ops] : kByType)
        if (type == dxfType) return ops;
    return nullptr;
}

}  // namespace veltarn::db
