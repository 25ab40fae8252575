#include "cad/db/Database.h"

#include "cad/db/AttachedDataLayout.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/ObjectIdentity.h"
#include "cad/db/NewDrawing.h"
#include "cad/db/R12Converter.h"
#include "cad/dxf/NumberText.h"

#include <algorithm>
#include <cassert>
#include <unordered_map>

namespace veltarn::db {

// DatabaseLoader.cpp: read the file and index it in one pass.
Result<void> loadDrawing(Database& db, const std::filesystem::path& path);
Result<void> parseDrawing(Database& db, std::string bytes, std::string name);

const char* describe(OpenStatus status) {
    switch (status) {
        case OpenStatus::Ok: return "ok";
        case OpenStatus::NotFound: return "no such object";
        case OpenStatus::Erased: return "the object was erased";
        case OpenStatus::OnLockedLayer: return "the entity is on a locked layer";
    }
    return "?";
}

static char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (upper(a[i]) != upper(b[i])) return false;
    return true;
}

std::string upperName(std::string_view name) {
    std::string out(name);
    for (char& c : out) c = upper(c);
    return out;
}

// --- ObjectWriter -----------------------------------------------------------------------------

ObjectWriter::ObjectWriter(Database* db, Handle handle, OpenStatus status, TagList tags)
    : db_(db), handle_(handle), status_(status), tags_(std::move(tags)) {
    if (status_ == OpenStatus::Ok) original_ = tags_;
}

ObjectWriter::ObjectWriter(ObjectWriter&& other) noexcept
    : db_(other.db_), handle_(other.handle_), status_(other.status_), tags_(std::move(other.tags_)), original_(std::move(other.original_)) {
    other.db_ = nullptr;
}

void ObjectWriter::close() {
    if (db_ && status_ == OpenStatus::Ok && !(tags_ == original_)) (void)db_->replace(handle_, tags_);
    db_ = nullptr;
}

// --- Construction -----------------------------------------------------------------------------

Database::Database() = default;
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

Result<Database> Database::load(const std::filesystem::path& path) {
    Database db;
    if (auto loaded = loadDrawing(db, path); !loaded) return loaded.error();
    return db;
}

Result<Database> Database::parse(std::string bytes, std::string name) {
    Database db;
    if (auto parsed = parseDrawing(db, std::move(bytes), std::move(name)); !parsed) return parsed.error();
    return db;
}

Database Database::createNew() {
    auto db = parse(newDrawingText(), "new drawing");
    assert(db.ok() && "the built-in drawing template must parse");
    return std::move(db).value();
}

Result<void> Database::convertFromR12() {
    if (!r12_) return {};
    auto converted = convertR12(*this);
    if (!converted) return converted.error();
    Database other = std::move(converted).value();
    other.convertedFromR12_ = true;
    exchangeForm(other);
    if (journal_.recording()) {
        otherForm_ = std::make_unique<Database>(std::move(other));
        journal_.record(UndoJournal::kFormChange, {}, {});
    } else {
        journal_.forgetHistory();  // its changes name slots of the R12 drawing
        otherForm_.reset();
    }
    return {};
}

void Database::exchangeForm(Database& other) {
    UndoJournal journal = std::move(journal_);
    std::vector<DatabaseObserver*> observers = std::move(observers_);
    std::unique_ptr<Database> kept = std::move(otherForm_);
    Database mine = std::move(*this);
    *this = std::move(other);
    other = std::move(mine);
    journal_ = std::move(journal);
    observers_ = std::move(observers);
    otherForm_ = std::move(kept);
}

std::string Database::saveNotice() const {
    if (!convertedFromR12_) return {};
    return name() + ": saved as a 2018 drawing (AC1032): R12 cannot hold dictionaries, xrecords or draw order";
}

std::vector<std::string> Database::loadNotices() const {
    std::vector<std::string> notices;
    for (const DuplicateHandle& found : duplicateHandles_)
        notices.push_back(found.where + ": handle " + formatHandle(found.handle) + " is used twice; the second object (" + found.type +
                          ") gets handle " + formatHandle(found.renumbered));
    return notices;
}

// --- Slots ------------------------------------------------------------------------------------

std::uint32_t Database::slotOf(Handle handle) const { return handle == kNoHandle ? kNoSlot : handles_.get(handle); }

std::uint16_t Database::internType(std::string_view type) {
    // A few dozen types at most: a scan beats hashing a fresh string per object.
    for (std::size_t i = 0; i < types_.size(); ++i)
        if (types_[i] == type) return static_cast<std::uint16_t>(i);
    types_.emplace_back(type);
    return static_cast<std::uint16_t>(types_.size() - 1);
}

UndoJournal::State Database::stateOf(std::uint32_t slot) const {
    const Slot& s = slots_[slot];
    return {s.begin, s.size, s.flags};
}

void Database::setState(std::uint32_t slot, UndoJournal::State state) {
    Slot& s = slots_[slot];
    s.begin = state.begin;
    s.size = state.size;
    s.flags = state.flags;
}

