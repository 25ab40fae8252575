// Builds the object index of a drawing while its tags are scanned: one slot per object or piece of
// structure, in file order, covering every tag, so that writing the slots back gives the file
// again. Tags come a window at a time and are not kept, so loading holds the file's bytes and the
// index, never a vector of every tag.
#include "cad/db/Database.h"
#include "cad/db/GroupCodes.h"
#include "cad/dxf/NumberText.h"

#include <array>

namespace veltarn::db {

class DatabaseLoader final : public dxf::TagSink {
public:
    explicit DatabaseLoader(Database& db) : db_(db) {}

    void take(const dxf::TagFile& file, std::span<const dxf::ScannedTag> tags) override {
        file_ = &file;
        const dxf::ScannedTag* tag = tags.data();
        const dxf::ScannedTag* const end = tag + tags.size();
        while (tag < end) {
            // Most tags are values no slot looks at: only code-0 tags open and close slots.
            if (!watching_)
                while (tag < end && tag->code != gc::kStructure) ++tag;
            if (tag == end) break;
            step(*tag++);
            watching_ = watching();
        }
        end_ = tags.back().end;
    }

    // After the last tag of a file that read well: closes what is open, then builds what needs
    // the whole index (spaces, block records, handles for objects without one).
    Result<void> finish(dxf::TagFile file) {
        file_ = &file;  // the scanner's was another object
        close(end_);
        if (place_ == Place::SectionName) structure(sectionStart_, "EOF", Section::None, end_);  // a SECTION as the last tag
        db_.file_ = std::make_unique<dxf::TagFile>(std::move(file));
        file_ = nullptr;
        db_.fileSlots_ = static_cast<std::uint32_t>(db_.slots_.size());
        db_.trailer_ = static_cast<std::uint32_t>(db_.file_->bytes().size() - db_.file_->trailer().size());
        db_.r12_ = db_.file_->version() <= std::string("AC1009");
        placeSpaces();
        nameBlockRecords();
        // New handles go on from $HANDSEED only when it is above every handle in use and not
        // exhausted; else (a damaged seed, or FFFFFFFFFFFFFFFF) from the largest handle in use.
        const Handle aboveAll = std::min(maxHandle_, kLastHandle) + 1;
        db_.nextHandle_ = seed_ > maxHandle_ && seed_ <= kLastHandle ? seed_ : aboveAll;
        db_.headerSeed_ = seed_;
        db_.minSeed_ = aboveAll;
        if (auto renumbered = renumberDuplicates(); !renumbered) return renumbered;
        // Renumbered objects are saved under their new handles: the saved seed must be above them.
        if (!db_.duplicateHandles_.empty()) db_.minSeed_ = std::max(db_.minSeed_, db_.nextHandle_);
        // Objects without a handle (R12 files written without handles, ENDTAB, a space that has no
        // BLOCK) get one in memory only.
        for (std::uint32_t s = 0; s < db_.slots_.size(); ++s) {
            auto& slot = db_.slots_[s];
            if (slot.handle != kNoHandle || (slot.flags & Database::kStructure)) continue;
            auto handle = freeHandle();
            if (!handle) return handle.error();
            slot.handle = *handle;
            db_.handles_.set(slot.handle, s);
        }
        db_.fileSeed_ = db_.nextHandle_;
        for (std::size_t b = 0; b < db_.blocks_.size(); ++b) db_.blockIds_[db_.blockId(static_cast<int>(b))] = static_cast<int>(b);
        return {};
    }

private:
    // A handle the file gave an object that an earlier object has.
    struct Duplicate {
        std::uint32_t slot;
        std::uint32_t part;   // 0: the object; n: its n-th VERTEX, ATTRIB or SEQEND
        std::uint32_t start;  // first byte of the handle's tag
        Handle handle;
        std::string type;
    };

