#include "cad/seam/WorkbenchDatabase.h"

#include <algorithm>
#include <limits>

#include "cad/db/Dictionary.h"
#include "cad/db/RecordCopier.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/EntityKind.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"
#include "cad/seam/SortentsTable.h"
#include "cad/seam/ValueConversion.h"
#include "cad/support/LinetypeLoader.h"
#include "cad/support/MlineStyleLoader.h"
#include "cad/support/SupportPath.h"
#include "cad/seam/WorkbenchObjects.h"
#include "host/DatabaseReactor.h"

namespace veltarn::seam {
namespace {

// The DXF table of a symbol table; empty for the collections kept as named dictionaries.
std::string_view tableName(host::SymbolTable table) {
    switch (table) {
        case host::SymbolTable::kBlock: return "BLOCK_RECORD";
        case host::SymbolTable::kDimensionStyle: return "DIMSTYLE";
        case host::SymbolTable::kLayer: return "LAYER";
        case host::SymbolTable::kLinetype: return "LTYPE";
        case host::SymbolTable::kTextStyle: return "STYLE";
        default: return {};
    }
}

std::string_view dictionaryName(host::SymbolTable table) {
    switch (table) {
        case host::SymbolTable::kLayout: return "ACAD_LAYOUT";
        case host::SymbolTable::kMLeaderStyle: return "ACAD_MLEADERSTYLE";
        case host::SymbolTable::kMlineStyle: return "ACAD_MLINESTYLE";
        default: return {};
    }
}

db::RecordKind recordKind(host::SymbolTable table) {
    switch (table) {
        case host::SymbolTable::kBlock: return db::RecordKind::Block;
        case host::SymbolTable::kDimensionStyle: return db::RecordKind::DimensionStyle;
        case host::SymbolTable::kLayer: return db::RecordKind::Layer;
        case host::SymbolTable::kLayout: return db::RecordKind::Layout;
        case host::SymbolTable::kLinetype: return db::RecordKind::Linetype;
        case host::SymbolTable::kMLeaderStyle: return db::RecordKind::MleaderStyle;
        case host::SymbolTable::kMlineStyle: return db::RecordKind::MlineStyle;
        case host::SymbolTable::kTextStyle: return db::RecordKind::TextStyle;
    }
    return db::RecordKind::Layer;
}

// Attribute definition flag (group 70): a constant attribute asks for no value.
constexpr int kConstantAttribute = 2;
// Block record group 281: references may only be scaled alike.
constexpr int kBlockScaling = 281;

// A handle no object of `db` has, from the top of the range: drawings hand out handles upwards
// from their seed and never get there, so it stays free after a conversion too.
db::Handle freeTopHandle(const db::Database& db) {
    db::Handle handle = std::numeric_limits<db::Handle>::max();
    while (db.status(handle) != db::OpenStatus::NotFound) --handle;
    return handle;
}

}  // namespace

WorkbenchDatabase::WorkbenchDatabase(db::Database database, std::filesystem::path path)
    : db_(std::move(database)), path_(std::move(path)) {
    if (db_.isR12()) rootStandIn_ = freeTopHandle(db_);
}

WorkbenchDatabase::~WorkbenchDatabase() { db_.removeObserver(&relay_); }

dxf::Result<std::unique_ptr<WorkbenchDatabase>> WorkbenchDatabase::read(const std::filesystem::path& path) {
    auto loaded = db::Database::load(path);
    if (!loaded) return loaded.error();
    return std::make_unique<WorkbenchDatabase>(std::move(*loaded), path);
}

std::wstring WorkbenchDatabase::fileName() const {
    if (path_.empty()) return {};
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(path_, error);
    return wide((error ? path_ : absolute.lexically_normal()).string());
}

// --- open bookkeeping ---------------------------------------------------------------------------

bool WorkbenchDatabase::onLockedLayer(db::Handle handle) const { return db_.isOnLockedLayer(handle); }

std::unique_ptr<host::DbObject> WorkbenchDatabase::openObject(host::ObjectId id, host::OpenMode mode) {
    const bool write = mode == host::OpenMode::kWrite;
    if (isRootStandIn(id.handle) && db_.isR12()) {
        // Reading the stand-in needs no root dictionary; writing it needs the real one, but a
        // write that would be refused anyway converts nothing.
        const OpenTable::Counts* counts = opens_.find(id.handle);
        if (counts && (counts->writer || (write && counts->readers > 0))) return nullptr;
        if (!write) {
            ++opens_.add(id.handle).readers;
            return makeRootStandIn(*this, id.handle);
        }
        if (!db_.convertFromR12().ok()) return nullptr;
    }
    const db::Handle handle = counted(id.handle);
    if (db_.status(handle) != db::OpenStatus::Ok) return nullptr;
    if (const OpenTable::Counts* counts = opens_.find(handle); counts && (counts->writer || (write && counts->readers > 0)))
        return nullptr;
    if (write && onLockedLayer(handle)) return nullptr;
    OpenTable::Counts& counts = opens_.add(handle);
    if (write) counts.writer = true;
    else ++counts.readers;
    // An object opened by the stand-in keeps that id: the caller compares it with what it asked for.
    return makeObject(*this, id.handle, mode);
}

db::Handle WorkbenchDatabase::counted(db::Handle handle) {
    // Only a drawing read as R12 and converted since has two ids for its root.
    if (rootStandIn_ == db::kNoHandle || db_.isR12()) return handle;
    const db::Handle real = db_.namedObjectsDictionary();
    if (OpenTable::Counts* held = opens_.find(rootStandIn_)) {
        const OpenTable::Counts moved = *held;
        *held = {};
        opens_.dropIfClosed(rootStandIn_);
        OpenTable::Counts& counts = opens_.add(real);
        counts.readers += moved.readers;
        counts.writer = counts.writer || moved.writer;
    }
    return handle == rootStandIn_ ? real : handle;
}

bool WorkbenchDatabase::tryUpgrade(db::Handle id) {
    const db::Handle handle = counted(id);
    OpenTable::Counts* counts = opens_.find(handle);
    if (!counts || counts->writer || counts->readers != 1 || onLockedLayer(handle)) return false;
    if (isRootStandIn(handle)) {
        // Still R12: the write that follows needs the real root dictionary.
        if (!db_.convertFromR12().ok()) return false;
        return tryUpgrade(handle);
    }
    counts->readers = 0;
    counts->writer = true;
    return true;
}

void WorkbenchDatabase::downgrade(db::Handle id) {
    OpenTable::Counts& counts = opens_.add(counted(id));
    counts.writer = false;
    counts.readers = 1;
}

void WorkbenchDatabase::release(db::Handle id, host::OpenMode mode) {
    const db::Handle handle = counted(id);
    OpenTable::Counts* counts = opens_.find(handle);
    if (!counts) return;
    if (mode == host::OpenMode::kWrite) counts->writer = false;
    else if (counts->readers > 0) --counts->readers;
    opens_.dropIfClosed(handle);
}

std::size_t WorkbenchDatabase::openCount() const { return opens_.openCount(); }

// --- changes and reactors -------------------------------------------------------------------------

void WorkbenchDatabase::addReactor(host::DatabaseReactor* reactor) {
    if (!reactor) return;
    reactors_.push_back(reactor);
    db_.addObserver(&relay_);
}

void WorkbenchDatabase::removeReactor(host::DatabaseReactor* reactor) {
    auto it = std::find(reactors_.begin(), reactors_.end(), reactor);
    if (it != reactors_.end()) reactors_.erase(it);
    // Unwatched, the database does nothing per change.
    if (reactors_.empty()) db_.removeObserver(&relay_);
}

void WorkbenchDatabase::notifyAppended(db::Handle handle) {
    // A reactor may remove itself while it is told: each is told only while still registered.
    const auto snapshot = reactors_;
    for (host::DatabaseReactor* reactor : snapshot)
        if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end())
            reactor->objectAppended(*this, {handle});
}

