#include "BulkCheck.h"

#include "ClassifiedDrawing.h"
#include "HtmlReport.h"
#include "PlanShapes.h"

#include <set>

#include "cad/audit/Auditor.h"
#include "cad/db/Handle.h"
#include "classifier/EntityType.h"
#include "commands/ClassTests.h"
#include "host/LowerCase.h"
#include "host/Utf8.h"

namespace veltarn::app {
namespace {

// What a fault is about, for a person: "ROADS.WIDTH: found \"-3\"", "layer: found \"0\"".
std::string faultMessage(const Fault& fault) {
    std::wstring where = fault.table;
    if (!fault.field.empty()) where += (where.empty() ? L"" : L".") + fault.field;
    std::wstring text = where.empty() ? std::wstring(faultCodeName(fault.code)) : where;
    if (!fault.found.empty() || fault.code == FaultCode::kEmptyValue) text += L": found \"" + fault.found + L"\"";
    return host::toUtf8(text);
}

// The entity an object is about: the object itself, or the entity whose extension dictionary
// holds it (an object-data xrecord), so that a script grouping findings by object finds the
// audit's findings on a record under its entity.
std::unique_ptr<host::DbEntity> owningEntity(host::Database& db, host::ObjectId id) {
    constexpr int kRecordDepth = 3;  // xrecord, extension dictionary, entity
    for (int level = 0; level < kRecordDepth && id; ++level) {
        if (auto entity = db.openEntity(id, host::OpenMode::kRead)) return entity;
        const std::unique_ptr<host::DbObject> object = db.openObject(id, host::OpenMode::kRead);
        if (!object) return nullptr;
        id = object->ownerId();
    }
    return nullptr;
}

class ObjectChecker {
public:
    ObjectChecker(host::Database& db, const Classifier& classifier, DrawingCheck& check)
        : tests_(db, classifier), check_(check) {}

    // The plan, when given, gets the object's outline, a link when it has findings (`audited`:
    // the handles the audit found something on).
    void check(host::ObjectId id, DrawingPlan* plan, std::size_t planIndex, const std::set<std::string>& audited) {
        CheckFinding base{check_.tally.drawing, db::formatHandle(id.handle), "", "", "", "", "", ""};
        std::unique_ptr<host::DbEntity> entity = tests_.db().openEntity(id, host::OpenMode::kRead);
        if (entity) {
            base.type = host::toUtf8(entityTypeOf(*entity));
            base.layer = host::toUtf8(entity->layer());
        }
        const std::size_t before = check_.findings.size();
        test(id, entity.get(), base);
        if (!plan || !entity) return;
        std::optional<PlanShape> shape = planShapeOf(*entity);
        if (!shape) return;
        const bool faulty = check_.findings.size() != before || audited.contains(base.handle);
        plan->add(std::move(*shape), faulty ? findingsAnchor(planIndex, base.handle) : std::string(),
                  base.handle + " " + base.type + " " + base.layer);
    }

private:
    void test(host::ObjectId id, const host::DbEntity* entity, const CheckFinding& base) {
        DrawingTally& tally = check_.tally;
        ++tally.objects;
        // Copied: the object-data test reads records through the same cursor.
        const std::vector<ObjectDataRecord> records = tests_.records(id);
        if (records.empty()) {
            ++tally.unclassified;
            add(base, nullptr, "unclassified", "the object carries no object data", "");
            return;
        }
        const std::size_t before = check_.findings.size();
        emptyRequired_.clear();
        std::vector<const ClassDef*> classes;
        for (const ObjectDataRecord& record : records) {
            const ClassDef* def = tests_.index().classOfRecord(record);
            if (!def) {
                const bool knownTable = tests_.index().findTable(record.table) != nullptr;
                add(base, nullptr, "foreign-record",
                    host::toUtf8(L"record of table " + record.table +
                                 (knownTable ? L" names no class" : L" that the classifier does not know")),
                    "");
                continue;
            }
            if (std::find(classes.begin(), classes.end(), def) == classes.end()) classes.push_back(def);
            emptyRequired(base, record, def);
        }
        for (const ClassDef* def : classes) {
            Faults faults;
            tests_.objectData().holds(records, *def, ValueCheck::kEveryField, &faults);
            if (entity) propertyTestHolds(*entity, *def, &faults);
            for (const Fault& fault : faults) {
                // A required field left empty is told once, as empty-required.
                if (fault.code == FaultCode::kEmptyValue && emptyRequired_.contains({host::toLower(fault.table), host::toLower(fault.field)}))
                    continue;
                add(base, def, std::string(host::toUtf8(std::wstring(faultCodeName(fault.code)))), faultMessage(fault),
                    host::toUtf8(fault.expected));
            }
        }
        if (classes.empty()) ++tally.foreign;
        else if (check_.findings.size() == before) ++tally.valid;
        else ++tally.faulty;
    }