    // A handle for an object read without a usable one: a new one, or once none is left a free
    // one from the top (the object must be told apart; nothing new can take those).
    Result<Handle> freeHandle() {
        if (auto allocated = db_.allocateHandle()) return allocated;
        while (fromTop_ != kNoHandle && db_.handles_.get(fromTop_) != HandleIndex::kNone) --fromTop_;
        if (fromTop_ == kNoHandle) return dxf::makeError(db_.name() + ": every handle is in use");
        return fromTop_;
    }

    // Objects whose handle an earlier object has get a new one (the earlier object keeps it, and
    // what points at the handle points at it): their tags, with the new handle, become owned so
    // that the drawing is saved without the duplicate. Each is kept as a finding for the user.
    Result<void> renumberDuplicates() {
        const std::string_view bytes = db_.file_->bytes();
        const bool ascii = db_.file_->form() == dxf::FileForm::Ascii;
        std::size_t line = 1, counted = 0;  // lines before byte `counted`
        for (const Duplicate& found : duplicates_) {
            auto fresh = freeHandle();
            if (!fresh) return fresh.error();
            Database::Slot& slot = db_.slots_[found.slot];
            TagList tags;
            db_.decodeSlot(slot, tags);
            std::size_t at = 0;  // the part's code-0 tag; its handle is among the three tags after it
            for (std::uint32_t p = 0; p < found.part && at != TagList::npos; ++p) at = tags.find(gc::kStructure, at + 1);
            for (std::size_t i = at + 1; at != TagList::npos && i < std::min(at + 4, tags.size()); ++i)
                if ((tags[i].code == gc::kHandle || tags[i].code == gc::kDimStyleHandle) && parseHandle(tags[i].value) == found.handle) {
                    tags[i].value = formatHandle(*fresh);
                    break;
                }
            db_.storeOwned(found.slot, tags);
            if (found.part == 0) slot.handle = *fresh;
            db_.handles_.set(*fresh, found.slot);

            std::string where = db_.name() + ":";
            if (ascii) {
                for (; counted < found.start; ++counted) line += bytes[counted] == '\n';
                where += std::to_string(line);
            } else {
                where += "@" + std::to_string(found.start);
            }
            db_.duplicateHandles_.push_back({found.handle, *fresh, found.type, std::move(where)});
        }
        return {};
    }

    // Most drawings take 100 to 300 bytes an object: room for one every 128 bytes is enough for them.
    static constexpr std::size_t kBytesPerSlotGuess = 128;

    enum class Place : std::uint8_t {
        Outside,      // between sections: each tag is a slot of its own
        SectionName,  // after "0 SECTION": the name decides what follows
        Whole,        // HEADER and unknown sections: one slot to their ENDSEC
        Body,         // a known section: its objects, each from its code-0 tag to the next one
    };
    // What the open slot still looks for in the tags that follow its code-0 tag.
    enum class Search : std::uint8_t { None, TableName, BlockName };

    std::string_view raw(const dxf::ScannedTag& tag) const { return file_->bytes().substr(tag.value, tag.length); }
    bool is(const dxf::ScannedTag& tag, int code, std::string_view word) const {
        return tag.code == code && dxf::trimSpaces(raw(tag)) == word;
    }

    // Database::internType, remembered: a drawing names a few dozen types over and over.
    std::uint16_t typeIndex(std::string_view type) {
        std::uint16_t& known = knownTypes_[(type.size() * 31 + (type.empty() ? 0 : type.front() + type.back() * 7)) % knownTypes_.size()];
        if (known == 0 || db_.types_[known - 1u] != type) known = static_cast<std::uint16_t>(db_.internType(type) + 1);
        return static_cast<std::uint16_t>(known - 1);
    }

    std::uint32_t push(Database::Slot slot) {
        if (db_.slots_.size() == db_.slots_.capacity()) makeRoom();
        db_.slots_.push_back(slot);
        return static_cast<std::uint32_t>(db_.slots_.size() - 1);
    }

