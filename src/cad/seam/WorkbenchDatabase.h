// The workbench's drawing as the module sees it: host::Database over db::Database, with the
// bookkeeping of open objects (many readers or one writer) and the drawing's reactors.
//
// An R12 drawing has no named objects dictionary, yet the module keeps its table definitions
// there. It is handed a stand-in id instead: opened for read, an empty dictionary, so reading
// changes nothing and an untouched R12 drawing still saves as it was read; opened for write (or
// upgraded), the drawing is converted to 2018 first, and from then on the stand-in and the real
// root dictionary are one object under two ids, both of which open it.
//
// The conversion is a step of the command that needed it (see db::Database::convertFromR12):
// undoing that command gives back the R12 drawing as it was, where the stand-in is a stand-in
// again; redoing it converts again.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "cad/db/Database.h"
#include "cad/db/DatabaseObserver.h"
#include "cad/seam/OpenTable.h"
#include "host/Database.h"
#include "host/SystemVariables.h"

namespace veltarn::seam {

class WorkbenchDatabase : public host::Database {
public:
    // `path` is the file the drawing was read from or is saved to; empty for a new drawing.
    explicit WorkbenchDatabase(db::Database database, std::filesystem::path path = {});
    ~WorkbenchDatabase() override;

    // Reads a drawing file. Any extension is read as DXF, so a ".dwg" or ".dwt" path that holds DXF
    // loads and a real DWG file fails with the reader's message.
    static dxf::Result<std::unique_ptr<WorkbenchDatabase>> read(const std::filesystem::path& path);

    db::Database& raw() { return db_; }
    const db::Database& raw() const { return db_; }
    const std::filesystem::path& path() const { return path_; }
    void setPath(std::filesystem::path path) { path_ = std::move(path); }

    // Where new entities take their layer, colour and linetype from (CLAYER, CECOLOR, CELTYPE);
    // without it they take the drawing's own current layer and ByLayer.
    void setCurrentSettings(const host::SystemVariables* variables) { settings_ = variables; }
    // The support search path, where hatch pattern files are looked for.
    void setSupportPath(std::function<std::wstring()> supportPath) { supportPath_ = std::move(supportPath); }

    // --- open bookkeeping, used by the objects handed out --------------------------------------
    // The handle the drawing knows `handle` by: the real root dictionary for the stand-in once the
    // drawing holds one, else `handle` itself.
    db::Handle resolve(db::Handle handle) const {
        return handle == rootStandIn_ && handle != db::kNoHandle && !db_.isR12() ? db_.namedObjectsDictionary() : handle;
    }
    // True for the stand-in id of the named objects dictionary (see above).
    bool isRootStandIn(db::Handle handle) const { return handle == rootStandIn_ && handle != db::kNoHandle; }
    bool onLockedLayer(db::Handle handle) const;
    // The only reader becomes the writer; upgrading the stand-in converts an R12 drawing first.
    bool tryUpgrade(db::Handle handle);
    void downgrade(db::Handle handle);
    void release(db::Handle handle, host::OpenMode mode);
    // Opens currently held; for tests and for commands that check nothing is left open.
    std::size_t openCount() const;

    // --- changes ----------------------------------------------------------------------------
    // The reactors hear what the database reports, whoever made the change (the seam, a host
    // command, undo and redo); the database is watched only while a reactor is added.
    // Erases with reference cleaning; false when it could not be erased.
    bool eraseObject(db::Handle handle);
    // Undo and redo of one whole command of the database's journal. False when there is nothing
    // to undo / redo.
    bool undo();
    bool redo();
    // True when a command changed the drawing since it was read or last saved.
    bool modified() const { return modified_; }
    void setModified(bool modified) { modified_ = modified; }

    // host::Database
    std::wstring fileName() const override;
    // The stand-in while the drawing is R12, the real root dictionary afterwards.
    host::ObjectId namedObjectsDictionary() const override {
        return {db_.isR12() ? rootStandIn_ : db_.namedObjectsDictionary()};
    }
    host::ObjectId modelSpace() const override { return {db_.modelSpace()}; }
    std::unique_ptr<host::DbObject> openObject(host::ObjectId id, host::OpenMode mode) override;
    std::vector<host::ObjectId> blockEntities(host::ObjectId block) const override;
    std::unique_ptr<host::DbEntity> appendEntity(host::ObjectId block, host::EntityClass kind) override;
    host::ObjectId lastEntity() const override;
    host::ObjectId findSymbol(host::SymbolTable table, const std::wstring& name) const override;
    std::vector<host::DbDictionary::Entry> symbols(host::SymbolTable table) const override;
    std::vector<host::LayerInfo> layers() const override;
    std::optional<host::BlockInfo> blockInfo(const std::wstring& name) const override;
    bool setRelativeDrawOrder(host::ObjectId block, const std::vector<host::ObjectId>& ids) override;
    bool copyRecordsFrom(host::Database& source, const std::vector<host::ObjectId>& ids,
                         host::SymbolTable table) override;
    bool loadLinetypes(const std::wstring& pattern, const std::wstring& path) override;
    bool loadMlineStyle(const std::wstring& name, const std::wstring& path) override;
    bool hasHatchPattern(const std::wstring& pattern) const override;
    void addReactor(host::DatabaseReactor* reactor) override;
    void removeReactor(host::DatabaseReactor* reactor) override;

private:
    // Relays the database's notifications to the reactors.
    class Relay : public db::DatabaseObserver {
    public:
        explicit Relay(WorkbenchDatabase& owner) : owner_(owner) {}
        void objectAppended(const db::Database&, db::Handle object) override { owner_.notifyAppended(object); }
        void objectErased(const db::Database&, db::Handle object, bool erased) override { owner_.notifyErased(object, erased); }
        void objectModified(const db::Database&, db::Handle object) override { owner_.notifyModified(object); }

    private:
        WorkbenchDatabase& owner_;
    };
    void notifyAppended(db::Handle handle);
    void notifyErased(db::Handle handle, bool erased);
    void notifyModified(db::Handle handle);
    // The handle opens are counted under: the stand-in's opens move to the real root dictionary
    // once the drawing has one, so that one writer excludes the other id's readers too.
    db::Handle counted(db::Handle handle);

    db::Database db_;
    db::Handle rootStandIn_ = db::kNoHandle;  // set for a drawing read as R12, kept after conversion
    std::filesystem::path path_;
    const host::SystemVariables* settings_ = nullptr;
    std::function<std::wstring()> supportPath_;
    OpenTable opens_;
    std::vector<host::DatabaseReactor*> reactors_;
    Relay relay_{*this};
    bool modified_ = false;
};

}  // namespace veltarn::seam
