// Opens workbench drawings through the seam for the object-data tests: a thin view of the
// workbench's drawing database with just what the store asks of it (objects, dictionaries,
// xrecords, extension dictionaries, entities by layer). To be replaced by the workbench's own
// implementation of the seam when it exists.
#include "TestDrawing.h"

#include "cad/db/Database.h"
#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/EntityKind.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Xrecord.h"
#include "host/Utf8.h"

#include <gtest/gtest.h>

#include <unordered_map>

namespace veltarn::test {

namespace {

using host::ObjectId;
using host::OpenMode;

// Opens per handle: any number of readers, or one writer alone.
struct OpenCounts {
    int readers = 0;
    bool writer = false;
};

class Drawing;

template <class Base>
class Object : public Base {
public:
    Object(Drawing& drawing, db::Handle handle, OpenMode mode) : drawing_(drawing), handle_(handle), mode_(mode) {}
    ~Object() override;

    ObjectId id() const override { return {handle_}; }
    ObjectId ownerId() const override;
    OpenMode openMode() const override { return mode_; }
    bool upgradeOpen() override;
    void downgradeOpen() override;
    bool erase() override;
    ObjectId extensionDictionary() const override;
    bool createExtensionDictionary() override;
    bool releaseExtensionDictionary() override;

protected:
    db::Database& db() const;
    bool writable() const { return mode_ == OpenMode::kWrite; }

    Drawing& drawing_;
    db::Handle handle_;
    OpenMode mode_;
};

class Drawing : public TestDrawing, public host::Database {
public:
    explicit Drawing(db::Database database) : db_(std::move(database)) {}

    host::Database& db() override { return *this; }
    void save(const std::filesystem::path& path) override {
        auto saved = db_.save(path);
        ASSERT_TRUE(saved.ok()) << saved.message();
    }

    db::Database& raw() { return db_; }
    std::unordered_map<db::Handle, OpenCounts>& opens() { return opens_; }

    std::wstring fileName() const override { return host::fromUtf8(db_.name()); }
    ObjectId namedObjectsDictionary() const override { return {db_.namedObjectsDictionary()}; }
    ObjectId modelSpace() const override { return {db_.modelSpace()}; }
    std::unique_ptr<host::DbObject> openObject(ObjectId id, OpenMode mode) override;
    std::vector<ObjectId> blockEntities(ObjectId block) const override {
        std::vector<ObjectId> ids;
        for (db::Handle h : db_.entitiesOf(block.handle)) ids.push_back({h});
        return ids;
    }
    std::unique_ptr<host::DbEntity> appendEntity(ObjectId block, host::EntityClass kind) override {
        if (kind != host::EntityClass::kLine) return nullptr;
        auto handle = db_.appendEntity(block.handle, db::newLine(db_, {}, {1, 0, 0}));
        if (!handle) return nullptr;
        return openEntity({*handle}, OpenMode::kWrite);
    }
    ObjectId lastEntity() const override { return {}; }
    ObjectId findSymbol(host::SymbolTable, const std::wstring&) const override { return {}; }
    std::vector<host::DbDictionary::Entry> symbols(host::SymbolTable) const override { return {}; }
    std::vector<host::LayerInfo> layers() const override { return {}; }
    std::optional<host::BlockInfo> blockInfo(const std::wstring&) const override { return std::nullopt; }
    bool setRelativeDrawOrder(ObjectId, const std::vector<ObjectId>&) override { return false; }
    bool copyRecordsFrom(host::Database&, const std::vector<ObjectId>&, host::SymbolTable) override { return false; }
    bool loadLinetypes(const std::wstring&, const std::wstring&) override { return false; }
    bool loadMlineStyle(const std::wstring&, const std::wstring&) override { return false; }
    bool hasHatchPattern(const std::wstring&) const override { return false; }
    void addReactor(host::DatabaseReactor*) override {}
    void removeReactor(host::DatabaseReactor*) override {}

private:
    db::Database db_;
    std::unordered_map<db::Handle, OpenCounts> opens_;
};

template <class Base>
Object<Base>::~Object() {
    auto it = drawing_.opens().find(handle_);
    if (mode_ == OpenMode::kRead && --it->second.readers > 0) return;
    drawing_.opens().erase(it);  // closed by all: keep the table as small as the open objects
}

template <class Base>
db::Database& Object<Base>::db() const { return drawing_.raw(); }

template <class Base>
ObjectId Object<Base>::ownerId() const { return {db().ownerOf(handle_)}; }

template <class Base>
bool Object<Base>::upgradeOpen() {
    if (writable()) return true;
    OpenCounts& counts = drawing_.opens()[handle_];
    if (counts.readers != 1 || counts.writer) return false;
    counts.readers = 0;
    counts.writer = true;
    mode_ = OpenMode::kWrite;
    return true;
}

template <class Base>
void Object<Base>::downgradeOpen() {
    if (!writable()) return;
    OpenCounts& counts = drawing_.opens()[handle_];
    counts.writer = false;
    counts.readers = 1;
    mode_ = OpenMode::kRead;
}

template <class Base>
bool Object<Base>::erase() {
    return writable() && db::eraseObject(db(), handle_) == db::OpenStatus::Ok;
}

template <class Base>
ObjectId Object<Base>::extensionDictionary() const { return {db::extensionDictionary(db(), handle_)}; }

template <class Base>
bool Object<Base>::createExtensionDictionary() {
    return writable() && db::createExtensionDictionary(db(), handle_).ok();
}

template <class Base>
bool Object<Base>::releaseExtensionDictionary() {
    if (!writable()) return false;
    db::releaseExtensionDictionary(db(), handle_);
    return db::extensionDictionary(db(), handle_) == db::kNoHandle;
}

class Dictionary : public Object<host::DbDictionary> {
public:
    using Object::Object;