    // Sizes the index for the whole file: growing it as a vector does would copy it several times,
    // and hold it twice at the last copy, late in the file when it is largest. Room is reserved
    // from the file's size, then, should the drawing be denser than most, from what the part read
    // so far holds. Room never filled is never touched: it takes address space, not memory.
    void makeRoom() {
        const std::size_t used = db_.slots_.size(), bytes = file_->bytes().size();
        std::size_t room = bytes / kBytesPerSlotGuess + 64;
        if (used > 0) {
            // An eighth more than the projection, for an end that is denser than the rest.
            double projected = static_cast<double>(used) * static_cast<double>(bytes) / static_cast<double>(std::max<std::uint32_t>(end_, 1));
            room = std::max(static_cast<std::size_t>(projected * 1.125), used + used / 4);
        }
        db_.slots_.reserve(room);
        db_.handles_.reserve(room);
    }

    // A slot of structure from byte `begin`; sized by close(), or at once when `end` is given.
    std::uint32_t structure(std::uint32_t begin, std::string_view type, Section section, std::uint32_t end = 0) {
        Database::Slot slot;
        slot.begin = begin;
        slot.size = end ? end - begin : 0;
        slot.flags = Database::kStructure;
        slot.type = typeIndex(type);
        slot.section = section;
        std::uint32_t index = push(slot);
        if (!end) open_ = index;
        return index;
    }

    std::uint32_t object(const dxf::ScannedTag& tag, std::string_view type, std::uint32_t container) {
        Database::Slot slot;
        slot.begin = tag.start;
        slot.type = typeIndex(type);
        slot.section = section_;
        slot.container = container;
        open_ = push(slot);
        handleSearch_ = 3;
        part_ = 0;
        return open_;
    }

    void note(Handle handle, std::uint32_t slot, const dxf::ScannedTag& tag) {
        // A duplicate handle keeps its first object; the later one gets a new handle in finish().
        if (db_.handles_.get(handle) == HandleIndex::kNone) db_.handles_.set(handle, slot);
        else duplicates_.push_back({slot, part_, tag.start, handle, subEntity_ ? partType_ : db_.types_[db_.slots_[slot].type]});
        if (handle > maxHandle_) maxHandle_ = handle;
    }

    // Ends the open slot where byte `end` starts.
    void close(std::uint32_t end) {
        if (open_ != Database::kNoSlot) db_.slots_[open_].size = end - db_.slots_[open_].begin;
        open_ = Database::kNoSlot;
        handleSearch_ = 0;
        paperSearch_ = false;
        search_ = Search::None;
        chain_ = false;
    }

    // True while tags of codes other than 0 matter: a search of the open slot, the header's
    // $HANDSEED, a section's first tags, tags outside sections.
    bool watching() const {
        switch (place_) {
            case Place::Body: return handleSearch_ > 0 || paperSearch_ || search_ != Search::None || open_ == Database::kNoSlot;
            case Place::Whole: return section_ == Section::Header;
            default: return true;
        }
    }

    void step(const dxf::ScannedTag& tag) {
        switch (place_) {
            case Place::Outside:
                if (is(tag, gc::kStructure, "SECTION")) {
                    place_ = Place::SectionName;
                    sectionStart_ = tag.start;
                } else {
                    structure(tag.start, "EOF", Section::None, tag.end);
                }
                return;
            case Place::SectionName: return sectionName(tag);
            case Place::Whole: return whole(tag);
            case Place::Body:
                if (tag.code == gc::kStructure) return objectStart(tag);
                if (open_ == Database::kNoSlot) {
                    // Tags before the first object of a section (none in well-formed files) are kept as they are.
                    structure(tag.start, "SECTION", section_);
                    return;
                }
                return objectTag(tag);
        }
    }