void Database::storeOwned(std::uint32_t slot, const TagList& tags) {
    thread_local std::string blob;
    blob.clear();
    tags.encode(blob);
    UndoJournal::State before = stateOf(slot);
    UndoJournal::State after{arena_.store(blob), static_cast<std::uint32_t>(blob.size()),
                             static_cast<std::uint8_t>((before.flags | kOwned) & ~kErased)};
    setState(slot, after);
    journal_.record(slot, before, after);
}

namespace {
// Bytes a tag of an ASCII file commonly takes at least (a group code line and a short value):
// a guess of the room a list needs, never a limit.
constexpr std::uint32_t kLeastTagBytes = 8;
}  // namespace

void Database::decodeSlot(const Slot& slot, TagList& out) const {
    if (slot.flags & kOwned) {
        out = TagList::decode(arena_.at(slot.begin, slot.size));
        return;
    }
    out.clear();
    // Room for all tags at once: growing the list tag by tag cost a quarter of reading an object.
    out.reserve(slot.size / kLeastTagBytes + 1);
    for (dxf::TagStream tags(*file_, slot.begin, slot.begin + slot.size); tags.next();) out.add(tags.code(), tags.text());
}

void Database::openCursor(const Slot& slot, TagCursor& cursor) const {
    if (slot.flags & kOwned) cursor.overBlob(arena_.at(slot.begin, slot.size));
    else cursor.overFile(*file_, slot.begin, slot.begin + slot.size);
}

std::string Database::nameOf(std::uint32_t slot) const {
    TagCursor cursor;
    openCursor(slots_[slot], cursor);
    if (!cursor.next()) return {};
    while (cursor.next())
        if (cursor.code() == gc::kName) return std::string(cursor.value());
    return {};
}

void Database::registerSubHandles(std::uint32_t slot, const TagList& tags) {
    for (std::size_t i = 1; i + 1 < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || tags[i + 1].code != gc::kHandle) continue;
        if (auto sub = parseHandle(tags[i + 1].value)) {
            if (handles_.get(*sub) == HandleIndex::kNone) handles_.set(*sub, slot);
            if (*sub >= nextHandle_) nextHandle_ = std::min(*sub, kLastHandle) + 1;  // past the last: none left
        }
    }
}

Result<Handle> Database::allocateHandle() {
    if (auto left = handlesLeft(1); !left) return left.error();
    return nextHandle_++;
}

Result<void> Database::handlesLeft(std::uint64_t count) const {
    if (count > 0 && (nextHandle_ > kLastHandle || kLastHandle - nextHandle_ < count - 1))
        return dxf::makeError(name() + ": the drawing has no handle left for a new object");
    return {};
}

std::uint32_t Database::create(Slot slot, std::uint32_t anchor, TagList& tags) {
    slot.flags = kErased;  // the state before: not there
    slot.type = internType(tags.type());
    slots_.push_back(slot);
    auto index = static_cast<std::uint32_t>(slots_.size() - 1);
    if (slot.handle != kNoHandle) handles_.set(slot.handle, index);
    if (anchor != lastAnchor_ || !lastAnchored_) {
        lastAnchor_ = anchor;
        lastAnchored_ = &anchored_[anchor];
    }
    lastAnchored_->push_back(index);
    storeOwned(index, tags);
    registerSubHandles(index, tags);
    return index;
}

// The same for a blob built without a TagList; it holds no VERTEX or ATTRIB entities.
std::uint32_t Database::createEncoded(Slot slot, std::uint32_t anchor, std::string_view type, std::string_view blob) {
    slot.type = internType(type);
    slot.flags = kOwned;
    slot.begin = arena_.store(blob);
    slot.size = static_cast<std::uint32_t>(blob.size());
    slots_.push_back(slot);
    auto index = static_cast<std::uint32_t>(slots_.size() - 1);
    handles_.set(slot.handle, index);
    if (anchor != lastAnchor_ || !lastAnchored_) {
        lastAnchor_ = anchor;
        lastAnchored_ = &anchored_[anchor];
    }
    lastAnchored_->push_back(index);
    journal_.record(index, {0, 0, kErased}, stateOf(index));
    return index;
}

// --- Objects ----------------------------------------------------------------------------------

OpenStatus Database::status(Handle handle) const {
    std::uint32_t slot = slotOf(handle);
    if (slot == kNoSlot) return OpenStatus::NotFound;
    return (slots_[slot].flags & kErased) ? OpenStatus::Erased : OpenStatus::Ok;
}

std::vector<Handle> Database::liveHandles() const {
    std::vector<Handle> out;
    out.reserve(slots_.size());
    for (const Slot& slot : slots_)
        if (slot.handle != kNoHandle && !(slot.flags & (kErased | kStructure))) out.push_back(slot.handle);
    return out;
}

