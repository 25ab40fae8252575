// Loads linetypes from a ".lin" file into a drawing's LTYPE table.
#pragma once

#include "cad/db/Database.h"
#include "cad/support/LinetypeFile.h"

#include <filesystem>
#include <string>
#include <vector>

namespace veltarn::support {

// What a load did, by linetype name as the file spells it.
struct LoadedNames {
    std::vector<std::string> added;   // new records in the drawing
    std::vector<std::string> kept;    // the drawing had a record of that name: left as it was
    std::vector<std::string> failed;  // "file:line: why" of each matching definition that could not be used
};

// Loads every linetype of `file` whose name matches `pattern` ("*" and "?" wild cards, any case;
// "?*" loads them all). A linetype the drawing has already is kept as it is, never replaced.
// Fails when the file cannot be read or is not a linetype file, or when no matching linetype was
// added or kept (the message then says why: none matched, or the first definition that failed).
Result<LoadedNames> loadLinetypes(db::Database& db, const std::filesystem::path& file, std::string_view pattern);
Result<LoadedNames> loadLinetypes(db::Database& db, const SupportText& file, std::string_view pattern);

// Adds one definition as a new LTYPE record. Fails on a broken definition, a name the drawing has
// already, a text element whose style the drawing lacks, shape elements (their shape numbers live in
// compiled shape files, which the workbench does not read), and text or shapes in an R12 drawing.
Result<db::Handle> addLinetype(db::Database& db, const LinetypeDefinition& definition);

}  // namespace veltarn::support
