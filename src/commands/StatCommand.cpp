#include "commands/StatCommand.h"

#include <algorithm>
#include <map>
#include <set>

#include "classifier/EntityType.h"
#include "commands/ClassTests.h"
#include "commands/ObjectGathering.h"
#include "gui/GUITextBox.h"
#include "host/Format.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

struct Counts {
    int objects = 0;
    std::map<std::wstring, int> types;    // type name: objects
    std::map<std::wstring, int> classes;  // display name: objects whose data of it hold
    int illegal = 0;                      // as VELTARN_ASSERT 1
    int emptyRequired = 0;                // as VELTARN_SEL_NULL 0
    int unclassified = 0;                 // no record at all
    int foreign = 0;                      // records, none of a known class
};

void countObject(ClassTests& tests, host::ObjectId id, Counts& counts) {
    ++counts.objects;
    if (auto entity = tests.db().openEntity(id, host::OpenMode::kRead)) {
        const std::wstring_view type = entityTypeName(entity->entityClass());
        ++counts.types[type.empty() ? std::wstring(L"(no type)") : std::wstring(type)];
    }
    const std::vector<ObjectDataRecord>& records = tests.records(id);
    if (records.empty()) {
        ++counts.unclassified;
        return;
    }
    std::set<const ClassDef*> holding;
    bool known = false, illegal = false, emptyRequired = false;
    for (const ObjectDataRecord& record : records) {
        if (const TableDef* table = tests.index().tableOf(record)) {
            for (const FieldValue& value : record.fields) {
                if (value.type() != FieldType::Character || !value.text().empty()) continue;
                const FieldDef* field = table->findField(value.name());
                emptyRequired = emptyRequired || (field && (field->attributes & kAttributeRequired));
            }
        }
        const ClassDef* def = tests.index().classOfRecord(record);
        if (!def) continue;
        known = true;
        // Keys first: a class whose keys fail is illegal without looking at its values.
        const bool keysHold = tests.objectData().holds(records, *def, ValueCheck::kOff);
        if (keysHold) holding.insert(def);
        illegal = illegal || !keysHold || !tests.objectData().holds(records, *def, ValueCheck::kEveryField);
    }
    for (const ClassDef* def : holding) ++counts.classes[def->name];
    counts.foreign += !known;
    counts.illegal += illegal;
    counts.emptyRequired += emptyRequired;
}

// Lines of a label and a number, the numbers right-aligned in one column.
class Report {
public:
    void heading(const std::wstring& text) { lines_.push_back({text, std::nullopt}); }
    void line(const std::wstring& label, int value) { lines_.push_back({label, value}); }
    void blank() { lines_.push_back({L"", std::nullopt}); }

    std::wstring text() const {
        std::size_t width = 0;
        for (const auto& [label, value] : lines_)
            if (value) width = std::max(width, label.size());
        std::wstring out;
        for (const auto& [label, value] : lines_) {
            out += label;
            if (value) out += std::wstring(width - label.size(), L' ') + host::format(L"%10i", *value);
            out += L"\n";
        }
        return out;
    }

private:
    std::vector<std::pair<std::wstring, std::optional<int>>> lines_;
};

}  // namespace

void statCommand(CommandContext& context) {
    host::Host& host = context.host;
    std::optional<CandidateList> gathered =
        gatherCandidates(host, GetImpliedSelection(host), WhenNothingPicked::kPromptThenModelSpace);
    if (!gathered) return;
    CandidateList& list = *gathered;

    const Classifier& classifier = *context.state.classifier;
    ClassTests tests(*host.workingDatabase(), classifier);
    Counts counts;
    for (host::ObjectId id : list) countObject(tests, id, counts);

    Report report;
    report.line(L"Objects", counts.objects);
    report.blank();
    report.heading(L"Objects by type");
    for (const auto& [type, count] : counts.types) report.line(L"  " + type, count);
    report.blank();
    report.heading(L"Objects by class (data valid)");
    for (const auto& [name, count] : counts.classes) report.line(L"  " + name, count);
    report.blank();
    report.heading(L"Objects to look at");
    report.line(L"  Illegal values", counts.illegal);
    report.line(L"  Empty required values", counts.emptyRequired);
    report.line(L"  Unclassified (no data)", counts.unclassified);
    report.line(L"  Foreign (data of no known class)", counts.foreign);
    report.blank();

    // What in the classifier itself needs mending.
    std::vector<std::wstring> illFormed, mismatched;
    std::set<std::wstring> seen;
    for (const auto& [key, def] : classifier.objects()) {
        for (const TableDef& table : def.tables) {
            if (!table.isWellFormed()) illFormed.push_back(def.name + L": " + table.name);
            if (seen.insert(table.name).second && !tests.meetsDrawingRequirements(def)) mismatched.push_back(table.name);
        }
    }
    report.heading(L"Classifier");
    report.line(L"  Classes", classifier.classCount());
    report.line(L"  Object definitions", classifier.objectCount());
    report.line(L"  Tables", classifier.tableCount());
    report.line(L"  Ill-formed tables", static_cast<int>(illFormed.size()));
    for (const std::wstring& name : illFormed) report.heading(L"    " + name);
    report.line(L"  Tables not matching the drawing", static_cast<int>(mismatched.size()));
    for (const std::wstring& name : mismatched) report.heading(L"    " + name);

    GUITextBox box(L"Statistics", report.text(), 500, 400);
    box.showModal(host.dialogs());
}

}  // namespace veltarn