    void sectionName(const dxf::ScannedTag& tag) {
        std::string name = file_->textOf(tag.code, raw(tag));
        section_ = name == "HEADER"     ? Section::Header
                   : name == "CLASSES"  ? Section::Classes
                   : name == "TABLES"   ? Section::Tables
                   : name == "BLOCKS"   ? Section::Blocks
                   : name == "ENTITIES" ? Section::Entities
                   : name == "OBJECTS"  ? Section::Objects
                                        : Section::Other;
        if (section_ == Section::Header || section_ == Section::Other) {
            std::uint32_t slot = structure(sectionStart_, section_ == Section::Header ? "HEADER" : "SECTION", section_);
            if (section_ == Section::Header) db_.header_ = slot;
            afterHandseed_ = false;
            place_ = Place::Whole;
            return;
        }
        structure(sectionStart_, "SECTION", section_, tag.end);
        table_ = block_ = -1;
        place_ = Place::Body;
    }

    // A section kept as one slot to its ENDSEC (or the end of the file), whatever it holds.
    void whole(const dxf::ScannedTag& tag) {
        if (section_ == Section::Header) {
            if (afterHandseed_) {
                db_.seedBegin_ = tag.start;
                db_.seedEnd_ = tag.end;
                seed_ = parseHandle(raw(tag)).value_or(0);
            }
            afterHandseed_ = is(tag, gc::kVariableName, "$HANDSEED");
        }
        if (is(tag, gc::kStructure, "ENDSEC")) {
            close(tag.end);
            place_ = Place::Outside;
        }
    }

    // A code-0 tag in a known section: the next object, a VERTEX/ATTRIB/SEQEND of the open one,
    // or the section's end.
    void objectStart(const dxf::ScannedTag& tag) {
        std::string_view type = dxf::trimSpaces(raw(tag));
        // POLYLINE and INSERT carry their VERTEX/ATTRIB entities and the closing SEQEND with them.
        if (chain_ && (type == "VERTEX" || type == "ATTRIB" || type == "SEQEND")) {
            handleSearch_ = 3;
            subEntity_ = true;
            ++part_;
            partType_ = type;
            paperSearch_ = false;
            if (type == "SEQEND") chain_ = false;
            return;
        }
        close(tag.start);
        if (type == "ENDSEC") {
            db_.sectionEnd_[static_cast<int>(section_)] = structure(tag.start, "ENDSEC", section_, tag.end);
            place_ = Place::Outside;
            return;
        }
        if (type == "EOF" || type == "SECTION") {  // a malformed file: the tag is read as outside sections
            place_ = Place::Outside;
            return step(tag);
        }
        subEntity_ = false;
        switch (section_) {
            case Section::Classes: structure(tag.start, type, section_); break;
            case Section::Tables:
                if (type == "TABLE") {
                    std::uint32_t slot = object(tag, type, Database::kNoSlot);
                    Database::TableEntry entry;
                    entry.head = slot;
                    db_.tables_.push_back(std::move(entry));
                    table_ = static_cast<int>(db_.tables_.size() - 1);
                    search_ = Search::TableName;
                } else if (type == "ENDTAB") {
                    std::uint32_t slot = object(tag, type, Database::kNoSlot);
                    if (table_ >= 0) db_.tables_[static_cast<std::size_t>(table_)].end = slot;
                    table_ = -1;
                } else {
                    std::uint32_t slot = object(tag, type, table_ < 0 ? Database::kNoSlot : static_cast<std::uint32_t>(table_));
                    if (table_ >= 0) db_.tables_[static_cast<std::size_t>(table_)].records.push_back(slot);
                }
                break;
            case Section::Blocks:
                if (type == "BLOCK") {
                    std::uint32_t slot = object(tag, type, Database::kNoSlot);
                    Database::BlockEntry entry;
                    entry.begin = slot;
                    db_.blocks_.push_back(std::move(entry));
                    block_ = static_cast<int>(db_.blocks_.size() - 1);
                    db_.slots_[slot].container = static_cast<std::uint32_t>(block_);
                    search_ = Search::BlockName;
                } else if (type == "ENDBLK") {
                    std::uint32_t slot = object(tag, type, block_ < 0 ? Database::kNoSlot : static_cast<std::uint32_t>(block_));
                    if (block_ >= 0) {
                        auto& entry = db_.blocks_[static_cast<std::size_t>(block_)];
                        entry.end = entry.anchor = slot;
                    }
                    block_ = -1;
                } else {
                    std::uint32_t slot = object(tag, type, block_ < 0 ? Database::kNoSlot : static_cast<std::uint32_t>(block_));
                    chain_ = type == "POLYLINE" || type == "INSERT";
                    if (block_ >= 0) db_.blocks_[static_cast<std::size_t>(block_)].members.push_back(slot);
                }
                break;
            case Section::Entities:
                // Its space is known once every block is: finish() places it.
                object(tag, type, Database::kNoSlot);
                chain_ = type == "POLYLINE" || type == "INSERT";
                paperSearch_ = true;
                markers_ = 0;
                break;
            case Section::Objects: {
                std::uint32_t slot = object(tag, type, Database::kNoSlot);
                if (db_.rootDictionary_ == Database::kNoSlot && type == "DICTIONARY") db_.rootDictionary_ = slot;
                break;
            }
            default: structure(tag.start, type, section_); break;
        }
    }

