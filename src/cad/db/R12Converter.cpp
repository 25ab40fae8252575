#include "cad/db/R12Converter.h"

#include "cad/db/GroupCodes.h"
#include "cad/db/R12Entity.h"
#include "cad/dxf/NumberText.h"
#include "cad/dxf/TagStream.h"
#include "cad/dxf/TagWriter.h"

#include <unordered_map>
#include <unordered_set>

namespace veltarn::db {

// Writes the 2018 drawing as tags, taking what a new drawing has (classes, default records, the
// objects section) from the built-in new drawing with its handles moved above the R12 ones, then
// reads the result back as a drawing.
class R12Converter {
public:
    explicit R12Converter(const Database& r12) : old_(r12), new_(Database::createNew()), next_(r12.handleSeed()) {}

    Result<Database> run() {
        mapDefaults();
        TagList body;
        copySection(new_.file(), "CLASSES", body);
        tables(body);
        blocks(body);
        entities(body);
        objects(body);

        dxf::WriteFormat format;
        format.form = old_.file().form();
        format.version = "AC1032";
        format.lineEnd = std::string(old_.file().lineEnd());
        dxf::StringSink sink;
        dxf::TagWriter writer(sink, format);
        writer.begin();
        TagList head;
        header(head);  // last: the seed is known once everything has its handle
        for (const TagList* part : {&head, &body})
            for (const TagValue& tag : *part) writer.write(tag.code, tag.value);
        writer.write(gc::kStructure, "EOF");
        if (auto status = writer.status(); !status) return dxf::makeError(old_.name() + ": cannot convert to 2018: " + status.message());
        auto converted = Database::parse(sink.take(), old_.name());
        if (!converted) return dxf::makeError(old_.name() + ": the drawing converted to 2018 does not read back: " + converted.message());
        return converted;
    }

private:
    static constexpr const char* kTables[] = {"VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD"};

    static std::string_view recordMarker(std::string_view table) {
        if (table == "VPORT") return "AcDbViewportTableRecord";
        if (table == "LTYPE") return "AcDbLinetypeTableRecord";
        if (table == "LAYER") return "AcDbLayerTableRecord";
        if (table == "STYLE") return "AcDbTextStyleTableRecord";
        if (table == "VIEW") return "AcDbViewTableRecord";
        if (table == "UCS") return "AcDbUCSTableRecord";
        if (table == "APPID") return "AcDbRegAppTableRecord";
        if (table == "DIMSTYLE") return "AcDbDimStyleTableRecord";
        if (table == "BLOCK_RECORD") return "AcDbBlockTableRecord";
        return {};
    }

    static bool isPointer(int code) { return gc::isHandleReference(code); }

    Handle fresh() { return next_++; }

    // The new drawing's objects that the R12 drawing has under the same name become the R12 ones.
    void mapDefaults() {
        for (const char* table : kTables) {
            if (Handle mine = old_.tableHandle(table); mine != kNoHandle) map_[new_.tableHandle(table)] = mine;
            if (std::string_view(table) == "BLOCK_RECORD") continue;
            for (Handle record : new_.records(table))
                if (Handle mine = old_.findRecord(table, recordName(new_, record)); mine != kNoHandle) {
                    map_[record] = mine;
                    matched_.insert(record);
                }
        }
        map_[new_.modelSpace()] = old_.modelSpace();
        map_[new_.paperSpace()] = old_.paperSpace();
    }

    static std::string recordName(const Database& db, Handle record) {
        TagList tags = db.tags(record);
        auto name = tags.text(gc::kName);
        return name ? std::string(dxf::trimSpaces(*name)) : std::string();
    }

    // The new drawing's tags with their handles and pointers moved into the converted drawing.
    TagList moved(TagList tags) {
        for (std::size_t i = 1; i < tags.size(); ++i) {
            TagValue& tag = tags[i];
            if (tag.code != gc::kHandle && tag.code != gc::kDimStyleHandle && !isPointer(tag.code)) continue;
            auto handle = parseHandle(tag.value);
            if (!handle || *handle == kNoHandle) continue;
            auto [it, added] = map_.try_emplace(*handle, kNoHandle);
            if (added) it->second = fresh();
            tag.value = formatHandle(it->second);
        }
        return tags;
    }

    void copySection(const dxf::TagFile& file, std::string_view name, TagList& out) {
        bool inSection = false, named = false;
        for (dxf::TagStream tags(file, 0, file.bytes().size()); tags.next();) {
            std::string_view value = dxf::trimSpaces(tags.raw());
            if (!inSection) {
                if (named && tags.code() == gc::kName && value == name) {
                    inSection = true;
                    out.add(gc::kStructure, "SECTION");
                } else {
                    named = tags.code() == gc::kStructure && value == "SECTION";
                    continue;
                }
            }
            out.add(tags.code(), tags.text());
            if (tags.code() == gc::kStructure && value == "ENDSEC") return;
        }
    }