void WorkbenchDatabase::notifyErased(db::Handle handle, bool erased) {
    const auto snapshot = reactors_;
    for (host::DatabaseReactor* reactor : snapshot)
        if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end())
            reactor->objectErased(*this, {handle}, erased);
}

void WorkbenchDatabase::notifyModified(db::Handle handle) {
    const auto snapshot = reactors_;
    for (host::DatabaseReactor* reactor : snapshot)
        if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end())
            reactor->objectModified(*this, {handle});
}

bool WorkbenchDatabase::eraseObject(db::Handle handle) { return db::eraseObject(db_, handle) == db::OpenStatus::Ok; }

bool WorkbenchDatabase::undo() {
    if (!db_.undo()) return false;
    modified_ = true;
    return true;
}

bool WorkbenchDatabase::redo() {
    if (!db_.redo()) return false;
    modified_ = true;
    return true;
}

// --- entities ------------------------------------------------------------------------------------

std::vector<host::ObjectId> WorkbenchDatabase::blockEntities(host::ObjectId block) const {
    std::vector<host::ObjectId> ids;
    for (db::Handle h : db_.entitiesOf(block.handle)) ids.push_back({h});
    return ids;
}

std::unique_ptr<host::DbEntity> WorkbenchDatabase::appendEntity(host::ObjectId block, host::EntityClass kind) {
    using host::EntityClass;
    db::TagList tags;
    switch (kind) {
        case EntityClass::kPoint: tags = db::newPoint(db_, {}); break;
        case EntityClass::kLine: tags = db::newLine(db_, {}, {}); break;
        case EntityClass::kCircle: tags = db::newCircle(db_, {}, 0); break;
        case EntityClass::kArc: tags = db::newArc(db_, {}, 0, 0, 0); break;
        case EntityClass::kPolyline: tags = db::newLwpolyline(db_, {}, false); break;
        case EntityClass::kText: tags = db::newText(db_, {}, 0, ""); break;
        case EntityClass::kMText: tags = db::newMtext(db_, {}, 0, ""); break;
        case EntityClass::kHatch: tags = db::newHatch(db_, "SOLID", {}); break;
        default: return nullptr;
    }
    if (settings_) {
        // The current layer, colour and linetype of the session, where the drawing has them.
        if (auto layer = settings_->get(L"CLAYER"); layer && db::readLayer(db_, narrow(layer->text)))
            db::setLayer(tags, narrow(layer->text));
        if (auto linetype = settings_->get(L"CELTYPE"); linetype && !db::sameName(narrow(linetype->text), "ByLayer") &&
                                                         db_.findRecord("LTYPE", narrow(linetype->text)) != db::kNoHandle)
            db::setLinetype(tags, narrow(linetype->text));
    }
    auto handle = db_.appendEntity(block.handle, std::move(tags));
    if (!handle) return nullptr;
    return openEntity({*handle}, host::OpenMode::kWrite);
}

