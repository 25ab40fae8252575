// A drawing in memory, over the DXF file it was read from. Every object (table record, block,
// entity, object, and the structure between them) is an index entry pointing at its bytes in the
// file, whose tags are read again when the object is read (the file's tag vector is not kept: it
// took more memory than the index). An object that is changed or created gets its tags in a compact
// owned blob instead. Saving copies unchanged runs as bytes and writes owned objects tag by tag, so
// a drawing loaded and saved without changes comes back byte for byte, and what the database does
// not model is kept as it is.
#pragma once

#include "cad/db/DatabaseObserver.h"
#include "cad/db/Handle.h"
#include "cad/db/HandleIndex.h"
#include "cad/db/TagArena.h"
#include "cad/db/TagCursor.h"
#include "cad/db/TagList.h"
#include "cad/db/UndoJournal.h"
#include "cad/dxf/OutputSink.h"
#include "cad/dxf/Result.h"
#include "cad/dxf/TagFile.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace veltarn::db {

using dxf::Error;
using dxf::Result;

// Why an object could not be opened; distinct so that callers can tell erased from missing.
enum class OpenStatus : std::uint8_t { Ok, NotFound, Erased, OnLockedLayer };
const char* describe(OpenStatus status);

enum class Section : std::uint8_t { None, Header, Classes, Tables, Blocks, Entities, Objects, Other };

class Database;

// An object whose handle, in the file read, an earlier object had: it got a new handle when the
// drawing was read (what pointed at the handle points at the earlier object still).
struct DuplicateHandle {
    Handle handle = kNoHandle;      // as the file gave it
    Handle renumbered = kNoHandle;  // what the object has now
    std::string type;               // LINE, VERTEX, LAYER...
    std::string where;              // "plan.dxf:1043" (binary files: "plan.dxf:@8812"), the handle's tag
};

// An object opened for writing: its tags, written back when closed (or destroyed). An object
// whose tags did not change stays as the file holds it.
class ObjectWriter {
public:
    ObjectWriter(ObjectWriter&& other) noexcept;
    ObjectWriter& operator=(ObjectWriter&&) = delete;
    ~ObjectWriter() { close(); }

    OpenStatus status() const { return status_; }
    explicit operator bool() const { return status_ == OpenStatus::Ok; }
    Handle handle() const { return handle_; }
    TagList& tags() { return tags_; }
    void close();

private:
    friend class Database;
    ObjectWriter(Database* db, Handle handle, OpenStatus status, TagList tags);

    Database* db_;
    Handle handle_;
    OpenStatus status_;
    TagList tags_;
    TagList original_;
};

class Database {
public:
    static constexpr std::uint32_t kNoSlot = 0xFFFFFFFFu;

    static Result<Database> load(const std::filesystem::path& path);
    static Result<Database> parse(std::string bytes, std::string name);
    // A new, complete, empty 2018 drawing.
    static Database createNew();

    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database();

    // Writes the drawing in the form, version and encoding it was read in.
    Result<void> write(dxf::OutputSink& sink) const;
    Result<void> save(const std::filesystem::path& path) const;
    Result<std::string> toText() const;

    const dxf::TagFile& file() const { return *file_; }
    const std::string& name() const { return file_->name(); }
    // True for R12 (AC1009) drawings: no owners, subclass markers, dictionaries or xrecords.
    bool isR12() const { return r12_; }
    // Converts an R12 drawing in place to 2018 with all its content, for a change R12 cannot hold
    // (dictionaries, xrecords, extension dictionaries, draw order); the functions that make such
    // changes call it. Handles stay. Nothing to do for other drawings. Inside a recording command the
    // conversion is a step of it: undoing the command gives back the R12 drawing exactly (and the
    // history before it stays undoable); outside one, the undo history before it is forgotten.
    Result<void> convertFromR12();
    // True once an R12 drawing was converted: it is saved as 2018 from then on.
    bool convertedFromR12() const { return convertedFromR12_; }
    // What to tell the user after a save: empty, or that the R12 drawing was saved as 2018.
    std::string saveNotice() const;
    // Handles above every handle in the drawing start here ($HANDSEED as it will be saved).
    Handle handleSeed() const { return nextHandle_; }
    // What reading the file repaired, for AUDIT: objects that shared a handle, in file order.
    const std::vector<DuplicateHandle>& duplicateHandles() const { return duplicateHandles_; }
    // The same as lines for the user ("plan.dxf:1043: handle 2A is used twice; ..."), one a finding.
    std::vector<std::string> loadNotices() const;
    // $HANDSEED as the file held it (0 when it had none or an unreadable one), for AUDIT.
    Handle fileHandleSeed() const { return headerSeed_; }
    // One above the largest handle the file held (renumbered duplicates included), for AUDIT.
    Handle fileMinimumSeed() const { return minSeed_; }

