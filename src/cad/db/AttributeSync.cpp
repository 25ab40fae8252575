#include "cad/db/AttributeSync.h"

#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/Kinds.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {
namespace {

// The block a reference names, read without copying its attributes.
bool refersTo(const Database& db, Handle entity, std::string_view block) {
    if (db.typeName(entity) != "INSERT") return false;
    TagCursor cursor;
    if (db.read(entity, cursor) != OpenStatus::Ok || !cursor.next()) return false;
    while (cursor.next()) {
        if (cursor.code() == gc::kStructure) return false;
        if (cursor.code() == gc::kName) return sameName(dxf::trimSpaces(cursor.value()), block);
    }
    return false;
}

}  // namespace

std::vector<Handle> attributeDefinitions(const Database& db, Handle block) {
    std::vector<Handle> out;
    for (Handle entity : db.entitiesOf(block))
        if (db.typeName(entity) == "ATTDEF") out.push_back(entity);
    return out;
}

Result<AttributeSync> synchronizeAttributes(Database& db, Handle block) {
    const Handle begin = db.blockBegin(block);
    if (begin == kNoHandle) return dxf::makeError(db.name() + ": " + formatHandle(block) + " is no block");
    const std::string name = db.blockName(block);
    std::vector<TagList> definitions;
    for (Handle definition : attributeDefinitions(db, block))
        definitions.push_back(db.tags(definition));
    const Point3 base = db.tags(begin).point(gc::kX).value_or(Point3{});

    AttributeSync result;
    for (Handle space : db.blocks()) {
        for (Handle entity : db.entitiesOf(space)) {
            if (!refersTo(db, entity, name)) continue;
            ObjectWriter writer = db.openForWrite(entity);
            if (writer.status() == OpenStatus::OnLockedLayer) {
                ++result.locked;
                continue;
            }
            if (!writer) continue;
            auto synced = kinds::synchronizeAttributes(db, writer.tags(), definitions, base);
            writer.close();
            if (!synced) {
                result.problems.push_back(db.name() + ": " + synced.message());
                continue;
            }
            ++result.references;
            // Their attributes are gone: nothing else owns them.
            for (Handle dictionary : *synced)
                (void)eraseObject(db, dictionary);
        }
    }
    return result;
}

}  // namespace veltarn::db
