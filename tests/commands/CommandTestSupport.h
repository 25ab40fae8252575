// What the command tests share: classifiers written as users write them ('|' stands for the tab
// between columns, so that a classifier reads in the source as it does in an editor), and records
// made from a classifier's tables.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "classifier/ClassifierReader.h"
#include "commands/ClassIndex.h"
#include "data/ObjectData.h"
#include "data/ObjectDataRecord.h"
#include "host/Utf8.h"
#include "module/ModuleState.h"

namespace veltarn::test {

// The module's state lives as long as the process; each test starts from a fresh module.
inline void resetModuleState() {
    moduleState().options = {};
    moduleState().classifierPath.clear();
    moduleState().paletteSet.reset();
}

inline void writeClassifier(const std::filesystem::path& file, std::string text) {
    for (char& c : text)
        if (c == '|') c = '\t';
    std::ofstream(file) << text;
}

// Read without a drawing: nothing checked against one, nothing brought into one. Any message the
// reader prints fails the calling test, since a classifier meant to be good must load as written.
inline std::unique_ptr<Classifier> readClassifier(const std::filesystem::path& file) {
    std::wstring messages;
    ClassifierReader reader([&](const std::wstring& text) { messages += text; });
    auto classifier = std::make_unique<Classifier>(reader.read(host::fromUtf8(file.string())));
    EXPECT_EQ(messages, L"") << file;
    EXPECT_FALSE(reader.failed()) << file;
    return classifier;
}

// The value a record holds when nothing is wrong with it: the key of `className`, the field's
// default, or some text.
inline FieldValue legalValue(const FieldDef& field, const std::wstring& className) {
    FieldValue value = field.isKey()        ? FieldValue::fromText(className)
                       : field.hasDefault() ? field.value
                                            : FieldValue::fromText(L"x");
    value.setName(field.name);
    return value;
}

using Change = std::pair<std::wstring, FieldValue>;

// A record of `table` keyed to `className` with legal values, the changes applied by field name
// (each value keeps its own type, so a wrong type reaches the drawing), and the last `dropLast`
// values left off.
inline ObjectDataRecord makeRecord(const TableDef& table, const std::wstring& className,
                                   const std::vector<Change>& changes = {}, std::size_t dropLast = 0) {
    ObjectDataRecord record;
    record.table = table.name;
    for (const FieldDef& field : table.fields)
        record.fields.push_back(legalValue(field, className));
    for (const auto& [name, value] : changes) {
        for (FieldValue& target : record.fields) {
            if (target.name() != name) continue;
            target = value;
            target.setName(name);
        }
    }
    record.fields.resize(record.fields.size() - dropLast);
    return record;
}

// Appends `record` to the entity's records of its table as it is. The store's append keeps only
// the whole part of a real (as drawings of earlier versions hold them); its update writes reals
// whole, so the appended record is written again through a cursor.
inline int appendRecord(host::Database& db, host::ObjectId entity, const ObjectDataRecord& record) {
    if (int rc = ObjectData::append(db, entity, record); rc != kOdOk) return rc;
    ObjectData cursor(db);
    ObjectDataRecord stored;
    int rc = cursor.open(entity, record.table);
    for (; rc == kOdOk; cursor.next()) {
        if ((rc = cursor.read(stored)) != kOdOk) break;
        if (cursor.atEnd()) return cursor.update(record);
    }
    return rc;
}

}  // namespace veltarn::test
