// The value rules, the object-data test and the property test over records and entities of a
// real workbench drawing, read back the way the commands read them.
#include <gtest/gtest.h>

#include <optional>

#include "CommandTestSupport.h"
#include "ScratchFiles.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/SymbolTables.h"
#include "cad/seam/WorkbenchDatabase.h"
#include "commands/ClassIndex.h"
#include "commands/EntityRecords.h"
#include "commands/FieldRules.h"
#include "commands/ObjectDataTest.h"
#include "commands/PropertyTest.h"
#include "data/ObjectData.h"
#include "data/ObjectDataTables.h"
#include "host/Utf8.h"

namespace veltarn {
namespace {

using host::EntityClass;
using host::EntityProperty;
using host::ObjectId;

// ROADS holds one field per value rule; the groups nest (Water > Canal), and the class Canal
// shares its name with the group below it.
constexpr const char* kClasses = R"(class|Transport|1
|obj_name|Road|1|10
||obj_type|Line,Polyline
||od_name|ROADS
|||od_key|ID
|||od_fld|WIDTH|Width|required real|5|2:30
|||od_fld|LANES|Lanes|integer|2|1,02,4
|||od_fld|SURFACE|Surface|character|Asphalt|Asphalt,Gravel
|||od_fld|GRADE|Grade|character|c|b:d
|||od_fld|KIND|Kind|const character|main
|||od_fld|OWNER|Owner|notempty character
|||od_fld|REF|Ref|required character
|||od_fld|COUNT|Count|integer|3|1:6
|||od_fld|FACTOR|Factor|real|0.5|0.5,1.25
|||od_fld|STEP|Step|integer|3|1.5,3
|obj_name|Bridge|1|1
||obj_type|Line
||od_name|PATHS
|||od_key|ID
||od_name|OWNERS
|||od_key|ID
|||od_fld|NAME|Name|character
/class
class|Water|1
|obj_name|Canal|1|1
||obj_type|Line
||od_name|PATHS
|||od_key|ID
|class|Canal|1
||obj_name|Lock|1|1
|||obj_type|Line
|||od_name|PATHS
||||od_key|ID
|/class
|obj_name|Marker|1|1
||obj_type|Point
/class
obj_name|Lane|1|1
|obj_type|Line,Polyline
|obj_prop|layer|Roads|Streets
|obj_prop|color|1|3,(10 20 30)
|obj_prop|linetype|Dashed
|obj_prop|lineweight|50
|obj_prop|linetypescale|2
|obj_prop|closed|1
|obj_prop|textstyle|Fancy
|obj_prop|elevation|5
obj_name|Anywhere|1|1
|obj_type|Line
|obj_prop|layer|*
|obj_prop|color|?
)";

class ClassPredicates : public ::testing::Test {
protected:
    void SetUp() override {
        test::writeClassifier(folder_ / "classes.txt", kClasses);
        classifier_ = test::readClassifier(folder_ / "classes.txt");
        index_.emplace(*classifier_);
        // The drawing defines each table as the classifier does.
        for (const wchar_t* name : {L"ROADS", L"PATHS", L"OWNERS"}) {
            ObjectDataRecord definition;
            for (const FieldDef& field : index_->findTable(name)->fields)
                definition.fields.push_back(test::legalValue(field, L"Road"));
            ASSERT_EQ(createTableDefinition(drawing_, name, definition), kOdOk);
        }
        for (const char* layer : {"Roads", "STREETS", "Rivers"})
            ASSERT_TRUE(db::writeLayer(drawing_.raw(), {layer}).ok());
        ASSERT_TRUE(db::addLinetype(drawing_.raw(), "DASHED").ok());
    }
    // The store caches the data dictionary per database address; the next test's may reuse it.
    void TearDown() override { forgetObjectDataDictionary(drawing_); }

    // Appends to `entity` a record of `table` (as the drawing spells it) keyed to `className`.
    void addRecord(ObjectId entity, const std::wstring& table, const std::wstring& className,
                   const std::vector<test::Change>& changes = {}, std::size_t dropLast = 0) {
        ObjectDataRecord record = test::makeRecord(*index_->findTable(table), className, changes, dropLast);
        record.table = table;
        ASSERT_EQ(test::appendRecord(drawing_, entity, record), kOdOk);
    }

    ObjectId add(db::TagList tags) {
        auto handle = drawing_.raw().appendEntity(drawing_.raw().modelSpace(), std::move(tags));
        EXPECT_TRUE(handle.ok());
        return ObjectId{handle.ok() ? *handle : 0};
    }
    ObjectId newLine() { return add(db::newLine(drawing_.raw(), {0, 0, 0}, {10, 0, 0})); }