std::string_view Database::typeName(Handle handle) const {
    std::uint32_t slot = slotOf(handle);
    return slot == kNoSlot ? std::string_view() : std::string_view(types_[slots_[slot].type]);
}

Section Database::sectionOf(Handle handle) const {
    std::uint32_t slot = slotOf(handle);
    return slot == kNoSlot ? Section::None : slots_[slot].section;
}

OpenStatus Database::read(Handle handle, TagList& out) const {
    OpenStatus result = status(handle);
    if (result != OpenStatus::Ok) return result;
    decodeSlot(slots_[slotOf(handle)], out);
    return OpenStatus::Ok;
}

OpenStatus Database::read(Handle handle, TagCursor& cursor) const {
    OpenStatus result = status(handle);
    if (result != OpenStatus::Ok) {
        cursor.overBlob({});
        return result;
    }
    openCursor(slots_[slotOf(handle)], cursor);
    return OpenStatus::Ok;
}

TagList Database::tags(Handle handle) const {
    TagList out;
    (void)read(handle, out);
    return out;
}

bool Database::onLockedLayer(const TagList& tags) const {
    auto layer = tags.text(gc::kLayer);
    return layer && layerLocked(dxf::trimSpaces(*layer));
}

bool Database::layerLocked(std::string_view layer) const {
    constexpr int kLocked = 4;
    TagCursor cursor;
    if (read(findRecord("LAYER", layer), cursor) != OpenStatus::Ok) return false;
    while (cursor.next())
        if (cursor.code() == gc::kFlags) return (dxf::parseInteger(cursor.value()).value_or(0) & kLocked) != 0;
    return false;
}

bool Database::isOnLockedLayer(Handle entity) const {
    TagCursor cursor;
    if (blockOf(entity) == kNoHandle || read(entity, cursor) != OpenStatus::Ok || !cursor.next()) return false;
    while (cursor.next()) {
        if (cursor.code() == gc::kStructure) break;
        if (cursor.code() == gc::kLayer) return layerLocked(std::string(dxf::trimSpaces(cursor.value())));
    }
    return false;
}

ObjectWriter Database::openForWrite(Handle handle, bool evenIfLocked) {
    TagList tags;
    OpenStatus result = read(handle, tags);
    if (result == OpenStatus::Ok && !evenIfLocked && blockOf(handle) != kNoHandle && onLockedLayer(tags))
        result = OpenStatus::OnLockedLayer;
    if (result != OpenStatus::Ok) tags.clear();
    return ObjectWriter(this, handle, result, std::move(tags));
}

OpenStatus Database::replace(Handle handle, const TagList& tags) {
    OpenStatus result = status(handle);
    if (result != OpenStatus::Ok) return result;
    std::uint32_t slot = slotOf(handle);
    storeOwned(slot, tags);
    registerSubHandles(slot, tags);
    notifyModified(handle);
    return OpenStatus::Ok;
}

Handle Database::ownerOf(Handle handle) const {
    TagCursor cursor;
    if (read(handle, cursor) != OpenStatus::Ok || !cursor.next()) return kNoHandle;
    bool inGroup = false;
    while (cursor.next()) {
        int code = cursor.code();
        if (code == gc::kControlString) inGroup = dxf::trimSpaces(cursor.value()) != kGroupEnd;
        else if (code == gc::kSoftPointer && !inGroup) return parseHandle(cursor.value()).value_or(kNoHandle);
        else if (code == gc::kStructure) break;
    }
    return kNoHandle;
}

OpenStatus Database::erase(Handle handle) {
    OpenStatus result = status(handle);
    if (result != OpenStatus::Ok) return result;
    std::uint32_t slot = slotOf(handle);
    UndoJournal::State before = stateOf(slot), after = before;
    after.flags |= kErased;
    setState(slot, after);
    journal_.record(slot, before, after);
    notifyErased(handle, true);
    return OpenStatus::Ok;
}

OpenStatus Database::unerase(Handle handle) {
    std::uint32_t slot = slotOf(handle);
    if (slot == kNoSlot) return OpenStatus::NotFound;
    if (!(slots_[slot].flags & kErased)) return OpenStatus::Ok;
    UndoJournal::State before = stateOf(slot), after = before;
    after.flags &= static_cast<std::uint8_t>(~kErased);
    setState(slot, after);
    journal_.record(slot, before, after);
    notifyErased(handle, false);
    return OpenStatus::Ok;
}

// --- Blocks -----------------------------------------------------------------------------------

Handle Database::blockId(int index) const {
    const BlockEntry& entry = blocks_[static_cast<std::size_t>(index)];
    if (entry.record != kNoSlot) return slots_[entry.record].handle;
    return entry.begin == kNoSlot ? kNoHandle : slots_[entry.begin].handle;
}

int Database::blockIndexOf(Handle block) const {
    auto it = blockIds_.find(block);
    if (it == blockIds_.end()) return -1;
    const BlockEntry& entry = blocks_[static_cast<std::size_t>(it->second)];
    if (entry.begin != kNoSlot && (slots_[entry.begin].flags & kErased)) return -1;
    return it->second;
}

