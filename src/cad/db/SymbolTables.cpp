#include "cad/db/SymbolTables.h"

#include "cad/db/Dictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/dxf/NumberText.h"

#include <cstdlib>

namespace veltarn::db {
namespace {

constexpr std::string_view kLayerRecord = "AcDbLayerTableRecord";
constexpr int kPlotFlag = 290;

}  // namespace

std::optional<Layer> readLayer(const Database& db, Handle record) {
    TagList tags;
    if (db.typeName(record) != "LAYER" || db.read(record, tags) != OpenStatus::Ok) return std::nullopt;
    Layer layer;
    layer.name = std::string(tags.text(gc::kName).value_or(""));
    layer.flags = static_cast<int>(tags.integer(gc::kFlags).value_or(0));
    int color = static_cast<int>(tags.integer(gc::kColor).value_or(7));
    layer.off = color < 0;
    layer.color = std::abs(color);
    layer.linetype = std::string(tags.text(gc::kLinetypeName).value_or("Continuous"));
    layer.lineweight = static_cast<int>(tags.integer(gc::kLineweight).value_or(-3));
    layer.plot = tags.integer(kPlotFlag).value_or(1) != 0;
    return layer;
}

std::optional<Layer> readLayer(const Database& db, std::string_view name) {
    Handle record = db.findRecord("LAYER", name);
    return record == kNoHandle ? std::nullopt : readLayer(db, record);
}

Result<Handle> writeLayer(Database& db, const Layer& layer) {
    Handle record = db.findRecord("LAYER", layer.name);
    if (record == kNoHandle) {
        TagList tags{{0, "LAYER"}};
        if (!db.isR12()) {
            tags.add(gc::kSubclass, "AcDbSymbolTableRecord");
            tags.add(gc::kSubclass, std::string(kLayerRecord));
        }
        tags.add(gc::kName, layer.name);
        tags.add(gc::kFlags, "0");
        tags.add(gc::kColor, "7");
        tags.add(gc::kLinetypeName, "Continuous");
        auto added = db.addRecord("LAYER", std::move(tags));
        if (!added) return added;
        record = *added;
    }
    ObjectWriter writer = db.openForWrite(record);
    if (!writer) return dxf::makeError("cannot open layer \"" + layer.name + "\": " + describe(writer.status()));
    TagList& tags = writer.tags();
    tags.setIntegerIn(kLayerRecord, gc::kFlags, layer.flags);
    int color = layer.color == 0 ? 7 : std::abs(layer.color);
    tags.setIntegerIn(kLayerRecord, gc::kColor, layer.off ? -color : color);
    tags.setIn(kLayerRecord, gc::kLinetypeName, layer.linetype);
    if (!db.isR12()) {
        if (!layer.plot || tags.find(kPlotFlag) != TagList::npos) tags.setIntegerIn(kLayerRecord, kPlotFlag, layer.plot ? 1 : 0);
        tags.setIntegerIn(kLayerRecord, gc::kLineweight, layer.lineweight);
    }
    return record;
}

std::string recordName(const Database& db, Handle record) {
    if (db.sectionOf(record) != Section::Tables) return {};
    TagList tags;
    if (db.read(record, tags) != OpenStatus::Ok) return {};
    return std::string(tags.text(gc::kName).value_or(""));
}

std::vector<std::string> recordNames(const Database& db, std::string_view table) {
    std::vector<std::string> names;
    for (Handle record : db.records(table)) names.push_back(recordName(db, record));
    return names;
}

Result<Handle> addLinetype(Database& db, std::string_view name, std::string_view description) {
    TagList tags{{0, "LTYPE"}};
    if (!db.isR12()) {
        tags.add(gc::kSubclass, "AcDbSymbolTableRecord");
        tags.add(gc::kSubclass, "AcDbLinetypeTableRecord");
    }
    tags.add(gc::kName, std::string(name));
    tags.add(gc::kFlags, "0");
    tags.add(gc::kOtherName, std::string(description));
    tags.add(gc::kInt72, "65");
    tags.add(gc::kInt73, "0");
    tags.add(gc::kReal, "0.0");
    return db.addRecord("LTYPE", std::move(tags));
}

Result<Handle> addTextStyle(Database& db, std::string_view name, std::string_view font, double height) {
    TagList tags{{0, "STYLE"}};
    if (!db.isR12()) {
        tags.add(gc::kSubclass, "AcDbSymbolTableRecord");
        tags.add(gc::kSubclass, "AcDbTextStyleTableRecord");
    }
    tags.add(gc::kName, std::string(name));
    tags.add(gc::kFlags, "0");
    tags.addReal(gc::kReal, height);
    tags.add(gc::kReal2, "1.0");
    tags.add(gc::kAngle, "0.0");
    tags.add(gc::kInt71, "0");
    tags.add(gc::kReal3, "2.5");
    tags.add(gc::kOtherName, std::string(font));
    tags.add(4, "");
    return db.addRecord("STYLE", std::move(tags));
}

std::vector<std::string> namedEntries(const Database& db, std::string_view dictionary) {
    std::vector<std::string> names;
    Handle root = db.namedObjectsDictionary();
    if (root == kNoHandle) return names;
    for (const auto& entry : dictionaryEntries(db, findEntry(db, root, dictionary)))
        if (db.exists(entry.value)) names.push_back(entry.key);
    return names;
}

Handle namedEntry(const Database& db, std::string_view dictionary, std::string_view name) {
    Handle root = db.namedObjectsDictionary();
    if (root == kNoHandle) return kNoHandle;
    Handle found = findEntry(db, findEntry(db, root, dictionary), name);
    return db.exists(found) ? found : kNoHandle;
}

std::vector<std::string> layoutNames(const Database& db) { return namedEntries(db, "ACAD_LAYOUT"); }

Handle layoutBlock(const Database& db, std::string_view layout) {
    TagList tags;
    if (db.read(namedEntry(db, "ACAD_LAYOUT", layout), tags) != OpenStatus::Ok) return kNoHandle;
    auto [from, to] = tags.subclass("AcDbLayout");
    if (from == TagList::npos) return kNoHandle;
    return parseHandle(tags.text(gc::kLayoutBlockRecord, from, to).value_or("")).value_or(kNoHandle);
}

std::string currentLayout(const Database& db) {
    if (dxf::parseInteger(db.headerVariable("$TILEMODE").value_or("1")).value_or(1) != 0) return "Model";
    Handle paper = db.paperSpace();
    for (const std::string& name : layoutNames(db))
        if (layoutBlock(db, name) == paper) return name;
    return "Model";
}

}  // namespace veltarn::db