    // --- Objects --------------------------------------------------------------------------
    OpenStatus status(Handle handle) const;
    // Every object that is not erased (table heads and records, blocks and their entities, objects)
    // in file order, then in the order they were added: for checks that visit the whole drawing.
    std::vector<Handle> liveHandles() const;
    bool exists(Handle handle) const { return status(handle) == OpenStatus::Ok; }
    // The DXF type ("LINE", "DICTIONARY", "LAYER"...); empty for an unknown handle.
    std::string_view typeName(Handle handle) const;
    Section sectionOf(Handle handle) const;
    // The object's own tags (for POLYLINE and INSERT, with their VERTEX/ATTRIB and SEQEND).
    OpenStatus read(Handle handle, TagList& out) const;
    TagList tags(Handle handle) const;
    // The same tags one by one, without copying them: for reading a few values of many objects.
    OpenStatus read(Handle handle, TagCursor& cursor) const;
    // Opens for write; an entity on a locked layer gives OnLockedLayer unless `evenIfLocked`.
    ObjectWriter openForWrite(Handle handle, bool evenIfLocked = false);
    // True for an entity on a locked layer (what openForWrite refuses), read without copying its tags.
    bool isOnLockedLayer(Handle entity) const;
    // Replaces an object's tags whole (what ObjectWriter::close does).
    OpenStatus replace(Handle handle, const TagList& tags);
    // The owner link: the first 330 outside application groups (entities: their block record).
    Handle ownerOf(Handle handle) const;

    // A handle no object has had: the next one above every handle in use. Fails once the drawing
    // has none left (after kLastHandle).
    Result<Handle> allocateHandle();
    // Ok when `count` new handles can still be taken, for a change that needs several.
    Result<void> handlesLeft(std::uint64_t count) const;
    // Removes an object from what is saved. Erasing an erased object fails with Erased. Does not
    // touch references to it: see `eraseEntity` and `eraseObject` for the cleaning variants.
    OpenStatus erase(Handle handle);
    // Erasing undone, for undo-free callers (explode of a failed step); Ok when it was erased.
    OpenStatus unerase(Handle handle);

    // --- Blocks and entities ----------------------------------------------------------------
    // A block is named by its BLOCK_RECORD handle (R12: its BLOCK entity's handle).
    Handle modelSpace() const;
    Handle paperSpace() const;
    Handle findBlock(std::string_view name) const;  // case-insensitive; kNoHandle when absent
    std::vector<Handle> blocks() const;
    std::string blockName(Handle block) const;
    // The handle of the BLOCK entity of a block (for its base point, flags and description).
    Handle blockBegin(Handle block) const;
    // The entities of a block in file order, then in the order they were added; erased ones left out.
    std::vector<Handle> entitiesOf(Handle block) const;
    // The block an entity lies in; kNoHandle for a non-entity.
    Handle blockOf(Handle entity) const;
    // Adds an entity at the end of a block. `tags` starts with its "0" type; the handle (5) and,
    // in 2000+ drawings, the owner (330) are set here. Fails on an unknown block.
    // The VERTEX/ATTRIB/SEQEND entities of a POLYLINE or INSERT get fresh handles where theirs are
    // missing or taken, and the entity as owner.
    // `handle` may be one taken with allocateHandle() beforehand (to point at the entity from
    // objects made with it); by default a new one is taken.
    Result<Handle> appendEntity(Handle block, TagList tags, Handle handle = kNoHandle);
    // The bulk path for many new entities with object data: the entity (as appendEntity takes it,
    // without handle or owner), an extension dictionary and one XRECORD under `key` holding
    // `values` (tags as they follow the xrecord's cloning flag), encoded straight into owned blobs.
    // Converts an R12 drawing first; fails on an unknown block.
    Result<Handle> appendEntityWithData(Handle block, const TagList& entity, std::string_view key, const TagList& values);
    // Creates a block (record, BLOCK and ENDBLK). Fails when the name is taken.
    Result<Handle> addBlock(std::string_view name, const Point3& base = {});

