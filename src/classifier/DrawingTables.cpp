#include "classifier/DrawingTables.h"

#include "data/ObjectDataTables.h"
#include "host/LowerCase.h"

namespace veltarn {

bool agreesWithDefinition(const TableDef& table, const ObjectDataRecord& definition) {
    if (table.fields.size() != definition.fields.size()) return false;
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        if (table.fields[i].type != definition.fields[i].type()) return false;
        if (!host::equalsIgnoringCase(table.fields[i].name, definition.fields[i].name())) return false;
    }
    return true;
}

bool matchesDrawingTable(host::Database& db, const TableDef& table, host::Documents* documents) {
    // A drawing without "ODEMUDATA" defines no table; looking must not create the dictionary (and
    // turn an R12 drawing into a newer one).
    if (findObjectDataDictionary(db).isNull()) return true;
    ObjectDataRecord definition;
    if (!readTableDefinition(db, table.name, definition, documents)) return true;
    return agreesWithDefinition(table, definition);
}

}  // namespace veltarn
