#include "cad/seam/RecordCopy.h"

#include <algorithm>

#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"

namespace veltarn::seam {
namespace {

// Codes that point at objects of the source drawing, or identify the record there.
bool belongsToSource(int code) {
    return code == db::gc::kHandle || code == 105 || (code >= db::gc::kPointerMin && code <= db::gc::kPointerMax) ||
           code == db::gc::kPlotStyle || code == 347 || code == 348;
}

// The record's own tags without identity, owner, application groups and foreign pointers.
db::TagList portable(const db::TagList& tags) {
    db::TagList out;
    bool inGroup = false;
    for (std::size_t i = 0; i < tags.size(); ++i) {
        const db::TagValue& tag = tags[i];
        if (tag.code == db::gc::kControlString) {
            inGroup = tag.value != db::kGroupEnd;
            continue;
        }
        if (inGroup || belongsToSource(tag.code)) continue;
        out.add(tag.code, tag.value);
    }
    return out;
}

dxf::Result<db::Handle> copyOne(const db::Database& source, db::Database& target, std::string_view table,
                                db::Handle record, std::vector<db::Handle>& made) {
    const std::string name = db::recordName(source, record);
    if (db::Handle existing = target.findRecord(table, name); existing != db::kNoHandle) return existing;
    const db::TagList tags = source.tags(record);
    if (table == "LAYER") {
        const std::string linetype(tags.text(db::gc::kLinetypeName).value_or("Continuous"));
        if (target.findRecord("LTYPE", linetype) == db::kNoHandle) {
            const db::Handle sourceLinetype = source.findRecord("LTYPE", linetype);
            if (sourceLinetype != db::kNoHandle) {
                auto copied = copyOne(source, target, "LTYPE", sourceLinetype, made);
                if (!copied) return copied.error();
            }
        }
    }
    auto added = target.addRecord(table, portable(tags));
    if (!added) return added.error();
    made.push_back(*added);
    return *added;
}

}  // namespace

dxf::Result<std::vector<db::Handle>> copyTableRecords(const db::Database& source, db::Database& target,
                                                      std::string_view table, const std::vector<db::Handle>& handles) {
    const std::vector<db::Handle> records = source.records(table);
    for (db::Handle h : handles)
        if (std::find(records.begin(), records.end(), h) == records.end())
            return dxf::makeError(source.name() + ": " + db::formatHandle(h) + " is no record of the " + std::string(table) + " table");
    std::vector<db::Handle> made;
    for (db::Handle h : handles) {
        auto copied = copyOne(source, target, table, h, made);
        if (!copied) return copied.error();
    }
    return made;
}

}  // namespace veltarn::seam