Handle Database::modelSpace() const { return blockId(modelSpace_); }
Handle Database::paperSpace() const { return blockId(paperSpace_); }

Handle Database::findBlock(std::string_view name) const {
    for (std::size_t b = 0; b < blocks_.size(); ++b) {
        if (!sameName(blocks_[b].name, name)) continue;
        Handle id = blockId(static_cast<int>(b));
        if (blockIndexOf(id) >= 0) return id;
    }
    return kNoHandle;
}

std::vector<Handle> Database::blocks() const {
    std::vector<Handle> out;
    for (std::size_t b = 0; b < blocks_.size(); ++b) {
        Handle id = blockId(static_cast<int>(b));
        if (blockIndexOf(id) >= 0) out.push_back(id);
    }
    return out;
}

std::string Database::blockName(Handle block) const {
    int b = blockIndexOf(block);
    return b < 0 ? std::string() : blocks_[static_cast<std::size_t>(b)].name;
}

Handle Database::blockBegin(Handle block) const {
    int b = blockIndexOf(block);
    if (b < 0) return kNoHandle;
    std::uint32_t begin = blocks_[static_cast<std::size_t>(b)].begin;
    return begin == kNoSlot ? kNoHandle : slots_[begin].handle;
}

std::vector<Handle> Database::entitiesOf(Handle block) const {
    std::vector<Handle> out;
    int b = blockIndexOf(block);
    if (b < 0) return out;
    const auto& members = blocks_[static_cast<std::size_t>(b)].members;
    out.reserve(members.size());
    for (std::uint32_t slot : members)
        if (!(slots_[slot].flags & kErased)) out.push_back(slots_[slot].handle);
    return out;
}

Handle Database::blockOf(Handle entity) const {
    std::uint32_t slot = slotOf(entity);
    if (slot == kNoSlot) return kNoHandle;
    const Slot& s = slots_[slot];
    if ((s.section != Section::Entities && s.section != Section::Blocks) || s.container == kNoSlot) return kNoHandle;
    std::string_view type = types_[s.type];
    if (type == "BLOCK" || type == "ENDBLK") return kNoHandle;
    return blockId(static_cast<int>(s.container));
}

// The VERTEX, ATTRIB and SEQEND entities that travel with a POLYLINE or INSERT: each gets a handle
// of its own (a fresh one when it has none or its handle is taken, as in copied or exploded
// entities) and, in 2000+ drawings, the entity as its owner.
Result<void> Database::identifySubEntities(TagList& tags, Handle owner) {
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure) continue;
        std::size_t end = tags.find(gc::kStructure, i + 1);
        if (end == TagList::npos) end = tags.size();
        std::size_t at = tags.find(gc::kHandle, i + 1, end);
        auto handle = at == TagList::npos ? std::nullopt : parseHandle(tags[at].value);
        if (!handle || *handle == kNoHandle || *handle >= nextHandle_ || handles_.get(*handle) != HandleIndex::kNone) {
            auto allocated = allocateHandle();
            if (!allocated) return allocated.error();
            std::string fresh = formatHandle(*allocated);
            if (at == TagList::npos) {
                tags.insert(i + 1, gc::kHandle, std::move(fresh));
                at = i + 1;
                ++end;
            } else {
                tags[at].value = std::move(fresh);
            }
        }
        if (r12_) continue;
        std::size_t ownerAt = tags.find(gc::kSoftPointer, at + 1, end);
        std::size_t marker = tags.find(gc::kSubclass, at + 1, end);
        if (ownerAt != TagList::npos && (marker == TagList::npos || ownerAt < marker)) tags[ownerAt].value = formatHandle(owner);
        else tags.insert(at + 1, gc::kSoftPointer, formatHandle(owner));
    }
    return {};
}

static bool usable(const HandleIndex& index, Handle handle, Handle next) {
    return handle != kNoHandle && handle < next && index.get(handle) == HandleIndex::kNone;
}

Result<Handle> Database::appendEntity(Handle block, TagList tags, Handle preset) {
    int b = blockIndexOf(block);
    if (b < 0) return dxf::makeError(name() + ": cannot add an entity: no block " + formatHandle(block));
    BlockEntry& entry = blocks_[static_cast<std::size_t>(b)];
    if (entry.anchor == kNoSlot) return dxf::makeError(name() + ": cannot add an entity: the drawing has no ENTITIES section");
    if (tags.empty() || tags[0].code != gc::kStructure) return dxf::makeError("an entity must start with its type (group code 0)");
    if (preset != kNoHandle && !usable(handles_, preset, nextHandle_)) return dxf::makeError("handle " + formatHandle(preset) + " is in use or was not allocated");
    auto allocated = preset != kNoHandle ? Result<Handle>(preset) : allocateHandle();
    if (!allocated) return allocated.error();
    Handle handle = *allocated;
    setIdentity(tags, handle, gc::kHandle, block, !r12_);
    if (std::string_view type = tags.type(); type == "POLYLINE" || type == "INSERT")
        if (auto identified = identifySubEntities(tags, handle); !identified) return identified.error();
    if (entry.paper && entry.inEntitiesSection) tags.setIn("AcDbEntity", gc::kPaperSpace, "1");
    Slot slot;
    slot.handle = handle;
    slot.section = entry.inEntitiesSection ? Section::Entities : Section::Blocks;
    slot.container = static_cast<std::uint32_t>(b);
    std::uint32_t index = create(slot, entry.anchor, tags);
    blocks_[static_cast<std::size_t>(b)].members.push_back(index);
    ensureClass(tags.type());
    notifyAppended(handle);
    return handle;
}

