#include "commands/ClassIndex.h"

#include <algorithm>

#include "host/LowerCase.h"

namespace veltarn {
namespace {

std::wstring tableAndKey(std::wstring_view table, std::wstring_view key) {
    std::wstring joined = host::toLower(table);
    joined += L'\0';
    joined += host::toLower(key);
    return joined;
}

const ClassNode* findNodeBelow(const ClassNode& node, const std::wstring& lowerName) {
    for (const ClassNode& child : node.children) {
        if (host::toLower(child.name) == lowerName) return &child;
        if (const ClassNode* found = findNodeBelow(child, lowerName)) return found;
    }
    return nullptr;
}

}  // namespace

ClassIndex::ClassIndex(const Classifier& classifier) : classifier_(classifier) {
    for (const auto& [key, def] : classifier.objects()) {
        for (const TableDef& table : def.tables) {
            tables_.emplace(host::toLower(table.name), &table);
            for (const FieldDef& field : table.fields)
                if (field.isKey()) byTableAndKey_.emplace(tableAndKey(table.name, classKeyValue(def, field)), &def);
        }
    }
}

const ClassDef* ClassIndex::findClass(std::wstring_view name) const { return classifier_.find(host::toLower(name)); }

const ClassNode* ClassIndex::findNode(std::wstring_view name) const {
    return findNodeBelow(classifier_.root(), host::toLower(name));
}

std::vector<const ClassDef*> ClassIndex::classesBelow(const ClassNode& node) const {
    std::vector<const ClassDef*> classes;
    auto addMembers = [&](const ClassNode& group) {
        for (const std::wstring& key : group.members) {
            const ClassDef* def = classifier_.find(key);
            if (def && std::find(classes.begin(), classes.end(), def) == classes.end()) classes.push_back(def);
        }
    };
    addMembers(node);
    node.forEachDescendant(addMembers);
    return classes;
}

const TableDef* ClassIndex::findTable(std::wstring_view name) const {
    auto found = tables_.find(host::toLower(name));
    return found == tables_.end() ? nullptr : found->second;
}

const TableDef* ClassIndex::tableOf(const ObjectDataRecord& record) const {
    if (const ClassDef* def = classOfRecord(record))
        if (const TableDef* table = def->findTable(record.table)) return table;
    return findTable(record.table);
}

const ClassDef* ClassIndex::classOfRecord(const ObjectDataRecord& record) const {
    const TableDef* table = findTable(record.table);
    if (!table) return nullptr;
    for (const FieldDef& field : table->fields) {
        if (!field.isKey()) continue;
        const FieldValue* value = findValue(record, field.name);
        if (!value) continue;
        auto found = byTableAndKey_.find(tableAndKey(record.table, valueText(*value)));
        if (found != byTableAndKey_.end()) return found->second;
    }
    return nullptr;
}

std::wstring classKeyValue(const ClassDef& def, const FieldDef& key) {
    static constexpr std::wstring_view kObjectName = L"$(obj_name)";
    std::wstring value = key.value.type() == FieldType::Character ? key.value.text() : std::wstring(kObjectName);
    const std::wstring lower = host::toLower(value);
    std::wstring filled;
    std::size_t from = 0;
    for (std::size_t at = lower.find(kObjectName); at != std::wstring::npos; at = lower.find(kObjectName, from)) {
        filled.append(value, from, at - from);
        filled += def.name;
        from = at + kObjectName.size();
    }
    filled.append(value, from);
    return filled;
}

std::wstring valueText(const FieldValue& value) {
    if (value.type() == FieldType::Character) return value.text();
    if (value.type() == FieldType::None) return {};
    return value.displayText();
}

const FieldValue* findValue(const ObjectDataRecord& record, std::wstring_view name) {
    for (const FieldValue& value : record.fields)
        if (host::equalsIgnoringCase(value.name(), name)) return &value;
    return nullptr;
}

}  // namespace veltarn