host::ObjectId WorkbenchDatabase::lastEntity() const {
    const std::vector<db::Handle> entities = db_.entitiesOf(db_.modelSpace());
    return entities.empty() ? host::ObjectId{} : host::ObjectId{entities.back()};
}

// --- symbol tables -----------------------------------------------------------------------------

host::ObjectId WorkbenchDatabase::findSymbol(host::SymbolTable table, const std::wstring& name) const {
    if (table == host::SymbolTable::kBlock) return {db_.findBlock(narrow(name))};
    if (auto t = tableName(table); !t.empty()) return {db_.findRecord(t, narrow(name))};
    return {db::namedEntry(db_, dictionaryName(table), narrow(name))};
}

std::vector<host::DbDictionary::Entry> WorkbenchDatabase::symbols(host::SymbolTable table) const {
    std::vector<host::DbDictionary::Entry> out;
    if (auto t = tableName(table); !t.empty()) {
        for (db::Handle record : db_.records(t)) out.emplace_back(wide(db::recordName(db_, record)), host::ObjectId{record});
        return out;
    }
    const db::Handle dictionary = db::findEntry(db_, db_.namedObjectsDictionary(), dictionaryName(table));
    for (const auto& entry : db::dictionaryEntries(db_, dictionary)) out.emplace_back(wide(entry.key), host::ObjectId{entry.value});
    return out;
}

