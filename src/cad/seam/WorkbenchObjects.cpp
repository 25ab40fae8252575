#include "cad/seam/WorkbenchObjects.h"

#include "cad/db/Dictionary.h"
#include "cad/db/EntityKind.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/Explode.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Geometry.h"
#include "cad/db/Outline.h"
#include "cad/db/Xrecord.h"
#include "cad/seam/EntityClassification.h"
#include "cad/seam/EntityPropertyAccess.h"
#include "cad/seam/EntityShapeAccess.h"
#include "cad/seam/ValueConversion.h"
#include "host/DbDictionary.h"
#include "host/DbEntity.h"
#include "host/DbXrecord.h"

namespace veltarn::seam {
namespace {

using host::ObjectId;
using host::OpenMode;

template <class Base>
class Object : public Base {
public:
    Object(WorkbenchDatabase& drawing, db::Handle handle, OpenMode mode)
        : drawing_(drawing), handle_(handle), mode_(mode) {}
    ~Object() override { drawing_.release(handle_, mode_); }

    ObjectId id() const override { return {handle_}; }
    ObjectId ownerId() const override { return {db().ownerOf(target())}; }
    OpenMode openMode() const override { return mode_; }

    bool upgradeOpen() override {
        if (writable()) return true;
        if (!drawing_.tryUpgrade(handle_)) return false;
        mode_ = OpenMode::kWrite;
        return true;
    }
    void downgradeOpen() override {
        if (!writable()) return;
        drawing_.downgrade(handle_);
        mode_ = OpenMode::kRead;
    }
    bool erase() override { return writable() && drawing_.eraseObject(target()); }

    ObjectId extensionDictionary() const override { return {db::extensionDictionary(db(), target())}; }
    bool createExtensionDictionary() override {
        if (!writable()) return false;
        return db::createExtensionDictionary(drawing_.raw(), target()).ok();
    }
    bool releaseExtensionDictionary() override {
        if (!writable()) return false;
        if (db::extensionDictionary(db(), target()) == db::kNoHandle) return true;
        return db::releaseExtensionDictionary(drawing_.raw(), target());
    }

protected:
    db::Database& db() const { return drawing_.raw(); }
    bool writable() const { return mode_ == OpenMode::kWrite; }
    // The object in the drawing: handle_ is the id it was opened by, which may be the stand-in of
    // the named objects dictionary.
    db::Handle target() const { return drawing_.resolve(handle_); }

    WorkbenchDatabase& drawing_;
    db::Handle handle_;
    OpenMode mode_;
};

class Dictionary : public Object<host::DbDictionary> {
public:
    using Object::Object;

    ObjectId find(const std::wstring& key) const override { return {db::findEntry(db(), target(), narrow(key))}; }
    std::vector<Entry> entries() const override {
        std::vector<Entry> out;
        for (const auto& e : db::dictionaryEntries(db(), target())) out.emplace_back(wide(e.key), ObjectId{e.value});
        return out;
    }
    ObjectId addDictionary(const std::wstring& key) override {
        if (!writable() || key.empty() || has(key)) return {};
        auto made = db::createDictionary(db(), target());
        if (!made || !db::setEntry(db(), target(), narrow(key), *made).ok()) return {};
        return {*made};
    }
    ObjectId addXrecord(const std::wstring& key) override {
        if (!writable() || key.empty() || has(key)) return {};
        auto made = db::addXrecord(db(), target(), narrow(key), {});
        if (!made) return {};
        return {*made};
    }
    ObjectId remove(const std::wstring& key) override {
        if (!writable()) return {};
        const ObjectId held = find(key);
        if (held) (void)db::removeEntry(db(), target(), narrow(key));
        return held;
    }
};

class Xrecord : public Object<host::DbXrecord> {
public:
    using Object::Object;

    host::ResultBuffer data() const override {
        host::ResultBuffer out;
        auto values = db::readXrecord(db(), handle_);
        if (!values) return out;
        out.reserve(values->size());
        for (const auto& v : *values) out.push_back(toHost(v));
        return out;
    }
    bool setData(const host::ResultBuffer& chain) override {
        if (!writable()) return false;
        db::ResultBuffer values;
        values.reserve(chain.size());
        for (const auto& v : chain) {
            auto converted = toDb(v);
            if (!converted) return false;
            values.push_back(std::move(*converted));
        }
        return db::replaceXrecord(db(), handle_, values).ok();
    }
};

class Entity : public Object<host::DbEntity> {
public:
    using Object::Object;

    host::EntityClass entityClass() const override { return entityClassOf(tags()); }
    std::wstring dxfName() const override { return wide(db().typeName(handle_)); }