Result<Handle> Database::appendEntityWithData(Handle block, const TagList& entity, std::string_view key, const TagList& values) {
    int b = blockIndexOf(block);
    if (auto converted = convertFromR12(); !converted) return converted.error();
    std::uint32_t objects = sectionEnd_[static_cast<int>(Section::Objects)];
    if (objects == kNoSlot)
        return dxf::makeError(name() + ": cannot add an object: the drawing has no OBJECTS section");
    if (b < 0) return dxf::makeError(name() + ": cannot add an entity: no block " + formatHandle(block));
    BlockEntry& entry = blocks_[static_cast<std::size_t>(b)];
    if (entry.anchor == kNoSlot) return dxf::makeError(name() + ": cannot add an entity: the drawing has no ENTITIES section");
    if (entity.empty() || entity[0].code != gc::kStructure) return dxf::makeError("an entity must start with its type (group code 0)");
    for (std::size_t i = 1; i < entity.size(); ++i)
        if (entity[i].code == gc::kStructure || entity[i].code == gc::kHandle || entity[i].code == gc::kControlString)
            return dxf::makeError("the bulk path takes a plain entity without handle, groups or sub-entities");
    if (entry.paper && entry.inEntitiesSection) return dxf::makeError("the bulk path does not add to paper space");
    if (auto left = handlesLeft(3); !left) return left.error();
    const Handle handle = nextHandle_++, dictionary = nextHandle_++, record = nextHandle_++;
    char ids[3][20], owner[20];
    auto hex = [](char* out, Handle h) {
        std::size_t n = formatHandle(h).copy(out, 19);
        return std::string_view(out, n);
    };
    std::string_view entityId = hex(ids[0], handle), dictionaryId = hex(ids[1], dictionary), recordId = hex(ids[2], record);
    std::string_view ownerId = hex(owner, block);

    thread_local std::string blob;
    blob.clear();
    auto encode = [](int code, std::string_view value) { TagList::encodeTag(blob, code, value); };
    TagList::encodeTag(blob, gc::kStructure, entity[0].value);
    TagList::encodeTag(blob, gc::kHandle, entityId);
    emitXdictionaryPointer(encode, dictionaryId);
    TagList::encodeTag(blob, gc::kSoftPointer, ownerId);
    std::size_t from = entity.size() > 1 && entity[1].code == gc::kSoftPointer ? 2 : 1;
    for (std::size_t i = from; i < entity.size(); ++i) TagList::encodeTag(blob, entity[i].code, entity[i].value);
    Slot slot;
    slot.handle = handle;
    slot.section = entry.inEntitiesSection ? Section::Entities : Section::Blocks;
    slot.container = static_cast<std::uint32_t>(b);
    entry.members.push_back(createEncoded(slot, entry.anchor, entity.type(), blob));

    blob.clear();
    emitDataDictionary(encode, dictionaryId, entityId, key, recordId);
    Slot object;
    object.handle = dictionary;
    object.section = Section::Objects;
    createEncoded(object, objects, "DICTIONARY", blob);

    blob.clear();
    emitDataXrecordHead(encode, recordId, dictionaryId);
    values.encode(blob);
    object.handle = record;
    createEncoded(object, objects, "XRECORD", blob);

    notifyAppended(handle);
    notifyAppended(dictionary);
    notifyAppended(record);
    return handle;
}