    // The R12 header without what 2018 files must not carry, with the version and seed they must.
    void header(TagList& out) {
        out.add(gc::kStructure, "SECTION");
        out.add(gc::kName, "HEADER");
        out.add(gc::kVariableName, "$ACADVER");
        out.add(1, "AC1032");
        if (old_.header_ != Database::kNoSlot) {
            TagList held;
            old_.decodeSlot(old_.slots_[old_.header_], held);
            bool skip = false;
            for (std::size_t i = 0; i < held.size(); ++i) {
                int code = held[i].code;
                if (code == gc::kStructure || (i == 1 && code == gc::kName)) continue;
                if (code == gc::kVariableName) {
                    std::string_view name = dxf::trimSpaces(held[i].value);
                    skip = name == "$ACADVER" || name == "$HANDSEED" || name == "$HANDLING";
                }
                if (!skip) out.add(code, held[i].value);
            }
        }
        out.add(gc::kVariableName, "$HANDSEED");
        out.add(gc::kHandle, formatHandle(next_));
        out.add(gc::kStructure, "ENDSEC");
    }

    void tables(TagList& out) {
        out.add(gc::kStructure, "SECTION");
        out.add(gc::kName, "TABLES");
        for (const char* table : kTables) this->table(table, out);
        // Tables R12 readers kept that 2018 does not list: carried over as they are.
        for (const auto& entry : old_.tables_) {
            bool listed = false;
            for (const char* table : kTables) listed = listed || sameName(entry.name, table);
            if (!listed) this->table(entry.name, out);
        }
        out.add(gc::kStructure, "ENDSEC");
    }

    void table(std::string_view name, TagList& out) {
        std::vector<TagList> records;
        if (name == "BLOCK_RECORD") {
            blockRecords(records);
        } else {
            for (Handle record : old_.records(name)) records.push_back(oldRecord(name, record));
            for (Handle record : new_.records(name))
                if (!matched_.contains(record)) records.push_back(moved(new_.tags(record)));
        }
        Handle theirs = new_.tableHandle(name);
        TagList head;
        if (theirs != kNoHandle) {
            head = moved(new_.tags(theirs));
        } else {
            Handle mine = old_.tableHandle(name);
            head = {{0, "TABLE"}, {gc::kName, std::string(name)}, {gc::kHandle, formatHandle(mine != kNoHandle ? mine : fresh())},
                    {gc::kSoftPointer, "0"}, {gc::kSubclass, "AcDbSymbolTable"}, {gc::kFlags, "0"}};
        }
        std::size_t count = head.find(gc::kFlags);
        if (count != TagList::npos) head[count].value = std::to_string(records.size());
        for (const TagValue& tag : head) out.add(tag.code, tag.value);
        Handle owner = parseHandle(head.text(gc::kHandle).value_or("0")).value_or(kNoHandle);
        for (TagList& record : records) {
            std::size_t at = record.find(gc::kSoftPointer);
            if (at != TagList::npos) record[at].value = formatHandle(owner);
            for (const TagValue& tag : record) out.add(tag.code, tag.value);
        }
        out.add(gc::kStructure, "ENDTAB");
    }

    // An R12 record with its handle, an owner (set by `table`) and its markers, then its values.
    TagList oldRecord(std::string_view table, Handle record) {
        TagList tags = old_.tags(record);
        int handleCode = table == "DIMSTYLE" ? gc::kDimStyleHandle : gc::kHandle;
        TagList out{{0, std::string(tags.type())}, {static_cast<std::int16_t>(handleCode), formatHandle(record)}, {gc::kSoftPointer, "0"},
                    {gc::kSubclass, "AcDbSymbolTableRecord"}};
        if (std::string_view marker = recordMarker(table); !marker.empty()) out.add(gc::kSubclass, std::string(marker));
        bool handleSeen = false;
        for (std::size_t i = 1; i < tags.size(); ++i) {
            if (tags[i].code == handleCode && !handleSeen) {
                handleSeen = true;
                continue;
            }
            out.add(tags[i].code, tags[i].value);
        }
        return out;
    }

    // Model space and paper space first, then the other blocks in the order R12 has them.
    std::vector<Handle> blockOrder() const {
        std::vector<Handle> order{old_.modelSpace(), old_.paperSpace()};
        for (Handle block : old_.blocks())
            if (block != order[0] && block != order[1]) order.push_back(block);
        return order;
    }

    static bool isSpace(std::size_t index) { return index < 2; }

    void blockRecords(std::vector<TagList>& records) {
        std::vector<Handle> order = blockOrder();
        for (std::size_t b = 0; b < order.size(); ++b) {
            if (isSpace(b)) {
                records.push_back(moved(new_.tags(b == 0 ? new_.modelSpace() : new_.paperSpace())));
                continue;
            }
            records.push_back({{0, "BLOCK_RECORD"}, {gc::kHandle, formatHandle(order[b])}, {gc::kSoftPointer, "0"},
                               {gc::kSubclass, "AcDbSymbolTableRecord"}, {gc::kSubclass, "AcDbBlockTableRecord"},
                               {gc::kName, old_.blockName(order[b])}, {gc::kFlags, "0"}, {280, "1"}, {281, "0"}});
        }
    }

