#include "data/ObjectData.h"

#include "data/RecordValues.h"

#include <algorithm>
#include <cmath>

namespace veltarn {

namespace {

using host::OpenMode;
using host::TypedValue;

// A value as append() stores it in a field of `type`.
TypedValue appendedForm(const FieldValue& value, FieldType type) {
    if (value.type() == FieldType::None && type != FieldType::None) {
        // An unset value still takes its place, or every later record would shift.
        switch (type) {
            case FieldType::Integer: return {kIntegerCode, std::int32_t{0}};
            case FieldType::Real: return {kRealCode, 0.0};
            case FieldType::Point: return {kPointCode, host::Point3d{}};
            default: return {kCharacterCode, std::wstring()};
        }
    }
    switch (type) {
        case FieldType::Integer: return {kIntegerCode, value.asInteger()};
        case FieldType::Real:
            // Whole numbers only, on purpose: drawings written by earlier versions hold them so.
            switch (value.type()) {
                case FieldType::Real: return {kRealCode, std::trunc(value.realValue())};
                case FieldType::Point: throw kConversionNotAllowed;
                default: return {kRealCode, static_cast<double>(value.asInteger())};
            }
        case FieldType::Character: return {kCharacterCode, value.asText()};
        case FieldType::Point:
            if (value.type() == FieldType::Point) return {kPointCode, value.pointValue()};
            return {kPointCode, parsePoint(value.asText())};
        default: return storedForm(value);
    }
}

// A value as update() writes it over a stored value of group code `code`; false to keep the
// stored one.
bool updatedForm(const FieldValue& value, TypedValue& stored) {
    if (value.type() == FieldType::None) return false;
    switch (stored.groupCode) {
        case kCharacterCode: stored.value = value.asText(); return true;
        case kRealCode: stored.value = value.asReal(); return true;
        case kIntegerCode: stored.value = value.asInteger(); return true;
        case kPointCode: {
            // X, Z, Z on purpose: drawings written by earlier versions hold points updated so.
            host::Point3d p = value.asPoint();
            stored.value = host::Point3d{p.x, p.z, p.z};
            return true;
        }
        default: return false;
    }
}

}  // namespace

int ObjectData::open(host::ObjectId entity, std::optional<std::wstring> filter) {
    entity_ = entity;
    extensionDictionary_ = {};
    entries_.clear();
    position_ = 0;
    records_ = {};
    chain_.clear();
    chainRead_ = false;
    definition_ = {};
    offset_ = 0;
    fieldCount_ = 0;
    end_ = false;
    filter_ = std::move(filter);

    {
        auto object = db_.openObject(entity, OpenMode::kRead);
        if (!object) return kOdCannotOpenEntity;
        extensionDictionary_ = object->extensionDictionary();
    }
    if (!extensionDictionary_) return kOdNoData;
    auto dictionary = db_.openDictionary(extensionDictionary_, OpenMode::kRead);
    if (!dictionary) return kOdNoData;
    auto tables = openObjectDataDictionary(db_, OpenMode::kRead, documents_);
    if (!tables) return kOdNoData;

    entries_ = dictionary->entries();
    host::ObjectId definition;
    while (standsOnEntry() && !(definition = tables->find(currentKey()))) ++position_;
    if (!standsOnEntry()) {
        entries_.clear();
        return kOdNoData;
    }
    if (filter_ && currentKey() != *filter_) {
        while (standsOnEntry() && currentKey() != *filter_) ++position_;
        if (standsOnEntry()) definition = tables->find(currentKey());
        else end_ = true;
    }
    if (standsOnEntry()) {
        records_ = entries_[position_].second;
        definition_ = definition;
    }
    return kOdOk;
}

bool ObjectData::nextTable() {
    // Most entities carry one table: no need to open "ODEMUDATA" to learn that none follows.
    if (filter_ || position_ + 1 >= entries_.size()) return false;
    auto tables = openObjectDataDictionary(db_, OpenMode::kRead, documents_);
    if (!tables) return false;
    host::ObjectId definition;
    for (++position_; standsOnEntry(); ++position_)
        if ((definition = tables->find(currentKey()))) break;
    if (!standsOnEntry()) return false;
    records_ = entries_[position_].second;
    definition_ = definition;
    chain_.clear();
    chainRead_ = false;
    offset_ = 0;
    fieldCount_ = 0;
    end_ = false;
    return true;
}

const std::vector<std::wstring>* ObjectData::fieldNames(host::ObjectId id) {
    for (auto it = definitions_.rbegin(); it != definitions_.rend(); ++it)
        if (it->id == id) return &it->names;
    auto xrecord = db_.openXrecord(id, OpenMode::kRead);
    if (!xrecord) return nullptr;
    const host::ResultBuffer definition = xrecord->data();
    // Field names are the first of each (name, value) pair of the definition.
    Definition read{id, {}};
    read.names.reserve(definition.size() / 2);
    for (std::size_t i = 0; i + 1 < definition.size(); i += 2) read.names.push_back(definition[i].text());
    constexpr std::size_t kKept = 16;
    if (definitions_.size() == kKept) definitions_.erase(definitions_.begin());
    definitions_.push_back(std::move(read));
    return &definitions_.back().names;
}

int ObjectData::read(ObjectDataRecord& record) {
    if (!standsOnEntry()) return kOdCannotRead;
    if (!db_.openDictionary(extensionDictionary_, OpenMode::kRead)) return kOdCannotRead;
    const std::vector<std::wstring>* names = fieldNames(definition_);
    if (!names) {
        record.clear();
        return kOdCannotRead;
    }
    // The record's strings are reused from the last read: names are assigned only when they differ.
    record.table = currentKey();
    record.fields.resize(names->size());
    for (std::size_t i = 0; i < names->size(); ++i) {
        FieldValue& field = record.fields[i];
        if (field.name() != (*names)[i]) field.setName((*names)[i]);
        field.clear();
    }
    fieldCount_ = static_cast<std::int32_t>(record.fields.size());

    // The chain is read once per walk: reading it for every record made a walk quadratic.
    if (!chainRead_) {
        auto xrecord = db_.openXrecord(records_, OpenMode::kRead);
        if (!xrecord) return kOdCannotRead;
        chain_ = xrecord->data();
        chainRead_ = true;
    }
    const host::ResultBuffer& chain = chain_;
    for (std::size_t i = 0; i < record.fields.size() && offset_ + i < chain.size(); ++i) {
        readStoredValue(chain[offset_ + i], record.fields[i]);
    }
    // A table without fields would never advance: it ends at once.
    if (offset_ + record.fields.size() >= chain.size() || fieldCount_ == 0) end_ = true;
    return kOdOk;
}

int ObjectData::update(const ObjectDataRecord& record) {
    if (!standsOnEntry()) return kOdNoData;
    auto xrecord = db_.openXrecord(records_, OpenMode::kWrite);
    if (!xrecord) return kOdNoData;
    host::ResultBuffer chain = xrecord->data();
    std::size_t count = std::min<std::size_t>(static_cast<std::size_t>(fieldCount_), record.fields.size());
    for (std::size_t i = 0; i < count && offset_ + i < chain.size(); ++i) {
        updatedForm(record.fields[i], chain[offset_ + i]);
    }
    if (!xrecord->setData(chain)) return kOdNoData;
    chain_ = std::move(chain);
    chainRead_ = true;
    return kOdOk;
}

int ObjectData::remove() {
    if (!standsOnEntry()) return kOdNoData;
    ObjectDataRecord definition;
    if (!readTableDefinition(db_, definition_, definition)) return kOdCannotRead;
    std::size_t fieldCount = definition.fields.size();

    auto xrecord = db_.openXrecord(records_, OpenMode::kWrite);
    if (!xrecord) return kOdNoData;
    host::ResultBuffer chain = xrecord->data();
    std::size_t first = std::min(offset_, chain.size());
    std::size_t last = std::min(offset_ + fieldCount, chain.size());
    chain.erase(chain.begin() + static_cast<std::ptrdiff_t>(first), chain.begin() + static_cast<std::ptrdiff_t>(last));
    end_ = true;
    chainRead_ = false;
    if (!chain.empty()) return xrecord->setData(chain) ? kOdOk : kOdNoData;

    // The last record: the entry, the extension dictionary if nothing else is in it, the xrecord.
    if (auto dictionary = db_.openDictionary(extensionDictionary_, OpenMode::kWrite)) {
        dictionary->remove(currentKey());
    }
    if (auto object = db_.openObject(entity_, OpenMode::kWrite)) object->releaseExtensionDictionary();
    xrecord->erase();
    return kOdOk;
}

int ObjectData::append(host::Database& db, host::ObjectId entity, const ObjectDataRecord& record,
                       std::span<const FieldType> fieldTypes) {
    // Converted before anything is opened, so that a refused value leaves the drawing unchanged.
    host::ResultBuffer values;
    values.reserve(record.fields.size());
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
        const FieldValue& value = record.fields[i];
        values.push_back(appendedForm(value, i < fieldTypes.size() ? fieldTypes[i] : value.type()));
    }

    host::ObjectId dictionaryId;
    {
        auto object = db.openObject(entity, OpenMode::kWrite);
        if (!object) return kOdCannotOpenEntity;
        if (!object->extensionDictionary() && !object->createExtensionDictionary()) return kOdNoData;
        dictionaryId = object->extensionDictionary();
    }
    auto dictionary = db.openDictionary(dictionaryId, OpenMode::kWrite);
    if (!dictionary) return kOdNoData;
    host::ObjectId id = dictionary->find(record.table);
    if (!id) id = dictionary->addXrecord(record.table);
    auto xrecord = db.openXrecord(id, OpenMode::kWrite);
    if (!xrecord) return kOdNoData;
    host::ResultBuffer chain = xrecord->data();
    chain.insert(chain.end(), values.begin(), values.end());
    return xrecord->setData(chain) ? kOdOk : kOdNoData;
}

}  // namespace veltarn
