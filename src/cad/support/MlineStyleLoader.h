// Loads multiline styles from a ".mln" file into a drawing's ACAD_MLINESTYLE dictionary.
#pragma once

#include "cad/db/Database.h"
#include "cad/support/MlineStyleFile.h"

#include <filesystem>

namespace veltarn::support {

enum class MlineStyleLoad { Added, Kept };

// Loads the style `name` (any case) from `file`. Kept: the drawing has a style of that name, left as
// it is. Fails when the file cannot be read or parsed, defines no such style, or the drawing is R12
// (which has no dictionaries).
Result<MlineStyleLoad> loadMlineStyle(db::Database& db, const std::filesystem::path& file, std::string_view name);
Result<MlineStyleLoad> loadMlineStyle(db::Database& db, const SupportText& file, std::string_view name);

// Adds `style` as an MLINESTYLE object under ACAD_MLINESTYLE (made when missing). Fails when the
// name is taken or the drawing is R12.
Result<db::Handle> addMlineStyle(db::Database& db, const MlineStyleDefinition& style);

}  // namespace veltarn::support
