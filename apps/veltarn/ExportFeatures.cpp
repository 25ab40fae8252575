#include "ExportFeatures.h"

#include <map>

#include "cad/db/Handle.h"
#include "classifier/EntityType.h"
#include "commands/ClassTests.h"
#include "host/Utf8.h"

namespace veltarn::app {
namespace {

ExportValue exportValue(const FieldValue& value) {
    switch (value.type()) {
        case FieldType::Integer:
            return std::int64_t{value.integerValue()};
        case FieldType::Real:
            return value.realValue();
        case FieldType::Character:
            return host::toUtf8(value.text());
        case FieldType::Point:
            return value.pointValue();
        case FieldType::None:
            break;
    }
    return std::monostate{};
}

}  // namespace

std::vector<ExportFeature> classifiedFeatures(ClassifiedDrawing& drawing, double tolerance) {
    std::vector<ExportFeature> features;
    ClassTests tests(*drawing.db, drawing.classifier);
    for (host::ObjectId id : drawing.db->blockEntities(drawing.db->modelSpace())) {
        const std::vector<ObjectDataRecord>& records = tests.records(id);
        const ClassDef* known = nullptr;
        for (const ObjectDataRecord& record : records)
            if ((known = tests.index().classOfRecord(record))) break;
        if (!known) continue;
        // The classes' numbers rank them; where none ranks (all at the floor), the first one found.
        const ClassDef* chosen = tests.highestClass(records);
        ExportFeature feature;
        feature.handle = db::formatHandle(id.handle);
        feature.className = host::toUtf8((chosen ? chosen : known)->name);
        std::map<std::wstring, int> seen;  // records of each table so far
        for (const ObjectDataRecord& record : records) {
            const int n = ++seen[record.table];
            const std::string table = host::toUtf8(record.table) + (n > 1 ? "[" + std::to_string(n) + "]" : "");
            for (const FieldValue& value : record.fields)
                feature.properties.push_back({table + "." + host::toUtf8(value.name()), exportValue(value)});
        }
        if (auto entity = drawing.db->openEntity(id, host::OpenMode::kRead)) {
            feature.type = host::toUtf8(entityTypeOf(*entity));
            feature.layer = host::toUtf8(entity->layer());
            feature.geometry = entity->outline(tolerance);
        }
        features.push_back(std::move(feature));
    }
    return features;
}

}  // namespace veltarn::app