    // A tag after an object's code-0 tag: its handle, its space, its name.
    void objectTag(const dxf::ScannedTag& tag) {
        if (handleSearch_ > 0) {
            --handleSearch_;
            if (tag.code == gc::kHandle || tag.code == gc::kDimStyleHandle) {
                handleSearch_ = 0;
                Handle handle = parseHandle(raw(tag)).value_or(kNoHandle);
                if (!subEntity_) db_.slots_[open_].handle = handle;
                if (handle != kNoHandle) note(handle, open_, tag);
            }
        }
        if (paperSearch_) {
            if (tag.code == gc::kSubclass && ++markers_ > 1) {
                paperSearch_ = false;
            } else if (tag.code == gc::kPaperSpace) {
                paperSearch_ = false;
                if (file_->integerOf(tag.code, raw(tag)).value_or(0) == 1) db_.slots_[open_].flags |= Database::kPaperSpace;
            }
        }
        if (search_ != Search::None && tag.code == gc::kName) {
            std::string name(dxf::trimSpaces(file_->textOf(tag.code, raw(tag))));
            if (search_ == Search::TableName)
                db_.tables_.back().name = upperName(name);
            else
                db_.blocks_.back().name = std::move(name);
            search_ = Search::None;
        }
    }

    int spaceBlock(std::string_view modern, std::string_view old, bool paper) {
        for (std::size_t b = 0; b < db_.blocks_.size(); ++b)
            if (sameName(db_.blocks_[b].name, modern) || sameName(db_.blocks_[b].name, old)) {
                db_.blocks_[b].inEntitiesSection = true;
                db_.blocks_[b].paper = paper;
                return static_cast<int>(b);
            }
        // No BLOCK for this space (minimal R12 files): an empty slot outside the file order stands in.
        Database::Slot slot;
        slot.type = db_.internType("BLOCK");
        slot.section = Section::Blocks;
        slot.container = static_cast<std::uint32_t>(db_.blocks_.size());
        db_.slots_.push_back(slot);
        Database::BlockEntry entry;
        entry.begin = static_cast<std::uint32_t>(db_.slots_.size() - 1);
        entry.name = std::string(db_.r12_ ? old : modern);
        entry.inEntitiesSection = true;
        entry.paper = paper;
        db_.blocks_.push_back(std::move(entry));
        return static_cast<int>(db_.blocks_.size() - 1);
    }