    std::optional<host::PropertyValue> property(host::EntityProperty property) const override {
        // Every module command filters its objects by layer: that one is read without decoding.
        if (property == host::EntityProperty::kLayer)
            if (auto layer = db::entityLayer(db(), handle_)) return host::PropertyValue(wide(*layer));
        return readProperty(db(), tags(), property);
    }

    bool setProperty(host::EntityProperty property, const host::PropertyValue& value) override {
        if (!writable()) return false;
        db::TagList tags = db().tags(handle_);
        if (property == host::EntityProperty::kHatchBoundary) {
            if (!setBoundary(tags, value)) return false;
        } else if (!writeProperty(db(), tags, property, value)) {
            return false;
        }
        cached_.reset();
        return db().replace(handle_, tags) == db::OpenStatus::Ok;
    }

    // The pieces go to `ownerBlock`; the entity stays as it is. All pieces or none: a piece that
    // cannot be appended takes back those appended before it.
    std::vector<ObjectId> explodeInto(ObjectId ownerBlock) override {
        auto pieces = db::explode(db(), handle_);
        if (!pieces) return {};
        std::vector<ObjectId> made;
        for (db::TagList& piece : *pieces) {
            auto appended = db().appendEntity(ownerBlock.handle, std::move(piece));
            if (!appended) {
                for (ObjectId id : made) (void)db::eraseObject(db(), id.handle);
                return {};
            }
            made.push_back({*appended});
        }
        return made;
    }

    std::optional<host::EntityShape> shape() const override { return entityShape(tags()); }

    std::optional<host::EntityOutline> outline(double tolerance) const override {
        auto made = db::outline(tags(), tolerance);
        if (!made) return std::nullopt;
        host::EntityOutline out;
        out.kind = made->shape == db::Outline::Shape::Point  ? host::EntityOutline::Kind::kPoint
                   : made->shape == db::Outline::Shape::Line ? host::EntityOutline::Kind::kLine
                                                             : host::EntityOutline::Kind::kPolygon;
        out.parts.reserve(made->parts.size());
        for (const auto& part : made->parts) {
            auto& points = out.parts.emplace_back();
            points.reserve(part.size());
            for (const db::Point3& p : part)
                points.push_back({p.x, p.y, p.z});
        }
        return out;
    }

private:
    // The entity's tags, decoded once while it is open for read: nothing changes it then (a write
    // open excludes every other), and a property test asks a dozen properties in a row. Open for
    // write, they are decoded afresh each time.
    const db::TagList& tags() const {
        if (openMode() != host::OpenMode::kRead || !cached_) cached_ = db().tags(handle_);
        return *cached_;
    }
    mutable std::optional<db::TagList> cached_;

    // A closed polyline becomes the hatch's only, outer loop.
    bool setBoundary(db::TagList& tags, const host::PropertyValue& value) const {
        constexpr int kExternalPolylinePath = 1 | 2;
        auto* id = std::get_if<ObjectId>(&value);
        if (!id || tags.type() != "HATCH" || db().typeName(id->handle) != "LWPOLYLINE") return false;
        const db::TagList boundary = db().tags(id->handle);
        if (!db::closed(boundary).value_or(false)) return false;
        db::HatchPath path;
        path.flags = kExternalPolylinePath;
        path.vertices = db::polylineVertices(boundary);
        return db::setHatchPaths(tags, {path});
    }
};

class Other : public Object<host::DbObject> {
public:
    using Object::Object;
};

// The named objects dictionary of a drawing still R12, open for read: it holds nothing. Once the
// drawing is converted (by this object's upgrade or by any other change) it is the real root.
class RootStandIn : public Dictionary {
public:
    RootStandIn(WorkbenchDatabase& drawing, db::Handle handle) : Dictionary(drawing, handle, OpenMode::kRead) {}

    ObjectId find(const std::wstring& key) const override { return converted() ? Dictionary::find(key) : ObjectId{}; }
    std::vector<Entry> entries() const override { return converted() ? Dictionary::entries() : std::vector<Entry>{}; }

private:
    bool converted() const { return !db().isR12(); }
};

}  // namespace

std::unique_ptr<host::DbObject> makeRootStandIn(WorkbenchDatabase& drawing, db::Handle handle) {
    return std::make_unique<RootStandIn>(drawing, handle);
}

std::unique_ptr<host::DbObject> makeObject(WorkbenchDatabase& drawing, db::Handle handle, OpenMode mode) {
    const db::Database& db = drawing.raw();
    const std::string_view type = db.typeName(drawing.resolve(handle));
    if (db::isDictionaryType(type)) return std::make_unique<Dictionary>(drawing, handle, mode);
    if (type == "XRECORD") return std::make_unique<Xrecord>(drawing, handle, mode);
    if (db::isEntity(db, handle)) return std::make_unique<Entity>(drawing, handle, mode);
    return std::make_unique<Other>(drawing, handle, mode);
}

}  // namespace veltarn::seam
