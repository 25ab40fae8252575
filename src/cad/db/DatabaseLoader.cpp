// Builds the object index of a drawing from its tags: one slot per object or piece of structure,
// in file order, covering every tag, so that writing the slots back gives the file again.
#include "cad/db/Database.h"
#include "cad/db/GroupCodes.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {

class DatabaseLoader {
public:
    DatabaseLoader(Database& db) : db_(db), file_(*db.file_) {}

    void run() {
        const std::size_t n = file_.size();
        // One slot per object: count them first so that the index is allocated once, exactly.
        std::size_t objects = 0;
        for (const dxf::Tag& tag : file_.tags()) objects += tag.code == gc::kStructure;
        db_.slots_.reserve(objects + 8);
        db_.handles_.reserve(objects + 16);
        std::size_t i = 0;
        while (i < n) {
            if (file_.is(i, gc::kStructure, "SECTION") && i + 1 < n) {
                i = section(i);
            } else {
                structure(i, i + 1, "EOF");
                ++i;
            }
        }
        finish();
    }

private:
    std::string_view typeAt(std::size_t i) const { return dxf::trimSpaces(file_.raw(i)); }

    std::size_t nextZero(std::size_t i) const {
        const std::size_t n = file_.size();
        ++i;
        while (i < n && file_.code(i) != gc::kStructure) ++i;
        return i;
    }

    std::uint32_t structure(std::size_t first, std::size_t last, std::string_view type, Section section = Section::None) {
        Database::Slot slot;
        slot.begin = static_cast<std::uint32_t>(first);
        slot.size = static_cast<std::uint32_t>(last - first);
        slot.flags = Database::kStructure;
        slot.type = db_.internType(type);
        slot.section = section;
        db_.slots_.push_back(slot);
        return static_cast<std::uint32_t>(db_.slots_.size() - 1);
    }

    Handle handleIn(std::size_t first, std::size_t last) const {
        for (std::size_t j = first + 1; j < last && j < first + 4; ++j) {
            int code = file_.code(j);
            if (code == gc::kHandle || code == gc::kDimStyleHandle) return parseHandle(file_.raw(j)).value_or(kNoHandle);
        }
        return kNoHandle;
    }

    std::uint32_t object(std::size_t first, std::size_t last, Section section, std::uint32_t container) {
        Database::Slot slot;
        slot.begin = static_cast<std::uint32_t>(first);
        slot.size = static_cast<std::uint32_t>(last - first);
        slot.type = db_.internType(typeAt(first));
        slot.section = section;
        slot.container = container;
        slot.handle = handleIn(first, last);
        db_.slots_.push_back(slot);
        auto index = static_cast<std::uint32_t>(db_.slots_.size() - 1);
        if (slot.handle != kNoHandle) note(slot.handle, index);
        return index;
    }

    void note(Handle handle, std::uint32_t slot) {
        // A duplicate handle keeps its first object; the later one is still kept and written.
        if (db_.handles_.get(handle) == HandleIndex::kNone) db_.handles_.set(handle, slot);
        if (handle > maxHandle_) maxHandle_ = handle;
    }

    // POLYLINE and INSERT carry their VERTEX/ATTRIB entities and the closing SEQEND with them.
    std::size_t entityEnd(std::size_t first, std::uint32_t slot) {
        std::size_t end = nextZero(first);
        std::string_view type = typeAt(first);
        if (type != "POLYLINE" && type != "INSERT") return end;
        const std::size_t n = file_.size();
        while (end < n) {
            std::string_view next = typeAt(end);
            if (next != "VERTEX" && next != "ATTRIB" && next != "SEQEND") break;
            std::size_t after = nextZero(end);
            if (Handle sub = handleIn(end, after); sub != kNoHandle) note(sub, slot);
            end = after;
            if (next == "SEQEND") break;
        }
        return end;
    }

    bool paperFlag(std::size_t first, std::size_t last) const {
        int markers = 0;
        for (std::size_t j = first + 1; j < last; ++j) {
            int code = file_.code(j);
            if (code == gc::kStructure) break;
            if (code == gc::kSubclass && ++markers > 1) break;
            if (code == gc::kPaperSpace) return file_.integer(j).value_or(0) == 1;
        }
        return false;
    }