    // The ENTITIES section holds model space and the active paper space, each entity by its flag.
    void placeSpaces() {
        db_.modelSpace_ = spaceBlock("*Model_Space", "$MODEL_SPACE", false);
        db_.paperSpace_ = spaceBlock("*Paper_Space", "$PAPER_SPACE", true);
        std::uint32_t entitiesEnd = db_.sectionEnd_[static_cast<int>(Section::Entities)];
        auto& model = db_.blocks_[static_cast<std::size_t>(db_.modelSpace_)];
        auto& paper = db_.blocks_[static_cast<std::size_t>(db_.paperSpace_)];
        std::size_t inPaper = 0, entities = 0;
        for (std::uint32_t s = 0; s < db_.fileSlots_; ++s) {
            const Database::Slot& slot = db_.slots_[s];
            if (slot.section != Section::Entities || (slot.flags & Database::kStructure)) continue;
            ++entities;
            inPaper += (slot.flags & Database::kPaperSpace) != 0;
        }
        for (auto* space : {&model, &paper}) {
            space->members.clear();  // a space's entities live in the ENTITIES section
            space->anchor = entitiesEnd;
        }
        // Sized exactly: a drawing is mostly entities of one space.
        model.members.reserve(entities - inPaper);
        paper.members.reserve(inPaper);
        for (std::uint32_t s = 0; s < db_.fileSlots_; ++s) {
            Database::Slot& slot = db_.slots_[s];
            if (slot.section != Section::Entities || (slot.flags & Database::kStructure)) continue;
            bool inPaperSpace = slot.flags & Database::kPaperSpace;
            slot.container = static_cast<std::uint32_t>(inPaperSpace ? db_.paperSpace_ : db_.modelSpace_);
            (inPaperSpace ? paper : model).members.push_back(s);
        }
    }

    void nameBlockRecords() {
        int records = db_.tableIndexOf("BLOCK_RECORD");
        if (records < 0) return;
        for (std::uint32_t slot : db_.tables_[static_cast<std::size_t>(records)].records) {
            TagList tags;
            db_.decodeSlot(db_.slots_[slot], tags);
            auto name = tags.text(gc::kName);
            if (!name) continue;
            for (auto& entry : db_.blocks_)
                if (entry.record == Database::kNoSlot && sameName(entry.name, *name)) { entry.record = slot; break; }
        }
    }

    Database& db_;
    const dxf::TagFile* file_ = nullptr;  // the file being scanned, while it is
    Place place_ = Place::Outside;
    Section section_ = Section::None;
    std::uint32_t sectionStart_ = 0;  // first byte of the open section's "0 SECTION"
    std::uint32_t end_ = 0;           // one past the last tag taken
    bool watching_ = true;            // watching(), as of the last tag stepped
    std::uint32_t open_ = Database::kNoSlot;  // the slot the tags belong to, until the next code-0 tag
    int table_ = -1, block_ = -1;     // the open TABLE and BLOCK
    int handleSearch_ = 0;            // tags after a code-0 tag that may still hold its handle
    bool subEntity_ = false;          // the handle found is a VERTEX/ATTRIB/SEQEND's
    bool chain_ = false;              // a POLYLINE or INSERT that may go on with VERTEX/ATTRIB/SEQEND
    bool paperSearch_ = false;        // an entity whose paper-space flag may still come
    int markers_ = 0;                 // subclass markers seen by the paper-space search
    Search search_ = Search::None;
    bool afterHandseed_ = false;      // the last header tag was "9 $HANDSEED"
    std::uint32_t part_ = 0;          // the open object's VERTEX/ATTRIB/SEQEND being read, 0 for itself
    std::string partType_;            // its type
    std::vector<Duplicate> duplicates_;
    Handle fromTop_ = kLastHandle + 1;  // handles from here up were looked at by freeHandle()
    Handle maxHandle_ = 0;
    Handle seed_ = 0;
    std::array<std::uint16_t, 64> knownTypes_{};  // type index + 1 by a hash of the type, 0 when none
};

Result<void> loadDrawing(Database& db, const std::filesystem::path& path) {
    DatabaseLoader loader(db);
    auto file = dxf::TagFile::load(path, loader);
    if (!file) return file.error();
    return loader.finish(std::move(file).value());
}

Result<void> parseDrawing(Database& db, std::string bytes, std::string name) {
    DatabaseLoader loader(db);
    auto file = dxf::TagFile::parse(std::move(bytes), std::move(name), loader);
    if (!file) return file.error();
    return loader.finish(std::move(file).value());
}

}  // namespace veltarn::db
