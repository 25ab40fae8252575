#include "classifier/ClassDef.h"
#include "classifier/DrawingTables.h"
#include "classifier/Classifier.h"
#include "classifier/EntityType.h"
#include "classifier/FieldDef.h"
#include "classifier/TableDef.h"

#include <gtest/gtest.h>

namespace veltarn {
namespace {

FieldDef field(FieldType type, ValueKind kind, FieldValue value, std::vector<std::wstring> values,
               std::wstring name = L"f") {
    FieldDef f;
    f.name = std::move(name);
    f.type = type;
    f.kind = kind;
    f.value = std::move(value);
    f.values = std::move(values);
    return f;
}

TEST(FieldAttributes, LastWordIsTheTypeTheOthersAttributes) {
    auto parsed = parseAttributes(L"Required Integer");
    EXPECT_EQ(parsed.attributes, kAttributeRequired);
    EXPECT_EQ(parsed.type, FieldType::Integer);

    parsed = parseAttributes(L"const notempty required character");
    EXPECT_EQ(parsed.attributes, kAttributeConst | kAttributeNotEmpty | kAttributeRequired);
    EXPECT_EQ(parsed.type, FieldType::Character);

    EXPECT_EQ(parseAttributes(L"REAL").type, FieldType::Real);
    EXPECT_EQ(parseAttributes(L"REAL").attributes, 0u);

    for (const wchar_t* bad : {L"required", L"", L"integer required", L"point", L"optional real",
                               L"required integer extra"}) {
        auto refused = parseAttributes(bad);
        EXPECT_EQ(refused.type, FieldType::None) << bad;
        EXPECT_EQ(refused.attributes, 0u) << bad;
    }
}

TEST(FieldValidity, ListDefaultMustBeOneOfTheValues) {
    auto text = [](const wchar_t* d) {
        return field(FieldType::Character, ValueKind::List, FieldValue::fromText(d), {L"a", L"b"});
    };
    EXPECT_TRUE(text(L"B").isValid());  // text without regard to case
    EXPECT_FALSE(text(L"z").isValid());

    // Numbers by value, not by their text.
    EXPECT_TRUE(field(FieldType::Integer, ValueKind::List, FieldValue::fromInteger(10), {L"5", L"010"}).isValid());
    EXPECT_TRUE(field(FieldType::Real, ValueKind::List, FieldValue::fromReal(2.5), {L"1", L"2.50"}).isValid());
    EXPECT_FALSE(field(FieldType::Real, ValueKind::List, FieldValue::fromReal(2.5), {L"2.49"}).isValid());
    EXPECT_TRUE(field(FieldType::Point, ValueKind::List, FieldValue::fromPoint({1, 2, 3}), {L"1,2,3"}).isValid());
    EXPECT_FALSE(field(FieldType::Point, ValueKind::List, FieldValue::fromPoint({1, 2, 0}), {L"1,2"}).isValid());

    // No default, or no type: never valid.
    EXPECT_FALSE(field(FieldType::Character, ValueKind::List, FieldValue(), {L"", L"a"}).isValid());
    EXPECT_FALSE(field(FieldType::None, ValueKind::List, FieldValue::fromText(L"a"), {L"a"}).isValid());
}

TEST(FieldValidity, RangeHoldsItsBoundsAndNothingBeyond) {
    auto integer = [](int d) {
        return field(FieldType::Integer, ValueKind::Range, FieldValue::fromInteger(d), {L"1", L"10"});
    };
    EXPECT_TRUE(integer(10).isValid());
    EXPECT_TRUE(integer(1).isValid());
    EXPECT_FALSE(integer(11).isValid());
    EXPECT_FALSE(integer(0).isValid());

    EXPECT_TRUE(field(FieldType::Real, ValueKind::Range, FieldValue::fromReal(5), {L"1", L"10"}).isValid());
    EXPECT_FALSE(field(FieldType::Real, ValueKind::Range, FieldValue::fromReal(10.001), {L"1", L"10"}).isValid());
    // Text in lower-case order: "M" lies between "a" and "z" only when case is ignored.
    EXPECT_TRUE(field(FieldType::Character, ValueKind::Range, FieldValue::fromText(L"M"), {L"a", L"z"}).isValid());
    EXPECT_FALSE(field(FieldType::Character, ValueKind::Range, FieldValue::fromText(L"b"), {L"C", L"z"}).isValid());
    // Points in each coordinate.
    EXPECT_TRUE(field(FieldType::Point, ValueKind::Range, FieldValue::fromPoint({1, 5, 9}), {L"0,0,0", L"10,10,10"}).isValid());
    EXPECT_FALSE(field(FieldType::Point, ValueKind::Range, FieldValue::fromPoint({1, 11, 9}), {L"0,0,0", L"10,10,10"}).isValid());
    // A range needs exactly two bounds.
    EXPECT_FALSE(field(FieldType::Integer, ValueKind::Range, FieldValue::fromInteger(2), {L"1"}).isValid());

    // Kinds without a constraint are always valid.
    EXPECT_TRUE(field(FieldType::Integer, ValueKind::Default, FieldValue::fromInteger(99), {}).isValid());
    EXPECT_TRUE(field(FieldType::Character, ValueKind::None, FieldValue(), {}).isValid());
}

TEST(TableDef, WellFormedMeansOneKeyAndValidFields) {
    TableDef table{L"Roads", {}};
    EXPECT_FALSE(table.isWellFormed());  // no field

    table.fields.push_back(field(FieldType::Integer, ValueKind::Default, FieldValue::fromInteger(1), {}, L"lanes"));
    EXPECT_FALSE(table.isWellFormed());  // no key

    table.fields.push_back(makeKeyField(L"id"));
    EXPECT_TRUE(table.isWellFormed());

    table.fields.push_back(makeKeyField(L"id2"));
    EXPECT_FALSE(table.isWellFormed());  // two keys
    table.fields.pop_back();

    table.fields.push_back(field(FieldType::Character, ValueKind::List, FieldValue::fromText(L"z"), {L"a", L"b"}, L"kind"));
    EXPECT_FALSE(table.isWellFormed());  // an invalid list field
}

TEST(TableDef, CompatibleTablesAgreeInFieldNamesOrderAndTypes) {
    TableDef a{L"Roads", {makeKeyField(L"id"), field(FieldType::Real, ValueKind::None, {}, {}, L"Width")}};
    TableDef b = a;
    b.name = L"ROADS";
    b.fields[1].name = L"width";
    b.fields[1].description = L"another description";
    b.fields[1].kind = ValueKind::Default;
    b.fields[1].value = FieldValue::fromReal(3);
    EXPECT_TRUE(a.isCompatibleWith(b));
    EXPECT_FALSE(a.isIdenticalTo(b));

    TableDef otherType = a;
    otherType.fields[1].type = FieldType::Integer;
    EXPECT_FALSE(a.isCompatibleWith(otherType));

    TableDef otherOrder{L"roads", {a.fields[1], a.fields[0]}};
    EXPECT_FALSE(a.isCompatibleWith(otherOrder));

    TableDef extraField = a;
    extraField.fields.push_back(field(FieldType::Integer, ValueKind::None, {}, {}, L"lanes"));
    EXPECT_FALSE(a.isCompatibleWith(extraField));

    TableDef otherName = otherType;
    otherName.name = L"Rivers";
    EXPECT_TRUE(a.isCompatibleWith(otherName));

    TableDef same = a;
    same.name = L"roads";
    EXPECT_TRUE(a.isIdenticalTo(same));
    EXPECT_NE(a.findField(L"WIDTH"), nullptr);
}

TEST(DrawingTables, RegisteredDefinitionMustHaveTheSameFieldNamesAndTypes) {
    TableDef table{L"Roads", {makeKeyField(L"id"), field(FieldType::Real, ValueKind::Default, FieldValue::fromReal(5), {}, L"Width")}};
    auto named = [](FieldValue value, const wchar_t* name) {
        value.setName(name);
        return value;
    };
    // A drawing stores each field as its name and a value of its type; defaults do not matter.
    ObjectDataRecord registered{L"ROADS", {named(FieldValue::fromText(L""), L"ID"), named(FieldValue::fromReal(0), L"width")}};
    EXPECT_TRUE(agreesWithDefinition(table, registered));

    ObjectDataRecord integerWidth{L"Roads", {named(FieldValue::fromText(L""), L"id"), named(FieldValue::fromInteger(0), L"width")}};
    EXPECT_FALSE(agreesWithDefinition(table, integerWidth));
    ObjectDataRecord renamed{L"Roads", {named(FieldValue::fromText(L""), L"id"), named(FieldValue::fromReal(0), L"breadth")}};
    EXPECT_FALSE(agreesWithDefinition(table, renamed));
    ObjectDataRecord shorter{L"Roads", {named(FieldValue::fromText(L""), L"id")}};
    EXPECT_FALSE(agreesWithDefinition(table, shorter));
}

TEST(ClassDef, TypeListAndValidity) {
    EXPECT_EQ(parseTypeList(L" Line ,Polyline\t"), (std::vector<std::wstring>{L"Line", L"Polyline"}));
    EXPECT_TRUE(parseTypeList(L"Line,,Arc").empty());
    EXPECT_TRUE(parseTypeList(L"Line, ").empty());
    EXPECT_TRUE(parseTypeList(L"").empty());

    ClassDef def;
    def.name = L"Road";
    EXPECT_FALSE(def.isComplete());
    def.types = parseTypeList(L"?, Line");
    EXPECT_TRUE(def.isComplete());
    EXPECT_FALSE(def.isValid());
    def.types = parseTypeList(L"Line, ?");
    EXPECT_TRUE(def.isValid());
    def.name.clear();
    EXPECT_FALSE(def.isComplete());
}

TEST(Classifier, CountsAndClear) {
    Classifier classifier(L"/data/survey.txt");
    ClassNode roads{L"Roads", true, L"", {}, {}};
    roads.children.push_back(ClassNode{L"Paths", false, L"", {}, {}});
    classifier.root().children.push_back(roads);
    classifier.root().children.push_back(ClassNode{L"Water", true, L"", {}, {}});

    ClassDef a;
    a.key = L"road";
    a.tables = {TableDef{L"Roads", {}}, TableDef{L"Common", {}}};
    ClassDef b;
    b.key = L"path";
    b.tables = {TableDef{L"ROADS", {}}};
    EXPECT_TRUE(classifier.add(a));
    EXPECT_TRUE(classifier.add(b));
    EXPECT_FALSE(classifier.add(a));

    EXPECT_EQ(classifier.classCount(), 3);
    EXPECT_EQ(classifier.objectCount(), 2);
    EXPECT_EQ(classifier.tableCount(), 2);
    EXPECT_NE(classifier.find(L"road"), nullptr);
    EXPECT_EQ(classifier.find(L"Road"), nullptr);  // keys are lower case

    classifier.clear();
    EXPECT_TRUE(classifier.empty());
    EXPECT_EQ(classifier.tableCount(), 0);
    EXPECT_TRUE(classifier.path().empty());
}

TEST(EntityType, ExactClassesMapAndRelativesDoNot) {
    using host::EntityClass;
    EXPECT_EQ(entityTypeName(EntityClass::kPolyline), L"Polyline");
    EXPECT_EQ(entityTypeName(EntityClass::kPolyline2d), L"");
    EXPECT_EQ(entityTypeName(EntityClass::kPolyline3d), L"3DPolyline");
    EXPECT_EQ(entityTypeName(EntityClass::kMInsertBlock), L"");
    EXPECT_EQ(entityTypeName(EntityClass::kOther), L"");
    EXPECT_EQ(entityTypeName(EntityClass::kDimensionAligned), L"Dimension");
    EXPECT_EQ(entityTypeName(EntityClass::kDimensionRadial), L"Dimension");
    EXPECT_EQ(entityTypeName(EntityClass::kDimensionOrdinate), L"Dimension");
    EXPECT_EQ(entityTypeName(EntityClass::kSubDMesh), L"Mesh");
    EXPECT_EQ(entityTypeName(EntityClass::kFace), L"3DFace");
}

}  // namespace
}  // namespace veltarn