    ObjectId find(const std::wstring& key) const override {
        return {db::findEntry(db(), handle_, host::toUtf8(key))};
    }
    std::vector<Entry> entries() const override {
        std::vector<Entry> out;
        for (const auto& e : db::dictionaryEntries(db(), handle_)) out.emplace_back(host::fromUtf8(e.key), ObjectId{e.value});
        return out;
    }
    ObjectId addDictionary(const std::wstring& key) override {
        if (!writable() || has(key)) return {};
        auto made = db::createDictionary(db(), handle_);
        if (!made || !db::setEntry(db(), handle_, host::toUtf8(key), *made).ok()) return {};
        return {*made};
    }
    ObjectId addXrecord(const std::wstring& key) override {
        if (!writable() || has(key)) return {};
        auto made = db::addXrecord(db(), handle_, host::toUtf8(key), {});
        return made ? ObjectId{*made} : ObjectId{};
    }
    ObjectId remove(const std::wstring& key) override {
        if (!writable()) return {};
        ObjectId held = find(key);
        if (held) (void)db::removeEntry(db(), handle_, host::toUtf8(key));
        return held;
    }
};

host::TypedValue toHost(const db::TypedValue& v) {
    using Kind = db::TypedValue::Kind;
    switch (v.kind()) {
        case Kind::Text: return {v.code, host::fromUtf8(v.text)};
        case Kind::Real: return {v.code, v.real};
        case Kind::Integer:
            if (v.code >= 90 && v.code <= 99) return {v.code, static_cast<std::int32_t>(v.integer)};
            if (v.code >= 160 && v.code <= 169) return {v.code, std::int64_t{v.integer}};
            return {v.code, static_cast<std::int32_t>(v.integer)};
        case Kind::Point: return {v.code, host::Point3d{v.point.x, v.point.y, v.point.z}};
        case Kind::Handle: return {v.code, ObjectId{db::parseHandle(v.text).value_or(0)}};
        case Kind::Binary: return {v.code, host::Bytes{v.text}};
    }
    return {};
}

std::optional<db::TypedValue> fromHost(const host::TypedValue& v) {
    using Kind = db::TypedValue::Kind;
    switch (db::TypedValue::kindOf(v.groupCode)) {
        case Kind::Text: if (v.isText()) return db::TypedValue::ofText(v.groupCode, host::toUtf8(v.text())); break;
        case Kind::Real: if (v.isReal()) return db::TypedValue::ofReal(v.groupCode, v.real()); break;
        case Kind::Integer:
            if (v.isInteger()) return db::TypedValue::ofInteger(v.groupCode, v.integer());
            if (auto* wide = std::get_if<std::int64_t>(&v.value)) return db::TypedValue::ofInteger(v.groupCode, *wide);
            break;
        case Kind::Point:
            if (v.isPoint()) return db::TypedValue::ofPoint(v.groupCode, {v.point().x, v.point().y, v.point().z});
            break;
        case Kind::Handle: if (v.isHandle()) return db::TypedValue::ofHandle(v.groupCode, v.handle().handle); break;
        case Kind::Binary:
            if (auto* bytes = std::get_if<host::Bytes>(&v.value)) return db::TypedValue::ofBinary(v.groupCode, bytes->data);
            break;
    }
    return std::nullopt;
}

class Xrecord : public Object<host::DbXrecord> {
public:
    using Object::Object;