    // As VELTARN_SEL_NULL 0 finds them: a text field the classifier requires, left empty.
    void emptyRequired(const CheckFinding& base, const ObjectDataRecord& record, const ClassDef* def) {
        const TableDef* table = tests_.index().tableOf(record);
        if (!table) return;
        for (const FieldValue& value : record.fields) {
            if (value.type() != FieldType::Character || !value.text().empty()) continue;
            const FieldDef* field = table->findField(value.name());
            if (!field || !(field->attributes & kAttributeRequired)) continue;
            emptyRequired_.insert({host::toLower(record.table), host::toLower(value.name())});
            add(base, def, "empty-required", host::toUtf8(record.table + L"." + value.name() + L" is empty"),
                    "a value");
        }
    }

    void add(const CheckFinding& base, const ClassDef* def, std::string code, std::string message,
             std::string expected) {
        CheckFinding finding = base;
        if (def) finding.className = host::toUtf8(def->name);
        finding.code = std::move(code);
        finding.message = std::move(message);
        finding.expected = std::move(expected);
        check_.findings.push_back(std::move(finding));
    }

    ClassTests tests_;
    DrawingCheck& check_;
    std::set<std::pair<std::wstring, std::wstring>> emptyRequired_;  // lower-case table and field, of the object in hand
};

}  // namespace

DrawingCheck checkDrawing(const std::string& drawing, const std::filesystem::path& classifier,
                          const CheckDrawingOptions& options) {
    DrawingCheck check;
    check.tally.drawing = drawing;
    // Audited before the classifier imports anything into it, so the findings are the file's.
    std::vector<audit::Finding> audited;
    auto read = readClassifiedDrawing(drawing, classifier, options.readingClassifier, [&audited](seam::WorkbenchDatabase& db) {
        audited = audit::auditDrawing(db.raw());
    });
    if (!read) {
        check.unreadable = true;
        check.findings.push_back({drawing, "", "", "", "", "unreadable-drawing", read.message(), ""});
        return check;
    }
    check.tally.read = true;
    ClassifiedDrawing& opened = read.value();
    host::Database* db = opened.db;
    for (const audit::Finding& finding : audited) {
        CheckFinding found{drawing, "", "", "", "", "audit-" + finding.code, finding.message, ""};
        if (finding.handle != db::kNoHandle) {
            found.handle = db::formatHandle(finding.handle);
            if (auto entity = owningEntity(*db, host::ObjectId{finding.handle})) {
                found.handle = db::formatHandle(entity->id().handle);
                found.type = host::toUtf8(entityTypeOf(*entity));
                found.layer = host::toUtf8(entity->layer());
            }
        }
        check.findings.push_back(std::move(found));
        ++check.tally.audit;
    }
    const std::vector<host::ObjectId> objects = db->blockEntities(db->modelSpace());
    for (std::string& message : opened.readerMessages())
        check.findings.push_back({drawing, "", "", "", "", "classifier-message", std::move(message), ""});
    if (opened.classifierFailed) {
        check.unreadable = true;
        check.tally.objects = static_cast<int>(objects.size());
        return check;
    }

    check.tally.checked = true;
    ObjectChecker checker(*db, opened.classifier, check);
    DrawingPlan plan;
    std::set<std::string> auditedHandles;
    for (const CheckFinding& finding : check.findings)
        if (finding.code.starts_with("audit-") && !finding.handle.empty()) auditedHandles.insert(finding.handle);
    for (host::ObjectId id : objects) {
        checker.check(id, options.plan ? &plan : nullptr, options.planIndex, auditedHandles);
        if (options.objectsChecked) options.objectsChecked->fetch_add(1, std::memory_order_relaxed);
    }
    if (options.plan) check.planSvg = plan.svg();
    return check;
}

}  // namespace veltarn::app
