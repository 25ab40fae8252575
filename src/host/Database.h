// A drawing: its objects, dictionaries, symbol tables and blocks, as the module sees them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/BlockInfo.h"
#include "host/DbDictionary.h"
#include "host/DbEntity.h"
#include "host/DbObject.h"
#include "host/DbXrecord.h"
#include "host/EntityClass.h"
#include "host/LayerInfo.h"
#include "host/SymbolTable.h"

namespace veltarn::host {

class DatabaseReactor;

class Database {
public:
    virtual ~Database() = default;

    // The full path of the drawing's file; empty for a drawing never saved.
    virtual std::wstring fileName() const = 0;

    // The root dictionary of the drawing's named objects, and the block of model space.
    virtual ObjectId namedObjectsDictionary() const = 0;
    virtual ObjectId modelSpace() const = 0;

    // Opens an object. Null when the id names nothing in this drawing, the object is erased, or a
    // write open is refused (the object is already open elsewhere, or it is an entity on a locked
    // layer). The object closes when the pointer is destroyed.
    virtual std::unique_ptr<DbObject> openObject(ObjectId id, OpenMode mode) = 0;

    // openObject() narrowed to one kind of object; null also when the object is of another kind.
    std::unique_ptr<DbDictionary> openDictionary(ObjectId id, OpenMode mode) { return openAs<DbDictionary>(id, mode); }
    std::unique_ptr<DbXrecord> openXrecord(ObjectId id, OpenMode mode) { return openAs<DbXrecord>(id, mode); }
    std::unique_ptr<DbEntity> openEntity(ObjectId id, OpenMode mode) { return openAs<DbEntity>(id, mode); }

    // The entities of a block (model space, as a rule) in the block's order; erased ones left out.
    virtual std::vector<ObjectId> blockEntities(ObjectId block) const = 0;

    // Creates a new entity of `kind` with the drawing's current layer, colour, linetype, text style
    // and zero geometry, appends it to `block` (reactors hear objectAppended) and returns it open for
    // write. Null when `block` is no block or the drawing cannot make that kind.
    virtual std::unique_ptr<DbEntity> appendEntity(ObjectId block, EntityClass kind) = 0;

    // The entity appended last to the drawing (in any block of the current space); null if none.
    virtual ObjectId lastEntity() const = 0;

    // Symbol tables and the dictionaries handled like them (see SymbolTable).
    // The record named `name` (compared without regard to case); null when absent.
    virtual ObjectId findSymbol(SymbolTable table, const std::wstring& name) const = 0;
    bool hasSymbol(SymbolTable table, const std::wstring& name) const { return !findSymbol(table, name).isNull(); }
    // Every record of the table in the table's order, as (name, id).
    virtual std::vector<DbDictionary::Entry> symbols(SymbolTable table) const = 0;

    // Every layer with its state, in the layer table's order.
    virtual std::vector<LayerInfo> layers() const = 0;
    // The block definition named `name`; nullopt when the drawing has none.
    virtual std::optional<BlockInfo> blockInfo(const std::wstring& name) const = 0;

    // Puts `ids` (entities of `block`) in draw order among themselves: the first at the bottom,
    // the last on top; other entities keep their places. Creates the block's draw-order record when
    // it has none. False, with nothing changed, when the draw-order record cannot be opened.
    virtual bool setRelativeDrawOrder(ObjectId block, const std::vector<ObjectId>& ids) = 0;

    // Copies records of another drawing (read with Host::readDrawing) into this drawing's `table`:
    // `ids` are records of `source` of that table, with what they depend on (a layer's linetype, a
    // block's entities). A record whose name this drawing has already is left as it is here. False
    // when the copy could not be made; nothing is half copied.
    virtual bool copyRecordsFrom(Database& source, const std::vector<ObjectId>& ids, SymbolTable table) = 0;

    // Loads linetypes from a linetype definition file (".lin"): those whose names match `pattern`
    // (wild cards as in file names; "?*" loads all). False when the file cannot be read or no
    // linetype matched; linetypes the drawing has already are kept.
    virtual bool loadLinetypes(const std::wstring& pattern, const std::wstring& path) = 0;
    // Loads the multiline style `name` from a multiline style file (".mln"). False when absent.
    virtual bool loadMlineStyle(const std::wstring& name, const std::wstring& path) = 0;
    // True when a hatch could use `pattern`: a predefined pattern or one found on the support path.
    virtual bool hasHatchPattern(const std::wstring& pattern) const = 0;

    // Reactors, added and removed in pairs. Adding one twice registers it twice (it then hears each
    // change twice); removing one that is not added does nothing.
    virtual void addReactor(DatabaseReactor* reactor) = 0;
    virtual void removeReactor(DatabaseReactor* reactor) = 0;

protected:
    Database() = default;

private:
    template <class T>
    std::unique_ptr<T> openAs(ObjectId id, OpenMode mode) {
        std::unique_ptr<DbObject> object = openObject(id, mode);
        if (auto* typed = dynamic_cast<T*>(object.get())) {
            object.release();
            return std::unique_ptr<T>(typed);
        }
        return nullptr;
    }
};

}  // namespace veltarn::host