    std::vector<ObjectDataRecord> records(ObjectId entity) { return EntityRecords(drawing_).read(entity); }

    const ClassDef& classNamed(const wchar_t* name) { return *index_->findClass(name); }

    // The object-data test of `entity` against a class or a target: "holds", or "fails" and each
    // fault as "code TABLE.FIELD: found / expected". Asked without reasons too, which must agree.
    template <class What>
    std::string verdict(ObjectDataTest& test, ObjectId entity, const What& what, ValueCheck check = ValueCheck::kOff) {
        Faults why;
        const bool holds = test.holds(records(entity), what, check, &why);
        EXPECT_EQ(test.holds(records(entity), what, check), holds);
        std::wstring text = holds ? L"holds" : L"fails";
        for (const Fault& f : why)
            text += L"; " + std::wstring(faultCodeName(f.code)) + L" " + f.table + L"." + f.field + L": " + f.found +
                    L" / " + f.expected;
        return host::toUtf8(text);
    }

    testtools::TempFolder folder_;
    seam::WorkbenchDatabase drawing_{db::Database::createNew()};
    std::unique_ptr<Classifier> classifier_;
    std::optional<ClassIndex> index_;
};

std::string faultText(const std::optional<Fault>& fault) {
    return fault ? host::toUtf8(faultCodeName(fault->code)) : std::string("legal");
}

TEST_F(ClassPredicates, EachValueRuleJudgesTheStoredValue) {
    using F = FieldValue;
    struct Case {
        const wchar_t* field;
        FieldValue value;
        const char* expected;  // the fault code's name, or "legal"
    };
    const Case cases[] = {
        // lists: text without regard to case, numbers by value
        {L"SURFACE", F::fromText(L"GRAVEL"), "legal"},
        {L"SURFACE", F::fromText(L"Sand"), "not-in-list"},
        {L"LANES", F::fromInteger(2), "legal"},  // listed as "02"
        {L"LANES", F::fromInteger(3), "not-in-list"},
        {L"FACTOR", F::fromReal(1.25), "legal"},
        {L"FACTOR", F::fromReal(1.3), "not-in-list"},
        {L"STEP", F::fromInteger(1), "not-in-list"},  // 1 is not 1.5
        // ranges, ends included
        {L"WIDTH", F::fromReal(2), "legal"},
        {L"WIDTH", F::fromReal(30), "legal"},
        {L"WIDTH", F::fromReal(1.99), "out-of-range"},
        {L"WIDTH", F::fromReal(30.5), "out-of-range"},
        {L"COUNT", F::fromInteger(6), "legal"},
        {L"COUNT", F::fromInteger(0), "out-of-range"},
        {L"COUNT", F::fromInteger(7), "out-of-range"},
        {L"GRADE", F::fromText(L"Cz"), "legal"},
        {L"GRADE", F::fromText(L"e"), "out-of-range"},
        {L"GRADE", F::fromText(L"a"), "out-of-range"},
        // const, empty text, stored type
        {L"KIND", F::fromText(L"main"), "legal"},
        {L"KIND", F::fromText(L"side"), "const-changed"},
        {L"OWNER", F::fromText(L""), "empty-value"},
        {L"REF", F::fromText(L""), "empty-value"},
        {L"SURFACE", F::fromText(L""), "legal"},
        {L"GRADE", F::fromText(L""), "legal"},
        {L"KIND", F::fromText(L""), "legal"},
        {L"WIDTH", F::fromInteger(5), "wrong-type"},
        {L"COUNT", F::fromReal(3), "wrong-type"},
        {L"SURFACE", F::fromInteger(1), "wrong-type"},
    };
    FieldRules rules;  // one for all cases, as a command keeps one for all objects
    const TableDef& roads = *index_->findTable(L"ROADS");
    for (const Case& c : cases) {
        const ObjectId line = newLine();
        addRecord(line, L"ROADS", L"Road", {{c.field, c.value}});
        const std::vector<ObjectDataRecord> read = records(line);
        ASSERT_EQ(read.size(), 1u);
        EXPECT_EQ(faultText(rules.fault(L"ROADS", *roads.findField(c.field), findValue(read[0], c.field))), c.expected)
            << host::toUtf8(c.field) << " = \"" << host::toUtf8(c.value.displayText()) << "\"";
    }

    // A record shorter than its table holds no value for the fields past its end.
    const ObjectId shortRecord = newLine();
    addRecord(shortRecord, L"ROADS", L"Road", {}, 1);
    const ObjectDataRecord read = records(shortRecord).at(0);
    EXPECT_EQ(faultText(rules.fault(L"ROADS", roads.fields.back(), findValue(read, roads.fields.back().name))),
              "missing-value");
}

TEST_F(ClassPredicates, AClassHoldsWhenEachOfItsTablesHasARecordWithItsKey) {
    ObjectDataTest test(*index_);
    const ClassDef& road = classNamed(L"Road");
    // Table names and key values compare without regard to case.
    const ObjectId keyCase = newLine();
    addRecord(keyCase, L"roads", L"rOAD");
    EXPECT_EQ(verdict(test, keyCase, road), "holds");

    // Another class's record of the same table does not do; a later record with the key does.
    const ObjectId street = newLine();
    addRecord(street, L"ROADS", L"Street");
    EXPECT_EQ(verdict(test, street, road), "fails; key-mismatch ROADS.ID: Street / Road");
    addRecord(street, L"ROADS", L"Road");
    EXPECT_EQ(verdict(test, street, road), "holds");

    // A class of two tables needs both.
    const ObjectId bridge = newLine();
    addRecord(bridge, L"PATHS", L"Bridge");
    EXPECT_EQ(verdict(test, bridge, classNamed(L"Bridge")), "fails; no-record OWNERS.ID:  / Bridge");
    addRecord(bridge, L"OWNERS", L"Bridge");
    EXPECT_EQ(verdict(test, bridge, classNamed(L"Bridge")), "holds");

    // A class without a table never holds, not even on an object with no data at all.
    EXPECT_EQ(verdict(test, newLine(), classNamed(L"Marker")), "fails; class-without-table .:  / Marker");
}

TEST_F(ClassPredicates, ANameIsAClassFirstThenAGroupHoldingForAnyClassBelowIt) {
    ObjectDataTest test(*index_);
    const ObjectId lock = newLine();
    addRecord(lock, L"PATHS", L"Lock");
    EXPECT_EQ(verdict(test, lock, test.classOrGroup(L"water")), "holds") << "Lock is of Canal, a group inside Water";
    EXPECT_EQ(verdict(test, lock, test.group(L"Canal")), "holds");
    EXPECT_EQ(verdict(test, lock, test.classOrGroup(L"Canal")), "fails; key-mismatch PATHS.ID: Lock / Canal")
        << "the class Canal comes before the group";
    EXPECT_EQ(verdict(test, lock, test.group(L"Road")), "fails; unknown-name .:  / ") << "a class name is no group";
    EXPECT_EQ(verdict(test, lock, test.classOrGroup(L"Transport")), "fails; no-member-holds .:  / Transport");
}

TEST_F(ClassPredicates, TheValueCheckLooksAtRequiredFieldsOrAtEveryFieldAndListsEachFault) {
    ObjectDataTest test(*index_);
    const ClassDef& road = classNamed(L"Road");
    const ObjectId optionalBad = newLine();
    addRecord(optionalBad, L"ROADS", L"Road", {{L"SURFACE", FieldValue::fromText(L"Sand")}});
    EXPECT_EQ(verdict(test, optionalBad, road, ValueCheck::kRequiredFields), "holds");
    EXPECT_EQ(verdict(test, optionalBad, road, ValueCheck::kEveryField),
              "fails; not-in-list ROADS.SURFACE: Sand / Asphalt, Gravel");

    const ObjectId requiredBad = newLine();
    addRecord(requiredBad, L"ROADS", L"Road", {{L"WIDTH", FieldValue::fromReal(99)}});
    EXPECT_EQ(verdict(test, requiredBad, road, ValueCheck::kOff), "holds");
    EXPECT_EQ(verdict(test, requiredBad, road, ValueCheck::kRequiredFields),
              "fails; out-of-range ROADS.WIDTH: 99.0 / 2 .. 30");

    const ObjectId threeFaults = newLine();
    addRecord(threeFaults, L"ROADS", L"Road",
              {{L"COUNT", FieldValue::fromInteger(9)},
               {L"SURFACE", FieldValue::fromText(L"Sand")},
               {L"OWNER", FieldValue::fromText(L"")}});
    EXPECT_EQ(verdict(test, threeFaults, road, ValueCheck::kEveryField),
              "fails; not-in-list ROADS.SURFACE: Sand / Asphalt, Gravel; empty-value ROADS.OWNER:  / a value; "
              "out-of-range ROADS.COUNT: 9 / 1 .. 6");
}

// What an entity of a property case looks like; unset members keep what a new entity has.
struct Look {
    EntityClass kind = EntityClass::kLine;
    const wchar_t* layer = L"Roads";
    host::Color color = host::Color::fromIndex(1);
    const wchar_t* linetype = L"DASHED";
    int lineweight = 50;
    double linetypeScale = 2;
    bool closed = true;
    double elevation = 5;
};

TEST_F(ClassPredicates, ThePropertyTestComparesTheTypeAndEveryPropertyTheClassSetsAndTheKindCarries) {
    auto make = [&](const Look& look) {
        const db::Database& raw = drawing_.raw();
        const ObjectId id = look.kind == EntityClass::kCircle ? add(db::newCircle(raw, {0, 0, 0}, 1))
                            : look.kind == EntityClass::kPolyline
                                ? add(db::newLwpolyline(raw, {{{0, 0, 0}}, {{5, 0, 0}}, {{5, 5, 0}}}, look.closed))
                                : newLine();
        auto entity = drawing_.openEntity(id, host::OpenMode::kWrite);
        EXPECT_TRUE(entity->setProperty(EntityProperty::kLayer, std::wstring(look.layer)));
        EXPECT_TRUE(entity->setProperty(EntityProperty::kColor, look.color));
        EXPECT_TRUE(entity->setProperty(EntityProperty::kLinetype, std::wstring(look.linetype)));
        EXPECT_TRUE(entity->setProperty(EntityProperty::kLineWeight, look.lineweight));
        EXPECT_TRUE(entity->setProperty(EntityProperty::kLinetypeScale, look.linetypeScale));
        if (look.kind == EntityClass::kPolyline) {
            EXPECT_TRUE(entity->setProperty(EntityProperty::kElevation, look.elevation));
        }
        return id;
    };
    struct Case {
        const char* what;
        const wchar_t* className;
        Look look;
        const char* fault;  // the first fault's property, or "" when the test holds
    };
    const Case cases[] = {
        // A line carries no text style, elevation or closed flag: those are not tested on it.
        {"everything as the class sets it", L"Lane", {}, ""},
        {"an alternative layer, other case", L"Lane", {.layer = L"streets"}, ""},
        {"another layer", L"Lane", {.layer = L"Rivers"}, "layer"},
        {"an alternative colour index", L"Lane", {.color = host::Color::fromIndex(3)}, ""},
        {"the alternative true colour", L"Lane", {.color = host::Color::fromRgb(10, 20, 30)}, ""},
        {"another colour index", L"Lane", {.color = host::Color::fromIndex(2)}, "color"},
        {"another true colour", L"Lane", {.color = host::Color::fromRgb(10, 20, 31)}, "color"},
        {"another linetype", L"Lane", {.linetype = L"Continuous"}, "linetype"},
        {"another lineweight", L"Lane", {.lineweight = 25}, "lineweight"},
        {"a linetype scale a millionth off", L"Lane", {.linetypeScale = 2.000001}, ""},
        {"another linetype scale", L"Lane", {.linetypeScale = 2.01}, "linetypescale"},
        {"a closed polyline", L"Lane", {.kind = EntityClass::kPolyline}, ""},
        {"an open polyline", L"Lane", {.kind = EntityClass::kPolyline, .closed = false}, "closed"},
        {"a polyline at another elevation", L"Lane", {.kind = EntityClass::kPolyline, .elevation = 0}, "elevation"},
        {"a type the class does not have", L"Lane", {.kind = EntityClass::kCircle}, "type"},
        {"any layer, colour asked when drawing",
         L"Anywhere",
         {.layer = L"Rivers", .color = host::Color::fromIndex(5)},
         ""},
    };
    for (const Case& c : cases) {
        auto entity = drawing_.openEntity(make(c.look), host::OpenMode::kRead);
        ASSERT_TRUE(entity);
        Faults why;
        const bool holds = propertyTestHolds(*entity, classNamed(c.className), &why);
        EXPECT_EQ(holds, *c.fault == '\0') << c.what;
        EXPECT_EQ(why.empty() ? std::string() : host::toUtf8(why[0].field), c.fault) << c.what;
        EXPECT_EQ(propertyTestHolds(*entity, classNamed(c.className)), holds) << c.what << ": the same without reasons";
    }
}

}  // namespace
}  // namespace veltarn