    // A sub-entity (VERTEX, ATTRIB, SEQEND) keeps its handle unless it lacks one or another object has it.
    Handle subHandle(Handle own) {
        bool taken = own == kNoHandle || used_.contains(own);
        if (!taken) {
            std::uint32_t slot = old_.slotOf(own);
            taken = slot != Database::kNoSlot && old_.slots_[slot].handle == own;
        }
        Handle handle = taken ? fresh() : own;
        used_.insert(handle);
        return handle;
    }

    void entity(Handle handle, Handle owner, TagList& out) {
        used_.insert(handle);
        TagList tags = modernEntity(old_.tags(handle), handle, owner, [this](Handle own) { return subHandle(own); });
        for (const TagValue& tag : tags) out.add(tag.code, tag.value);
    }

    void blocks(TagList& out) {
        out.add(gc::kStructure, "SECTION");
        out.add(gc::kName, "BLOCKS");
        std::vector<Handle> order = blockOrder();
        for (std::size_t b = 0; b < order.size(); ++b) {
            Handle block = order[b];
            Handle begin = old_.blockBegin(block);
            TagList tags = begin == kNoHandle ? TagList() : old_.tags(begin);
            int index = old_.blockIndexOf(block);
            std::uint32_t endSlot = index < 0 ? Database::kNoSlot : old_.blocks_[static_cast<std::size_t>(index)].end;
            if (isSpace(b)) {
                // The spaces get the names, paper flag and layout links of 2018 from the new drawing.
                Handle space = b == 0 ? new_.modelSpace() : new_.paperSpace();
                std::string name = new_.blockName(space);
                if (tags.size() > 1) {
                    tags = modernEntity(tags, fresh(), block, {});
                    for (int code : {gc::kName, gc::kOtherName})
                        if (std::size_t at = tags.find(code); at != TagList::npos) tags[at].value = name;
                    if (b == 1) tags.setIn("AcDbEntity", gc::kPaperSpace, "1");
                } else {
                    tags = moved(new_.tags(new_.blockBegin(space)));
                }
                for (const TagValue& tag : tags) out.add(tag.code, tag.value);
                TagList end{{0, "ENDBLK"}, {gc::kHandle, ""}, {gc::kSoftPointer, formatHandle(block)}, {gc::kSubclass, "AcDbEntity"}};
                if (b == 1) end.add(gc::kPaperSpace, "1");
                end.add(gc::kLayer, "0");
                end.add(gc::kSubclass, "AcDbBlockEnd");
                end[1].value = formatHandle(fresh());
                for (const TagValue& tag : end) out.add(tag.code, tag.value);
                continue;
            }
            if (tags.size() > 1) {
                tags = modernEntity(tags, fresh(), block, {});
            } else {
                tags = {{0, "BLOCK"}, {gc::kHandle, formatHandle(fresh())}, {gc::kSoftPointer, formatHandle(block)}, {gc::kSubclass, "AcDbEntity"},
                        {gc::kLayer, "0"}, {gc::kSubclass, "AcDbBlockBegin"}, {gc::kName, old_.blockName(block)}, {gc::kFlags, "0"}};
                tags.addPoint(10, {});
            }
            for (const TagValue& tag : tags) out.add(tag.code, tag.value);
            for (Handle member : old_.entitiesOf(block)) entity(member, block, out);
            TagList end = endSlot == Database::kNoSlot ? TagList{{0, "ENDBLK"}, {gc::kLayer, "0"}} : TagList();
            if (end.empty()) old_.decodeSlot(old_.slots_[endSlot], end);
            end = modernEntity(end, fresh(), block, {});
            for (const TagValue& tag : end) out.add(tag.code, tag.value);
        }
        out.add(gc::kStructure, "ENDSEC");
    }

    void entities(TagList& out) {
        out.add(gc::kStructure, "SECTION");
        out.add(gc::kName, "ENTITIES");
        for (Handle space : {old_.modelSpace(), old_.paperSpace()})
            for (Handle member : old_.entitiesOf(space)) entity(member, space, out);
        out.add(gc::kStructure, "ENDSEC");
    }

    void objects(TagList& out) {
        out.add(gc::kStructure, "SECTION");
        out.add(gc::kName, "OBJECTS");
        for (std::uint32_t s = 0; s < new_.fileSlots_; ++s) {
            const Database::Slot& slot = new_.slots_[s];
            if (slot.section != Section::Objects || (slot.flags & Database::kStructure)) continue;
            TagList tags;
            new_.decodeSlot(slot, tags);
            for (const TagValue& tag : moved(std::move(tags))) out.add(tag.code, tag.value);
        }
        out.add(gc::kStructure, "ENDSEC");
    }

    const Database& old_;
    Database new_;
    Handle next_;
    std::unordered_map<Handle, Handle> map_;  // the new drawing's handles to the converted drawing's
    std::unordered_set<Handle> matched_;      // the new drawing's records the R12 drawing has by name
    std::unordered_set<Handle> used_;         // entity handles written so far
};

Result<Database> convertR12(const Database& r12) {
    if (!r12.isR12()) return dxf::makeError(r12.name() + ": the drawing is not an R12 drawing");
    return R12Converter(r12).run();
}

}  // namespace veltarn::db