std::vector<host::LayerInfo> WorkbenchDatabase::layers() const {
    std::vector<host::LayerInfo> out;
    for (db::Handle record : db_.records("LAYER")) {
        auto layer = db::readLayer(db_, record);
        if (!layer) continue;
        host::LayerInfo info;
        info.id = {record};
        info.name = wide(layer->name);
        info.off = layer->off;
        info.frozen = layer->frozen();
        info.locked = layer->locked();
        out.push_back(std::move(info));
    }
    return out;
}

std::optional<host::BlockInfo> WorkbenchDatabase::blockInfo(const std::wstring& name) const {
    const db::Handle block = db_.findBlock(narrow(name));
    if (block == db::kNoHandle) return std::nullopt;
    host::BlockInfo info;
    info.id = {block};
    info.name = wide(db_.blockName(block));
    info.anonymous = !info.name.empty() && info.name[0] == L'*';
    info.isLayout = block == db_.modelSpace() || block == db_.paperSpace() ||
                    db::sameName(narrow(info.name).substr(0, 12), "*Paper_Space");
    const db::TagList record = db_.tags(block);
    info.uniformScaling = record.integer(kBlockScaling).value_or(0) == 1;
    for (db::Handle entity : db_.entitiesOf(block)) {
        if (db_.typeName(entity) != "ATTDEF") continue;
        const db::TagList tags = db_.tags(entity);
        auto [from, to] = tags.subclass("AcDbAttributeDefinition");
        if (from == db::TagList::npos) from = 0, to = db::TagList::npos;
        if (tags.integer(db::gc::kFlags, from, to).value_or(0) & kConstantAttribute) continue;
        host::AttributeDefinitionInfo attribute;
        attribute.tag = wide(tags.text(db::gc::kName, from, to).value_or(""));
        attribute.prompt = wide(tags.text(db::gc::kOtherName, from, to).value_or(""));
        attribute.defaultValue = wide(tags.text(db::gc::kText).value_or(""));
        info.attributes.push_back(std::move(attribute));
    }
    return info;
}

bool WorkbenchDatabase::setRelativeDrawOrder(host::ObjectId block, const std::vector<host::ObjectId>& ids) {
    std::vector<db::Handle> handles;
    for (host::ObjectId id : ids) handles.push_back(id.handle);
    return orderAmongThemselves(db_, block.handle, handles);
}

bool WorkbenchDatabase::copyRecordsFrom(host::Database& source, const std::vector<host::ObjectId>& ids,
                                        host::SymbolTable table) {
    auto* other = dynamic_cast<WorkbenchDatabase*>(&source);
    if (!other || other == this) return false;
    // The database copies by name: each id must be a record of that table in the source.
    std::vector<std::string> names;
    const std::vector<host::DbDictionary::Entry> records = other->symbols(table);
    for (host::ObjectId id : ids) {
        auto found = std::find_if(records.begin(), records.end(), [&](const auto& entry) { return entry.second == id; });
        if (found == records.end()) return false;
        names.push_back(narrow(found->first));
    }
    if (names.empty()) return true;
    return db::copyRecords(db_, other->raw(), recordKind(table), names).ok();
}

bool WorkbenchDatabase::loadLinetypes(const std::wstring& pattern, const std::wstring& path) {
    return support::loadLinetypes(db_, std::filesystem::path(narrow(path)), narrow(pattern)).ok();
}

bool WorkbenchDatabase::loadMlineStyle(const std::wstring& name, const std::wstring& path) {
    // A style the drawing has already counts as loaded, as it does for linetypes.
    return support::loadMlineStyle(db_, std::filesystem::path(narrow(path)), narrow(name)).ok();
}

bool WorkbenchDatabase::hasHatchPattern(const std::wstring& pattern) const {
    if (pattern.empty()) return false;
    if (db::sameName(narrow(pattern), "SOLID")) return true;  // built in, defined by no file
    const std::wstring path = supportPath_ ? supportPath_() : std::wstring();
    return support::SupportPath(narrow(path)).definesPattern(narrow(pattern));
}

}  // namespace veltarn::seam
