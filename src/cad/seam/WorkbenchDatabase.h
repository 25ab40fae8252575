// The workbench's drawing as the module sees it: host::Database over db::Database, with the
// bookkeeping of open objects (many readers or one writer) and the drawing's reactors.
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
    bool onLockedLayer(db::Handle handle) const;
    bool tryUpgrade(db::Handle handle);  // the only reader becomes the writer
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
    host::ObjectId namedObjectsDictionary() const override { return {db_.namedObjectsDictionary()}; }
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

    private:
        WorkbenchDatabase& owner_;
    };
    void notifyAppended(db::Handle handle);
    void notifyErased(db::Handle handle, bool erased);

    db::Database db_;
    std::filesystem::path path_;
    const host::SystemVariables* settings_ = nullptr;
    std::function<std::wstring()> supportPath_;
    OpenTable opens_;
    std::vector<host::DatabaseReactor*> reactors_;
    Relay relay_{*this};
    bool modified_ = false;
};

}  // namespace veltarn::seam
