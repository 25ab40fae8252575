#include "commands/ObjectDataTest.h"

#include "host/LowerCase.h"

namespace veltarn {
namespace {

bool keyMatches(const FieldValue& value, const std::wstring& key) {
    if (value.type() == FieldType::Character) return host::equalsIgnoringCase(value.text(), key);
    return value.type() != FieldType::None && host::equalsIgnoringCase(valueText(value), key);
}

const FieldDef* keyFieldOf(const TableDef& table) {
    for (const FieldDef& field : table.fields)
        if (field.isKey()) return &field;
    return nullptr;
}

// The value of field `index` of the table: where the drawing's definition agrees with the
// classifier's, at the same place; otherwise looked up by name.
const FieldValue* valueOf(const ObjectDataRecord& record, const FieldDef& field, std::size_t index) {
    if (index < record.fields.size() && host::equalsIgnoringCase(record.fields[index].name(), field.name))
        return &record.fields[index];
    return findValue(record, field.name);
}

}  // namespace

ObjectDataTest::Target ObjectDataTest::classOrGroup(std::wstring_view name) const {
    if (const ClassDef* def = index_.findClass(name)) return Target{def, nullptr, {}};
    return group(name);
}

ObjectDataTest::Target ObjectDataTest::group(std::wstring_view name) const {
    Target target;
    if ((target.node = index_.findNode(name))) target.members = index_.classesBelow(*target.node);
    return target;
}

const std::wstring& ObjectDataTest::keyValue(const ClassDef& def, const TableDef& table, const FieldDef& key) {
    auto known = keyValues_.find(&table);
    if (known == keyValues_.end()) known = keyValues_.emplace(&table, classKeyValue(def, key)).first;
    return known->second;
}

bool ObjectDataTest::holds(const std::vector<ObjectDataRecord>& records, const Target& target, ValueCheck check,
                           Faults* why) {
    if (target.def) return holds(records, *target.def, check, why);
    for (const ClassDef* member : target.members)
        if (holds(records, *member, check, nullptr)) return true;
    if (why) {
        why->push_back(Fault{target.node ? FaultCode::kNoMemberHolds : FaultCode::kUnknownName, {}, {}, {},
                             target.node ? target.node->name : std::wstring()});
    }
    return false;
}

bool ObjectDataTest::holds(const std::vector<ObjectDataRecord>& records, const ClassDef& def, ValueCheck check,
                           Faults* why) {
    if (def.tables.empty()) {
        if (why) why->push_back(Fault{FaultCode::kClassHasNoTable, {}, {}, {}, def.name});
        return false;
    }
    bool holding = true;
    for (const TableDef& table : def.tables) {
        const FieldDef* key = keyFieldOf(table);
        const ObjectDataRecord* match = nullptr;
        std::wstring keysFound;
        bool tableFound = false;
        if (key) {
            const std::wstring& wanted = keyValue(def, table, *key);
            for (const ObjectDataRecord& record : records) {
                if (!host::equalsIgnoringCase(record.table, table.name)) continue;
                tableFound = true;
                const FieldValue* value = findValue(record, key->name);
                if (value && keyMatches(*value, wanted)) {
                    match = &record;
                    break;
                }
                if (why && value) keysFound += (keysFound.empty() ? L"" : L", ") + valueText(*value);
            }
        }
        if (!match) {
            if (!why) return false;
            holding = false;
            const std::wstring expected = key ? keyValue(def, table, *key) : std::wstring();
            why->push_back(Fault{tableFound ? FaultCode::kKeyMismatch : FaultCode::kNoRecord, table.name,
                                 key ? key->name : std::wstring(), keysFound, expected});
            continue;
        }
        if (check == ValueCheck::kOff) continue;
        for (std::size_t i = 0; i < table.fields.size(); ++i) {
            const FieldDef& field = table.fields[i];
            if (check == ValueCheck::kRequiredFields && !(field.attributes & kAttributeRequired)) continue;
            if (auto fault = rules_.fault(table.name, field, valueOf(*match, field, i))) {
                if (!why) return false;
                holding = false;
                why->push_back(std::move(*fault));
            }
        }
    }
    return holding;
}

}  // namespace veltarn