Result<Handle> Database::addBlock(std::string_view blockName, const Point3& base) {
    if (findBlock(blockName) != kNoHandle) return dxf::makeError("a block named \"" + std::string(blockName) + "\" exists already");
    std::uint32_t anchor = sectionEnd_[static_cast<int>(Section::Blocks)];
    if (anchor == kNoSlot) return dxf::makeError(name() + ": cannot add a block: the drawing has no BLOCKS section");
    if (auto left = handlesLeft(r12_ ? 2 : 3); !left) return left.error();  // BLOCK, ENDBLK and the record
    Handle record = kNoHandle;
    if (!r12_) {
        TagList rec{{0, "BLOCK_RECORD"}, {100, "AcDbSymbolTableRecord"}, {100, "AcDbBlockTableRecord"}, {2, std::string(blockName)},
                    {340, "0"}, {70, "0"}, {280, "1"}, {281, "0"}};
        auto added = addRecord("BLOCK_RECORD", std::move(rec));
        if (!added) return added.error();
        record = *added;
    }
    BlockEntry entry;
    entry.name = std::string(blockName);
    entry.record = record == kNoHandle ? kNoSlot : slotOf(record);
    auto index = static_cast<std::uint32_t>(blocks_.size());
    TagList begin{{0, "BLOCK"}};
    if (!r12_) begin.add(100, "AcDbEntity");
    begin.add(8, "0");
    if (!r12_) begin.add(100, "AcDbBlockBegin");
    begin.add(2, std::string(blockName));
    begin.add(70, "0");
    begin.addPoint(10, base);
    begin.add(3, std::string(blockName));
    begin.add(1, "");
    Slot slot;
    slot.handle = nextHandle_++;
    slot.section = Section::Blocks;
    slot.container = index;
    setIdentity(begin, slot.handle, gc::kHandle, record, !r12_);
    entry.begin = create(slot, anchor, begin);
    TagList end{{0, "ENDBLK"}};
    if (!r12_) end.add(100, "AcDbEntity");
    end.add(8, "0");
    if (!r12_) end.add(100, "AcDbBlockEnd");
    slot.handle = nextHandle_++;
    setIdentity(end, slot.handle, gc::kHandle, record, !r12_);
    entry.end = entry.anchor = create(slot, anchor, end);
    blocks_.push_back(std::move(entry));
    Handle id = blockId(static_cast<int>(index));
    blockIds_[id] = static_cast<int>(index);
    if (r12_) notifyAppended(id);  // a 2000+ block was announced with its record
    return id;
}

// --- Tables -----------------------------------------------------------------------------------

int Database::tableIndexOf(std::string_view table) const {
    for (std::size_t t = 0; t < tables_.size(); ++t)
        if (sameName(tables_[t].name, table)) return static_cast<int>(t);
    return -1;
}

bool Database::hasTable(std::string_view table) const { return tableIndexOf(table) >= 0; }

Handle Database::tableHandle(std::string_view table) const {
    int t = tableIndexOf(table);
    return t < 0 ? kNoHandle : slots_[tables_[static_cast<std::size_t>(t)].head].handle;
}

std::vector<Handle> Database::records(std::string_view table) const {
    std::vector<Handle> out;
    int t = tableIndexOf(table);
    if (t < 0) return out;
    for (std::uint32_t slot : tables_[static_cast<std::size_t>(t)].records)
        if (!(slots_[slot].flags & kErased)) out.push_back(slots_[slot].handle);
    return out;
}

Handle Database::findRecord(std::string_view table, std::string_view recordName) const {
    int t = tableIndexOf(table);
    if (t < 0) return kNoHandle;
    const TableEntry& entry = tables_[static_cast<std::size_t>(t)];
    std::string key = upperName(recordName);
    if (auto known = entry.byName.find(key); known != entry.byName.end()) {
        const std::uint32_t slot = known->second;
        if (slot < slots_.size() && !(slots_[slot].flags & kErased) && sameName(dxf::trimSpaces(nameOf(slot)), recordName))
            return slots_[slot].handle;
        entry.byName.erase(known);
    }
    for (std::uint32_t slot : entry.records) {
        if (!(slots_[slot].flags & kErased) && sameName(dxf::trimSpaces(nameOf(slot)), recordName)) {
            entry.byName.emplace(std::move(key), slot);
            return slots_[slot].handle;
        }
    }
    return kNoHandle;
}

Result<Handle> Database::addRecord(std::string_view table, TagList tags, Handle preset) {
    int t = tableIndexOf(table);
    if (t < 0) return dxf::makeError(name() + ": the drawing has no " + std::string(table) + " table");
    if (tags.empty() || tags[0].code != gc::kStructure) return dxf::makeError("a table record must start with its type (group code 0)");
    auto recordName = tags.text(gc::kName);
    if (recordName && findRecord(table, *recordName) != kNoHandle)
        return dxf::makeError("the " + std::string(table) + " table has a record named \"" + std::string(*recordName) + "\" already");
    if (preset != kNoHandle && !usable(handles_, preset, nextHandle_)) return dxf::makeError("handle " + formatHandle(preset) + " is in use or was not allocated");
    auto allocated = preset != kNoHandle ? Result<Handle>(preset) : allocateHandle();
    if (!allocated) return allocated.error();
    TableEntry& entry = tables_[static_cast<std::size_t>(t)];
    Slot slot;
    slot.handle = *allocated;
    slot.section = Section::Tables;
    slot.container = static_cast<std::uint32_t>(t);
    int handleCode = sameName(table, "DIMSTYLE") ? gc::kDimStyleHandle : gc::kHandle;
    setIdentity(tags, slot.handle, handleCode, slots_[entry.head].handle, !r12_);
    std::uint32_t index = create(slot, entry.end, tags);
    tables_[static_cast<std::size_t>(t)].records.push_back(index);
    notifyAppended(slot.handle);
    return slot.handle;
}

