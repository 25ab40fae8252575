#include "commands/ClassTests.h"

#include "classifier/DrawingTables.h"
#include "data/ObjectDataTables.h"

namespace veltarn {

bool ClassTests::meetsDrawingRequirements(const ClassDef& def) {
    auto known = requirements_.find(&def);
    if (known != requirements_.end()) return known->second;
    bool met = true;
    // Without "ODEMUDATA" the drawing defines no table, and looking would create the dictionary.
    if (findObjectDataDictionary(db_).isNull()) return requirements_.emplace(&def, met).first->second;
    for (const TableDef& table : def.tables) met = met && matchesDrawingTable(db_, table);
    requirements_.emplace(&def, met);
    return met;
}

}  // namespace veltarn
