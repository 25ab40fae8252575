// Symbol table records the module asks about: layers with their flags, linetypes, text styles,
// dimension styles, and the named styles kept in dictionaries (multiline, multileader) and layouts.
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::db {

// LAYER flag bits (group 70); "off" is a negative colour instead.
enum LayerFlag : int { kLayerFrozen = 1, kLayerFrozenInNewViewports = 2, kLayerLocked = 4, kLayerXrefDependent = 16, kLayerXrefResolved = 32 };

struct Layer {
    std::string name;
    int flags = 0;
    int color = 7;        // always positive here; `off` says whether the file stores it negative
    bool off = false;
    std::string linetype = "Continuous";
    int lineweight = -3;  // default
    bool plot = true;

    bool frozen() const { return flags & kLayerFrozen; }
    bool locked() const { return flags & kLayerLocked; }
};

// The layer record named `name` (any case); nullopt when there is none.
std::optional<Layer> readLayer(const Database& db, std::string_view name);
std::optional<Layer> readLayer(const Database& db, Handle record);
// Writes the layer's flags, colour (negative when off), linetype, lineweight and plot flag into its
// record, keeping whatever else the record holds; creates the record when missing.
Result<Handle> writeLayer(Database& db, const Layer& layer);

// The name (group 2) of a table record; empty for anything else.
std::string recordName(const Database& db, Handle record);
std::vector<std::string> recordNames(const Database& db, std::string_view table);

// Minimal standard records, as a CAD program creates them.
Result<Handle> addLinetype(Database& db, std::string_view name, std::string_view description = "");
Result<Handle> addTextStyle(Database& db, std::string_view name, std::string_view font = "txt", double height = 0);

// The names of the entries of a dictionary under the named objects dictionary
// ("ACAD_MLINESTYLE", "ACAD_MLEADERSTYLE", "ACAD_LAYOUT"...), in dictionary order.
std::vector<std::string> namedEntries(const Database& db, std::string_view dictionary);
Handle namedEntry(const Database& db, std::string_view dictionary, std::string_view name);

// Layouts: the entries of ACAD_LAYOUT. The block of a layout is its model or paper space block.
std::vector<std::string> layoutNames(const Database& db);
Handle layoutBlock(const Database& db, std::string_view layout);
// "Model" when model space is current ($TILEMODE 1), else the layout of the active paper space.
std::string currentLayout(const Database& db);

}  // namespace veltarn::db