// --- Objects section --------------------------------------------------------------------------

Result<Handle> Database::addObject(TagList tags, Handle preset) {
    if (auto converted = convertFromR12(); !converted) return converted.error();
    std::uint32_t anchor = sectionEnd_[static_cast<int>(Section::Objects)];
    if (anchor == kNoSlot)
        return dxf::makeError(name() + ": cannot add an object: the drawing has no OBJECTS section");
    if (tags.empty() || tags[0].code != gc::kStructure) return dxf::makeError("an object must start with its type (group code 0)");
    if (preset != kNoHandle && !usable(handles_, preset, nextHandle_)) return dxf::makeError("handle " + formatHandle(preset) + " is in use or was not allocated");
    auto allocated = preset != kNoHandle ? Result<Handle>(preset) : allocateHandle();
    if (!allocated) return allocated.error();
    Slot slot;
    slot.handle = *allocated;
    slot.section = Section::Objects;
    if (tags.size() > 1 && tags[1].code == gc::kHandle) tags[1].value = formatHandle(slot.handle);
    else tags.insert(1, gc::kHandle, formatHandle(slot.handle));
    create(slot, anchor, tags);
    ensureClass(tags.type());
    notifyAppended(slot.handle);
    return slot.handle;
}

Handle Database::namedObjectsDictionary() const {
    if (rootDictionary_ == kNoSlot || (slots_[rootDictionary_].flags & kErased)) return kNoHandle;
    return slots_[rootDictionary_].handle;
}

std::optional<std::string> Database::headerVariable(std::string_view variable) const {
    if (header_ == kNoSlot) return std::nullopt;
    // Built on first use and again after the header changed: entity factories ask for $CLAYER
    // once per new entity.
    if (headerValues_.empty() || !(headerValuesOf_ == stateOf(header_))) {
        headerValues_.clear();
        TagCursor cursor;
        openCursor(slots_[header_], cursor);
        std::string name;
        bool wantValue = false;
        while (cursor.next()) {
            if (cursor.code() == gc::kVariableName) {
                name = std::string(cursor.value());
                wantValue = true;
            } else if (wantValue) {
                headerValues_.emplace(std::move(name), std::string(cursor.value()));
                wantValue = false;
            }
        }
        headerValues_.emplace("", "");  // marks the map as built
        headerValuesOf_ = stateOf(header_);
    }
    auto it = headerValues_.find(std::string(variable));
    if (it == headerValues_.end()) return std::nullopt;
    return it->second;
}

// Same text, or the same number written another way ("1.0" for 1): either leaves the file alone.
static bool sameValue(int code, std::string_view held, std::string_view wanted) {
    held = dxf::trimSpaces(held);
    wanted = dxf::trimSpaces(wanted);
    if (held == wanted) return true;
    switch (dxf::valueKindOf(code)) {
        case dxf::ValueKind::String: case dxf::ValueKind::Binary: return false;
        case dxf::ValueKind::Real: {
            auto a = dxf::parseReal(held), b = dxf::parseReal(wanted);
            return a && b && *a == *b;
        }
        default: {
            auto a = dxf::parseInteger(held), b = dxf::parseInteger(wanted);
            return a && b && *a == *b;
        }
    }
}

Result<void> Database::setHeaderVariable(std::string_view variable, int code, std::string_view value) {
    if (variable.size() < 2 || variable[0] != '$') return dxf::makeError("a header variable is named $NAME, not \"" + std::string(variable) + "\"");
    if (variable == "$HANDSEED") return dxf::makeError("$HANDSEED is kept by the drawing database");
    if (header_ == kNoSlot) return dxf::makeError(name() + ": the drawing has no HEADER section");
    dxf::ValueKind kind = dxf::valueKindOf(code);
    if (kind == dxf::ValueKind::Real ? !dxf::parseReal(value)
                                     : dxf::isNumericKind(kind) && !dxf::parseInteger(value))
        return dxf::makeError(std::string(variable) + ": \"" + std::string(value) + "\" is not a value for group code " + std::to_string(code));
    if (code == gc::kStructure || code == gc::kVariableName) return dxf::makeError(std::string(variable) + ": group code " + std::to_string(code) + " cannot hold a header value");

    TagList tags;
    decodeSlot(slots_[header_], tags);
    // The entry's value tags run from its 9 tag to the next 9 or to the ENDSEC.
    std::size_t at = TagList::npos;
    for (std::size_t i = 0; i < tags.size(); ++i)
        if (tags[i].code == gc::kVariableName && dxf::trimSpaces(tags[i].value) == variable) { at = i; break; }
    if (at != TagList::npos) {
        std::size_t end = at + 1;
        while (end < tags.size() && tags[end].code != gc::kVariableName && tags[end].code != gc::kStructure) ++end;
        if (end == at + 2 && tags[at + 1].code == code && sameValue(code, tags[at + 1].value, value)) return {};
        tags.erase(at + 1, end - at - 1);
        tags.insert(at + 1, code, std::string(value));
    } else {
        std::size_t end = tags.size();
        if (end > 0 && tags[end - 1].code == gc::kStructure) --end;  // before the ENDSEC
        tags.insert(end, gc::kVariableName, std::string(variable));
        tags.insert(end + 1, code, std::string(value));
    }
    storeOwned(header_, tags);
    return {};
}