    host::ResultBuffer data() const override {
        host::ResultBuffer out;
        auto values = db::readXrecord(db(), handle_);
        if (!values) return out;
        for (const auto& v : *values) out.push_back(toHost(v));
        return out;
    }
    bool setData(const host::ResultBuffer& chain) override {
        if (!writable()) return false;
        db::ResultBuffer values;
        for (const auto& v : chain) {
            auto converted = fromHost(v);
            if (!converted) return false;
            values.push_back(std::move(*converted));
        }
        return db::replaceXrecord(db(), handle_, values).ok();
    }
};

class Entity : public Object<host::DbEntity> {
public:
    using Object::Object;

    host::EntityClass entityClass() const override { return host::EntityClass::kOther; }
    std::wstring dxfName() const override { return host::fromUtf8(db().typeName(handle_)); }
    std::optional<host::PropertyValue> property(host::EntityProperty property) const override {
        if (property != host::EntityProperty::kLayer) return std::nullopt;
        return host::PropertyValue(host::fromUtf8(db::commonProperties(db().tags(handle_)).layer));
    }
    bool setProperty(host::EntityProperty, const host::PropertyValue&) override { return false; }
    std::vector<ObjectId> explodeInto(ObjectId) override { return {}; }
};

class Other : public Object<host::DbObject> {
public:
    using Object::Object;
};

std::unique_ptr<host::DbObject> Drawing::openObject(ObjectId id, OpenMode mode) {
    if (db_.status(id.handle) != db::OpenStatus::Ok) return nullptr;
    OpenCounts& counts = opens_[id.handle];
    if (counts.writer || (mode == OpenMode::kWrite && counts.readers > 0)) return nullptr;
    if (mode == OpenMode::kWrite) counts.writer = true;
    else ++counts.readers;
    std::string_view type = db_.typeName(id.handle);
    if (db::isDictionaryType(type)) return std::make_unique<Dictionary>(*this, id.handle, mode);
    if (type == "XRECORD") return std::make_unique<Xrecord>(*this, id.handle, mode);
    if (db::isEntity(db_, id.handle)) return std::make_unique<Entity>(*this, id.handle, mode);
    return std::make_unique<Other>(*this, id.handle, mode);
}

}  // namespace

std::unique_ptr<TestDrawing> TestDrawing::load(const std::string& fixture) {
    std::filesystem::path source = std::filesystem::path(VELTARN_SOURCE_DIR) / "tests/data/data" / fixture;
    auto loaded = db::Database::load(source);
    if (!loaded) {
        ADD_FAILURE() << loaded.message();
        return std::make_unique<Drawing>(db::Database::createNew());
    }
    return std::make_unique<Drawing>(std::move(*loaded));
}

std::unique_ptr<TestDrawing> TestDrawing::createNew() {
    return std::make_unique<Drawing>(db::Database::createNew());
}

}  // namespace veltarn::test