    // --- Tables ----------------------------------------------------------------------------
    // Table names as DXF writes them: "LAYER", "LTYPE", "STYLE", "DIMSTYLE", "BLOCK_RECORD"...
    bool hasTable(std::string_view table) const;
    Handle tableHandle(std::string_view table) const;
    std::vector<Handle> records(std::string_view table) const;
    Handle findRecord(std::string_view table, std::string_view name) const;  // case-insensitive
    // Adds a table record: `tags` starts with its "0" type; handle and owner are set here
    // (`handle`: as for appendEntity).
    Result<Handle> addRecord(std::string_view table, TagList tags, Handle handle = kNoHandle);

    // --- Objects section ----------------------------------------------------------------------
    // Adds an object at the end of the OBJECTS section; converts an R12 drawing first.
    Result<Handle> addObject(TagList tags, Handle handle = kNoHandle);
    // The root (named objects) dictionary; kNoHandle in R12 drawings.
    Handle namedObjectsDictionary() const;

    // --- Classes ---------------------------------------------------------------------------
    // Adds the CLASSES entry a new drawing has for `dxfName` when the drawing lacks it: other
    // programs read objects of such types (MULTILEADER, SORTENTSTABLE, WIPEOUT...) only with
    // their entry. Appending an entity or adding an object calls it. Nothing to do without a
    // CLASSES section, for an entry the drawing has, or for a type that is no class.
    void ensureClass(std::string_view dxfName);
    bool hasClass(std::string_view dxfName) const;

    // --- Header ----------------------------------------------------------------------------
    // The value of a header variable with one value tag ($CLAYER, $INSUNITS...).
    std::optional<std::string> headerVariable(std::string_view name) const;
    // Adds or replaces a header entry with one value ($CLAYER 8, $INSUNITS 70, $LTSCALE 40...); a
    // new entry goes at the end of the header. Nothing changes when the entry holds that value
    // already (the same text, or for a number the same number), so an untouched header is saved
    // as the file had it. Recorded for undo. Fails without a HEADER section, for a name that does
    // not start with "$", for $HANDSEED (the database keeps it) and for a value its code cannot hold.
    Result<void> setHeaderVariable(std::string_view name, int code, std::string_view value);

    // --- Undo ------------------------------------------------------------------------------
    UndoJournal& journal() { return journal_; }
    const UndoJournal& journal() const { return journal_; }
    void beginCommand(std::string name) { journal_.begin(std::move(name)); }
    void endCommand() { journal_.end(); }
    bool undo();
    bool redo();
    // For operations that must not be left half done: the changes recorded after `changeMark()`
    // are reverted and forgotten by `rollBack`. Needs recording on (an open command).
    std::size_t changeMark() const { return journal_.changes().size(); }
    void rollBack(std::size_t mark);

    // --- Change notifications -----------------------------------------------------------------
    // Observers are not owned; each is added once (a second add is ignored) and must be removed
    // before it dies. Nothing is done per change while none is registered.
    void addObserver(DatabaseObserver* observer);
    void removeObserver(DatabaseObserver* observer);

    // Bytes held beyond the file: slots, owned blobs, index. For the benchmark.
    std::size_t memoryBeyondFile() const;

private:
    friend class ObjectWriter;
    friend class DatabaseLoader;
    friend class DatabaseWriter;
    friend class R12Converter;

    enum : std::uint8_t { kOwned = 1, kErased = 2, kStructure = 4, kPaperSpace = 8 };
    struct Slot {
        Handle handle = kNoHandle;
        std::uint32_t begin = 0;  // first byte in the file, or arena offset when owned
        std::uint32_t size = 0;   // bytes in the file, or blob bytes when owned
        std::uint32_t container = kNoSlot;  // entities: block index; records: table index
        std::uint16_t type = 0;   // index into types_
        std::uint8_t flags = 0;
        Section section = Section::None;
    };
    struct BlockEntry {
        std::string name;
        std::uint32_t begin = kNoSlot, end = kNoSlot, record = kNoSlot;
        std::uint32_t anchor = kNoSlot;  // new entities are written before this slot
        bool inEntitiesSection = false;  // model space and the active paper space
        bool paper = false;
        std::vector<std::uint32_t> members;
    };
    struct TableEntry {
        std::string name;
        std::uint32_t head = kNoSlot, end = kNoSlot;
        std::vector<std::uint32_t> records;
        // Upper-case record name to slot, as last found: every write open asks for an entity's
        // layer by name. A hit is checked against the record itself, a miss searches again, so
        // the index is never trusted past a rename, an erase or a new record.
        mutable std::unordered_map<std::string, std::uint32_t> byName;
    };