// --- Undo -------------------------------------------------------------------------------------

bool Database::undo() {
    if (!journal_.canUndo()) return false;
    const auto command = journal_.undoCommand();
    applyChanges(command.first, command.last, true);
    journal_.markUndone();
    return true;
}

bool Database::redo() {
    if (!journal_.canRedo()) return false;
    const auto command = journal_.redoCommand();
    applyChanges(command.first, command.last, false);
    journal_.markRedone();
    return true;
}

void Database::rollBack(std::size_t mark) {
    std::size_t last = journal_.changes().size();
    if (mark >= last) return;
    applyChanges(mark, last, true);
    bool converted = false;
    for (std::size_t i = mark; i < last; ++i) converted = converted || journal_.changes()[i].slot == UndoJournal::kFormChange;
    journal_.truncate(mark);
    if (converted) otherForm_.reset();  // the conversion is forgotten with the changes
}

// Observers hear of each run of changes while the form those changes name is the drawing's.
void Database::applyChanges(std::size_t first, std::size_t last, bool undo) {
    const auto& changes = journal_.changes();
    std::size_t runStart = undo ? last : first;
    auto formChange = [&](std::size_t i) {
        if (undo) notifyUndone(i + 1, runStart, true);
        else notifyUndone(runStart, i, false);
        if (otherForm_) exchangeForm(*otherForm_);
        runStart = undo ? i : i + 1;
    };
    if (undo) {
        for (std::size_t i = last; i-- > first;) {
            if (changes[i].slot == UndoJournal::kFormChange) formChange(i);
            else setState(changes[i].slot, changes[i].before);
        }
        notifyUndone(first, runStart, true);
    } else {
        for (std::size_t i = first; i < last; ++i) {
            if (changes[i].slot == UndoJournal::kFormChange) formChange(i);
            else setState(changes[i].slot, changes[i].after);
        }
        notifyUndone(runStart, last, false);
    }
}

// --- Change notifications -----------------------------------------------------------------------

void Database::addObserver(DatabaseObserver* observer) {
    if (observer && std::find(observers_.begin(), observers_.end(), observer) == observers_.end()) observers_.push_back(observer);
}

void Database::removeObserver(DatabaseObserver* observer) { std::erase(observers_, observer); }

// Notifications go to a copy of the list: an observer may remove itself (or another) meanwhile.
void Database::notifyAppended(Handle handle) {
    if (observers_.empty()) return;
    for (DatabaseObserver* observer : std::vector<DatabaseObserver*>(observers_)) observer->objectAppended(*this, handle);
}

void Database::notifyErased(Handle handle, bool erased) {
    if (observers_.empty()) return;
    for (DatabaseObserver* observer : std::vector<DatabaseObserver*>(observers_)) observer->objectErased(*this, handle, erased);
}

void Database::notifyModified(Handle handle) {
    if (observers_.empty()) return;
    for (DatabaseObserver* observer : std::vector<DatabaseObserver*>(observers_)) observer->objectModified(*this, handle);
}

// One notification per object a command touched, for the net change: an entity created and then
// changed by the command is only "erased" by its undo.
void Database::notifyUndone(std::size_t first, std::size_t last, bool undo) {
    if (observers_.empty()) return;
    const auto& changes = journal_.changes();
    std::vector<std::uint32_t> order;
    std::unordered_map<std::uint32_t, std::pair<std::size_t, std::size_t>> span;  // first and last change
    for (std::size_t i = first; i < last; ++i) {
        auto [it, fresh] = span.try_emplace(changes[i].slot, i, i);
        if (fresh) order.push_back(changes[i].slot);
        else it->second.second = i;
    }
    for (std::uint32_t slot : order) {
        auto [from, to] = span[slot];
        UndoJournal::State was = undo ? changes[to].after : changes[from].before;
        UndoJournal::State now = undo ? changes[from].before : changes[to].after;
        if (was == now) continue;
        Handle handle = slots_[slot].handle;
        if ((was.flags & kErased) != (now.flags & kErased)) notifyErased(handle, (now.flags & kErased) != 0);
        else notifyModified(handle);
    }
}

std::size_t Database::memoryBeyondFile() const {
    std::size_t total = slots_.capacity() * sizeof(Slot) + arena_.memory() + handles_.memory();
    for (const auto& [anchor, list] : anchored_) total += list.capacity() * sizeof(std::uint32_t) + 48;
    for (const auto& block : blocks_) total += block.members.capacity() * sizeof(std::uint32_t) + sizeof(BlockEntry);
    return total;
}

}  // namespace veltarn::db