    std::size_t section(std::size_t start) {
        std::string name = file_.text(start + 1);
        const std::size_t n = file_.size();
        if (name == "HEADER") {
            std::size_t j = start + 2;
            while (j < n && !file_.is(j, gc::kStructure, "ENDSEC")) {
                if (file_.is(j, gc::kVariableName, "$HANDSEED") && j + 1 < n) {
                    seedTag_ = j + 1;
                    seed_ = parseHandle(file_.raw(j + 1)).value_or(0);
                }
                ++j;
            }
            db_.header_ = structure(start, std::min(j + 1, n), "HEADER", Section::Header);
            return j + 1;
        }
        Section kind = name == "CLASSES"    ? Section::Classes
                       : name == "TABLES"   ? Section::Tables
                       : name == "BLOCKS"   ? Section::Blocks
                       : name == "ENTITIES" ? Section::Entities
                       : name == "OBJECTS"  ? Section::Objects
                                            : Section::Other;
        if (kind == Section::Other) {
            std::size_t j = start + 2;
            while (j < n && !file_.is(j, gc::kStructure, "ENDSEC")) ++j;
            structure(start, std::min(j + 1, n), "SECTION", kind);
            return j + 1;
        }
        structure(start, start + 2, "SECTION", kind);
        std::size_t i = start + 2;
        // Tags before the first object of a section (none in well-formed files) are kept as they are.
        if (i < n && file_.code(i) != gc::kStructure) {
            std::size_t j = nextZero(i - 1);
            structure(i, j, "SECTION", kind);
            i = j;
        }
        int table = -1, block = -1;
        while (i < n) {
            std::string_view type = typeAt(i);
            if (type == "ENDSEC") {
                db_.sectionEnd_[static_cast<int>(kind)] = structure(i, i + 1, "ENDSEC", kind);
                return i + 1;
            }
            if (type == "EOF" || type == "SECTION") return i;  // a malformed file; the loop above goes on
            std::size_t end = nextZero(i);
            switch (kind) {
                case Section::Classes: structure(i, end, type, kind); break;
                case Section::Tables:
                    if (type == "TABLE") {
                        std::uint32_t slot = object(i, end, kind, Database::kNoSlot);
                        Database::TableEntry entry;
                        for (std::size_t j = i + 1; j < end; ++j)
                            if (file_.code(j) == gc::kName) { entry.name = upperName(dxf::trimSpaces(file_.text(j))); break; }
                        entry.head = slot;
                        db_.tables_.push_back(std::move(entry));
                        table = static_cast<int>(db_.tables_.size() - 1);
                    } else if (type == "ENDTAB") {
                        std::uint32_t slot = object(i, end, kind, Database::kNoSlot);
                        if (table >= 0) db_.tables_[static_cast<std::size_t>(table)].end = slot;
                        table = -1;
                    } else {
                        std::uint32_t slot = object(i, end, kind, table < 0 ? Database::kNoSlot : static_cast<std::uint32_t>(table));
                        if (table >= 0) db_.tables_[static_cast<std::size_t>(table)].records.push_back(slot);
                    }
                    break;
                case Section::Blocks:
                    if (type == "BLOCK") {
                        std::uint32_t slot = object(i, end, kind, Database::kNoSlot);
                        Database::BlockEntry entry;
                        for (std::size_t j = i + 1; j < end; ++j)
                            if (file_.code(j) == gc::kName) { entry.name = std::string(dxf::trimSpaces(file_.text(j))); break; }
                        entry.begin = slot;
                        db_.blocks_.push_back(std::move(entry));
                        block = static_cast<int>(db_.blocks_.size() - 1);
                        db_.slots_[slot].container = static_cast<std::uint32_t>(block);
                    } else if (type == "ENDBLK") {
                        std::uint32_t slot = object(i, end, kind, block < 0 ? Database::kNoSlot : static_cast<std::uint32_t>(block));
                        if (block >= 0) {
                            auto& entry = db_.blocks_[static_cast<std::size_t>(block)];
                            entry.end = entry.anchor = slot;
                        }
                        block = -1;
                    } else {
                        auto container = block < 0 ? Database::kNoSlot : static_cast<std::uint32_t>(block);
                        std::uint32_t slot = object(i, end, kind, container);
                        end = entityEnd(i, slot);
                        db_.slots_[slot].size = static_cast<std::uint32_t>(end - i);
                        if (block >= 0) db_.blocks_[static_cast<std::size_t>(block)].members.push_back(slot);
                    }
                    break;
                case Section::Entities: {
                    std::uint32_t slot = object(i, end, kind, Database::kNoSlot);
                    if (paperFlag(i, end)) db_.slots_[slot].flags |= Database::kPaperSpace;
                    end = entityEnd(i, slot);
                    db_.slots_[slot].size = static_cast<std::uint32_t>(end - i);
                    entitySlots_.push_back(slot);
                    break;
                }
                case Section::Objects: {
                    std::uint32_t slot = object(i, end, kind, Database::kNoSlot);
                    if (db_.rootDictionary_ == Database::kNoSlot && type == "DICTIONARY") db_.rootDictionary_ = slot;
                    break;
                }
                default: structure(i, end, type, kind); break;
            }
            i = end;
        }
        return i;
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

    // Slots were tag ranges while the tags were at hand; from here on they are byte ranges, and
    // the tag vector goes (at 8 bytes a tag it was most of the drawing's memory).
    void toByteRanges() {
        std::string_view bytes = file_.bytes();
        auto offset = [&](std::string_view part) { return static_cast<std::uint32_t>(part.data() - bytes.data()); };
        for (std::uint32_t s = 0; s < db_.fileSlots_; ++s) {
            Database::Slot& slot = db_.slots_[s];
            if (slot.size == 0) {
                slot.begin = 0;
                continue;
            }
            std::string_view span = file_.span(slot.begin, slot.begin + slot.size);
            slot.begin = offset(span);
            slot.size = static_cast<std::uint32_t>(span.size());
        }
        if (seedTag_ < file_.size()) {
            std::string_view span = file_.span(seedTag_, seedTag_ + 1);
            db_.seedBegin_ = offset(span);
            db_.seedEnd_ = offset(span) + static_cast<std::uint32_t>(span.size());
        }
        db_.trailer_ = static_cast<std::uint32_t>(bytes.size() - file_.trailer().size());
        db_.file_->releaseTags();
    }

    void finish() {
        db_.fileSlots_ = static_cast<std::uint32_t>(db_.slots_.size());
        toByteRanges();
        db_.r12_ = file_.version() <= std::string("AC1009");
        db_.modelSpace_ = spaceBlock("*Model_Space", "$MODEL_SPACE", false);
        db_.paperSpace_ = spaceBlock("*Paper_Space", "$PAPER_SPACE", true);
        std::uint32_t entitiesEnd = db_.sectionEnd_[static_cast<int>(Section::Entities)];
        for (int b : {db_.modelSpace_, db_.paperSpace_}) {
            auto& entry = db_.blocks_[static_cast<std::size_t>(b)];
            entry.members.clear();  // a space's entities live in the ENTITIES section
            entry.anchor = entitiesEnd;
        }
        for (std::uint32_t slot : entitySlots_) {
            bool paper = db_.slots_[slot].flags & Database::kPaperSpace;
            int b = paper ? db_.paperSpace_ : db_.modelSpace_;
            db_.slots_[slot].container = static_cast<std::uint32_t>(b);
            db_.blocks_[static_cast<std::size_t>(b)].members.push_back(slot);
        }
        int records = db_.tableIndexOf("BLOCK_RECORD");
        if (records >= 0) {
            for (std::uint32_t slot : db_.tables_[static_cast<std::size_t>(records)].records) {
                TagList tags;
                db_.decodeSlot(db_.slots_[slot], tags);
                auto name = tags.text(gc::kName);
                if (!name) continue;
                for (auto& entry : db_.blocks_)
                    if (entry.record == Database::kNoSlot && sameName(entry.name, *name)) { entry.record = slot; break; }
            }
        }
        db_.nextHandle_ = std::max<Handle>(seed_, maxHandle_ + 1);
        db_.headerSeed_ = seed_;
        db_.minSeed_ = maxHandle_ + 1;
        // Objects without a handle (R12 files written without handles, a space that has no BLOCK)
        // get one in memory only.
        for (std::uint32_t s = 0; s < db_.slots_.size(); ++s) {
            auto& slot = db_.slots_[s];
            if (slot.handle == kNoHandle && !(slot.flags & Database::kStructure)) {
                slot.handle = db_.nextHandle_++;
                db_.handles_.set(slot.handle, s);
            }
        }
        db_.fileSeed_ = db_.nextHandle_;
        for (std::size_t b = 0; b < db_.blocks_.size(); ++b) db_.blockIds_[db_.blockId(static_cast<int>(b))] = static_cast<int>(b);
    }

    Database& db_;
    const dxf::TagFile& file_;
    std::vector<std::uint32_t> entitySlots_;
    std::size_t seedTag_ = static_cast<std::size_t>(-1);  // the tag holding the $HANDSEED value
    Handle maxHandle_ = 0;
    Handle seed_ = 0;
};

void loadIndex(Database& db) { DatabaseLoader(db).run(); }

}  // namespace veltarn::db