    Database();
    std::uint32_t slotOf(Handle handle) const;
    std::uint16_t internType(std::string_view type);
    std::uint32_t addSlot(Slot slot, std::uint32_t anchor);
    void storeOwned(std::uint32_t slot, const TagList& tags);
    void setState(std::uint32_t slot, UndoJournal::State state);
    UndoJournal::State stateOf(std::uint32_t slot) const;
    void decodeSlot(const Slot& slot, TagList& out) const;
    void openCursor(const Slot& slot, TagCursor& cursor) const;
    void registerSubHandles(std::uint32_t slot, const TagList& tags);
    int blockIndexOf(Handle block) const;
    Handle blockId(int index) const;
    std::uint32_t create(Slot slot, std::uint32_t anchor, TagList& tags);
    std::uint32_t createEncoded(Slot slot, std::uint32_t anchor, std::string_view type, std::string_view blob);
    std::string nameOf(std::uint32_t slot) const;
    int tableIndexOf(std::string_view table) const;
    bool onLockedLayer(const TagList& tags) const;
    bool layerLocked(std::string_view layer) const;
    Result<void> identifySubEntities(TagList& tags, Handle owner);
    void notifyAppended(Handle handle);
    void notifyErased(Handle handle, bool erased);
    void notifyModified(Handle handle);
    void notifyUndone(std::size_t first, std::size_t last, bool undo);
    // Reverts (or replays) changes [first, last), swapping forms at a conversion between them.
    void applyChanges(std::size_t first, std::size_t last, bool undo);
    // Exchanges everything that makes the drawing with `other`, keeping the undo journal, the
    // observers and the other form: the step between an R12 drawing and its conversion.
    void exchangeForm(Database& other);

    std::unique_ptr<dxf::TagFile> file_;
    std::vector<Slot> slots_;
    std::uint32_t fileSlots_ = 0;  // slots [0, fileSlots_) are the file in order
    std::vector<std::string> types_;
    HandleIndex handles_;
    TagArena arena_;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> anchored_;
    std::uint32_t lastAnchor_ = kNoSlot;  // anchored_ lookups repeat: bulk creation adds to one place
    std::vector<std::uint32_t>* lastAnchored_ = nullptr;
    mutable std::unordered_map<std::string, std::string> headerValues_;
    mutable UndoJournal::State headerValuesOf_;  // the header state the map was built from
    std::vector<BlockEntry> blocks_;
    std::vector<TableEntry> tables_;
    int modelSpace_ = -1, paperSpace_ = -1;
    std::uint32_t header_ = kNoSlot;
    std::uint32_t seedBegin_ = kNoSlot, seedEnd_ = kNoSlot;  // bytes of the file's $HANDSEED value tag
    std::uint32_t trailer_ = 0;  // first byte after the file's last tag
    std::uint32_t sectionEnd_[8] = {kNoSlot, kNoSlot, kNoSlot, kNoSlot, kNoSlot, kNoSlot, kNoSlot, kNoSlot};
    std::uint32_t rootDictionary_ = kNoSlot;
    Handle nextHandle_ = 1;  // above kLastHandle when none is left
    Handle fileSeed_ = 1;    // nextHandle_ right after loading
    Handle headerSeed_ = 0;  // $HANDSEED as the file holds it
    Handle minSeed_ = 1;     // one above the highest handle the file holds
    std::unordered_map<Handle, int> blockIds_;
    std::vector<DuplicateHandle> duplicateHandles_;
    bool r12_ = false;
    bool convertedFromR12_ = false;
    UndoJournal journal_;
    std::vector<DatabaseObserver*> observers_;
    // The drawing before a conversion recorded in the journal (to undo it), or after it (to redo it).
    std::unique_ptr<Database> otherForm_;
};

// Case-insensitive comparison of names (ASCII letters), as DXF compares symbol names.
bool sameName(std::string_view a, std::string_view b);
std::string upperName(std::string_view name);

}  // namespace veltarn::db
