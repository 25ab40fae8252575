#include "classifier/ClassifierReader.h"

#include "cad/editor/SystemVariableTable.h"
#include "classifier/MacroTable.h"
#include "host/LowerCase.h"
#include "host/Utf8.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace veltarn {
namespace {

const std::wstring kDataDir = host::fromUtf8(VELTARN_SOURCE_DIR "/tests/classifier/data");

struct Reading {
    Classifier classifier;
    std::wstring messages;
    bool failed = false;
};

Reading readFile(const std::wstring& path) {
    static editor::SystemVariableTable variables;
    Reading reading;
    ClassifierReader reader([&](const std::wstring& text) { reading.messages += text; }, &variables);
    reading.classifier = reader.read(path);
    reading.failed = reader.failed();
    return reading;
}

Reading readFixture(const std::wstring& name) { return readFile(kDataDir + L"/" + name); }

std::vector<std::wstring> namesOf(const std::vector<ClassNode>& nodes) {
    std::vector<std::wstring> names;
    for (const auto& node : nodes) names.push_back(node.name);
    return names;
}

using Names = std::vector<std::wstring>;

TEST(ClassifierReader, BuildsTheClassTreeWithMembersAndFlags) {
    Reading r = readFixture(L"good_nested_classes.txt");
    ASSERT_FALSE(r.failed) << host::toUtf8(r.messages);
    EXPECT_EQ(r.messages, L"");
    const ClassNode& root = r.classifier.root();
    EXPECT_EQ(namesOf(root.children), (Names{L"Transport", L"Water"}));
    EXPECT_EQ(root.members, Names{L"loose"});

    const ClassNode& transport = root.children[0];
    EXPECT_TRUE(transport.flag);
    EXPECT_EQ(transport.text, L"icons/transport.png");
    EXPECT_EQ(namesOf(transport.children), (Names{L"Paths", L"Rail"}));
    // Road is recorded in Transport when Paths opens, although it is finished inside Paths.
    EXPECT_EQ(transport.members, (Names{L"road", L"track"}));
    EXPECT_EQ(transport.children[0].members, Names{L"footpath"});
    EXPECT_FALSE(transport.children[0].flag);
    EXPECT_TRUE(transport.children[1].flag);  // 7 clamps to 1
    EXPECT_FALSE(root.children[1].flag);      // -3 clamps to 0

    const auto& objects = r.classifier.objects();
    ASSERT_EQ(objects.size(), 6u);
    EXPECT_TRUE(objects.at(L"road").flag);
    EXPECT_EQ(objects.at(L"road").name, L"Road");
    EXPECT_EQ(objects.at(L"road").number, 5000);
    EXPECT_EQ(objects.at(L"road").text, L"Icons/Line.png");
    EXPECT_EQ(objects.at(L"road").types, (Names{L"Line", L"Polyline"}));
    EXPECT_FALSE(objects.at(L"footpath").flag);  // its class's flag is off
    EXPECT_TRUE(objects.at(L"track").flag);      // the switch is on again after "/class"
    EXPECT_FALSE(objects.at(L"river").flag);
    EXPECT_TRUE(objects.at(L"loose").flag);
    EXPECT_EQ(objects.at(L"loose").number, -1);
    EXPECT_EQ(r.classifier.classCount(), 4);
}

TEST(ClassifierReader, ReadsTablesWithTheirFields) {
    Reading r = readFixture(L"good_tables.txt");
    ASSERT_FALSE(r.failed) << host::toUtf8(r.messages);
    EXPECT_EQ(r.messages, L"");
    const ClassDef* road = r.classifier.find(L"road");
    ASSERT_NE(road, nullptr);
    ASSERT_EQ(road->tables.size(), 2u);
    const TableDef& roads = road->tables[0];
    EXPECT_TRUE(roads.isWellFormed());
    ASSERT_EQ(roads.fields.size(), 6u);

    const FieldDef& key = roads.fields[0];
    EXPECT_EQ(key.kind, ValueKind::Key);
    EXPECT_EQ(key.type, FieldType::Character);
    EXPECT_EQ(key.value.text(), L"$(obj_name)");

    const FieldDef& width = roads.fields[1];
    EXPECT_EQ(width.description, L"Width in metres");
    EXPECT_EQ(width.attributes, kAttributeRequired);
    EXPECT_EQ(width.type, FieldType::Real);
    EXPECT_EQ(width.kind, ValueKind::Range);
    EXPECT_EQ(width.values, (Names{L"1", L"10"}));  // the macro's reference in any case
    EXPECT_EQ(width.value.realValue(), 5.0);

    const FieldDef& surface = roads.fields[2];
    EXPECT_EQ(surface.kind, ValueKind::List);
    EXPECT_EQ(surface.values, (Names{L"asphalt", L"gravel"}));  // split after the macro expands

    const FieldDef& code = roads.fields[3];
    EXPECT_EQ(code.kind, ValueKind::List);
    EXPECT_EQ(code.values, (Names{L"1:2", L"3"}));  // the escaped colon is kept

    EXPECT_EQ(roads.fields[4].kind, ValueKind::None);
    EXPECT_EQ(roads.fields[4].attributes, kAttributeNotEmpty);
    EXPECT_FALSE(roads.fields[4].hasDefault());
    EXPECT_EQ(roads.fields[5].kind, ValueKind::Default);
    EXPECT_EQ(roads.fields[5].value.integerValue(), 2);

    // autoconst marks single-value lists whose default is that value, and only while it is on.
    const TableDef& owner = road->tables[1];
    EXPECT_EQ(owner.fields[1].attributes, kAttributeConst);
    EXPECT_EQ(owner.fields[2].attributes, 0u);
    EXPECT_EQ(owner.fields[3].attributes, 0u);

    // The same table again (name in other case) is accepted and counted once.
    EXPECT_EQ(r.classifier.tableCount(), 2);
    EXPECT_EQ(r.classifier.find(L"street")->tables.size(), 1u);
}

TEST(ClassifierReader, TextLevelCommentsEscapesLineEndsAndMacros) {
    Reading r = readFixture(L"good_text_level.txt");
    ASSERT_FALSE(r.failed) << host::toUtf8(r.messages);
    EXPECT_EQ(r.messages, L"");
    ASSERT_EQ(r.classifier.root().children.size(), 1u);
    EXPECT_EQ(r.classifier.root().children[0].name, L"Signs");
    const ClassDef* sign = r.classifier.find(L"stop sign");
    ASSERT_NE(sign, nullptr);
    EXPECT_EQ(sign->properties.text.value(), L"STOP\tNOW");
    EXPECT_EQ(sign->properties.layer.value(), L"Signs");
    // $(obj_name) and unknown references stay for later; an unclosed "$(" ends the expansion.
    EXPECT_EQ(sign->tables[0].fields[1].value.text(), L"$(obj_name)-$(unknown)-$(");
}

TEST(ClassifierReader, WarningsCarryTheirLineAndLetTheReadGoOn) {
    Reading r = readFixture(L"good_with_warnings.txt");
    EXPECT_FALSE(r.failed);
    EXPECT_EQ(r.messages,
              L"3: warning: redefinition of 'Colour'\n"
              L"4: warning: recursive definition\n"
              L"5: error: invalid definition\n"
              L"8: warning: invalid 'obj_prop' definition\n"
              L"9: warning: invalid 'obj_prop' definition\n"
              L"11: warning: invalid 'obj_prop' definition\n"
              L"12: warning: invalid variable 'NOSUCH'\n"
              L"16: warning: table 'Bad' ill-formed\n");
    EXPECT_EQ(r.classifier.objectCount(), 2);
    // The ill-formed table is kept; the refused colour left the property unset.
    const ClassDef* road = r.classifier.find(L"road");
    EXPECT_EQ(road->tables.size(), 1u);
    EXPECT_FALSE(road->properties.color.present());
}

TEST(ClassifierReader, VariablesAreTypedByTheHost) {
    Reading r = readFixture(L"good_variables.txt");
    ASSERT_FALSE(r.failed) << host::toUtf8(r.messages);
    const auto& global = r.classifier.variables();
    ASSERT_EQ(global.size(), 2u);
    EXPECT_EQ(global[0].name, L"LUPREC");
    EXPECT_EQ(global[0].value.integer, 2);
    EXPECT_EQ(global[1].value.text, L"Roads and paths");

    const auto& own = r.classifier.find(L"road")->variables;
    ASSERT_EQ(own.size(), 3u);
    EXPECT_EQ(own[0].value.real, 0.5);
    EXPECT_EQ(own[1].value.point, (host::Point3d{1, 2, 3}));  // empty items dropped
    EXPECT_EQ(own[2].value.type, host::VariableType::kPoint2d);
    EXPECT_EQ(own[2].value.point, (host::Point3d{4, 5, 0}));
}

TEST(ClassifierReader, ResourceKeywordsMatchFilesBesideTheClassifier) {
    Reading r = readFixture(L"good_resources.txt");
    ASSERT_FALSE(r.failed) << host::toUtf8(r.messages);
    // Roads.DWG is passed over without a message: the extension test is case-sensitive.
    EXPECT_EQ(r.messages, L"");
    const auto& blocks = r.classifier.externalBlocks();
    ASSERT_EQ(blocks.size(), 2u);
    std::wstring tree = host::toLower(kDataDir + L"/blocks/tree.dxf");
    ASSERT_EQ(blocks.count(tree), 1u);
    EXPECT_EQ(blocks.at(tree), L"tree");
}

// One bad file, and every message it must print: an error stops the read and empties the result.
struct BadFile {
    const char* name;
    const wchar_t* messages;  // "{dir}" stands for the data folder
};

class BadClassifier : public testing::TestWithParam<BadFile> {};

TEST_P(BadClassifier, StopsWithItsMessageAndLeavesNothing) {
    const BadFile& bad = GetParam();
    Reading r = readFixture(host::fromUtf8(bad.name) + L".txt");
    std::wstring expected = bad.messages;
    if (auto at = expected.find(L"{dir}"); at != std::wstring::npos) expected.replace(at, 5, kDataDir);
    EXPECT_EQ(r.messages, expected);
    EXPECT_TRUE(r.failed);
    EXPECT_TRUE(r.classifier.empty());
    EXPECT_EQ(r.classifier.tableCount(), 0);
    EXPECT_EQ(r.classifier.path(), kDataDir + L"/" + host::fromUtf8(bad.name) + L".txt");
}

const BadFile kBadFiles[] = {
    {"bad_unknown_keyword", L"3: error: invalid syntax: 'colour'\n"},
    {"bad_missing_end_class", L"error: invalid class definition\n"},
    {"bad_class_redefined", L"4: error: redefinition of 'ROADS'\n"},
    {"bad_end_class_without_class", L"4: error: invalid 'class' definition\n"},
    {"bad_class_columns", L"2: error: invalid 'class' definition\n"},
    {"bad_object_without_type", L"3: error: invalid object definition\n"},
    {"bad_object_asks_its_type", L"3: error: invalid object definition\n"},
    {"bad_object_redefined", L"6: error: redefinition of 'ROAD'\n"},
    {"bad_object_name_too_long", L"2: error: invalid 'obj_name' definition\n"},
    {"bad_type_without_object", L"2: error: 'obj_name' undefined\n"},
    {"bad_type_list_empty_item", L"3: error: invalid 'obj_type' definition\n"},
    {"bad_property_before_type", L"3: error: 'obj_type' undefined\n"},
    {"bad_key_without_table", L"4: error: 'od_name' undefined\n"},
    {"bad_table_name_refused_char", L"4: error: invalid 'od_name' definition\n"},
    {"bad_table_name_too_long", L"4: error: invalid 'od_name' definition\n"},
    {"bad_field_redefined", L"7: error: redefinition of od_fld 'WIDTH'\n"},
    {"bad_field_attributes", L"5: error: invalid 'od_fld' definition\n"},
    {"bad_field_range_three_items", L"5: error: invalid 'od_fld' definition\n"},
    {"bad_conflicting_tables", L"12: error: conflicting definitions for table 'roads'\n"},
    {"bad_define_columns", L"2: error: invalid definition\n"},
    {"bad_autoconst_columns", L"2: error: invalid syntax: 'autoconst'\n"},
    {"bad_variable_point_items", L"2: error: invalid 'variable' definition\n"},
    {"bad_invalid_path", L"error: invalid path: '{dir}/missing/*.dwg'\n"},
    {"bad_warnings_then_error", L"4: warning: invalid 'obj_prop' definition\n5: error: invalid 'obj_name' definition\n"},
};

INSTANTIATE_TEST_SUITE_P(Files, BadClassifier, testing::ValuesIn(kBadFiles),
                         [](const testing::TestParamInfo<BadFile>& info) { return std::string(info.param.name).substr(4); });

class ClassifierReaderFile : public testing::Test {
protected:
    std::filesystem::path dir_ = std::filesystem::temp_directory_path() /
                                 ("veltarn_reader_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    void SetUp() override { std::filesystem::create_directories(dir_); }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    std::wstring write(const std::string& name, const std::string& text) {
        std::ofstream(dir_ / name, std::ios::binary) << text;
        return host::fromUtf8((dir_ / name).string());
    }
};

TEST_F(ClassifierReaderFile, LongLinesComeInPiecesThatCountAsLines) {
    // 10,239 characters fill the buffer; the line end then arrives as a line of its own (line 2),
    // and the rest of a longer line is parsed as the next line.
    std::string full = "#" + std::string(10238, 'x') + "\n";
    std::string longer = "#" + std::string(10238, 'y') + "colour\t1\n";
    Reading r = readFile(write("long.txt", full + "class\tA\t1\n/class\n" + longer));
    EXPECT_EQ(r.messages, L"6: error: invalid syntax: 'colour'\n");
}

TEST_F(ClassifierReaderFile, UnopenableFileIsEmptyAndSilent) {
    Reading r = readFile(host::fromUtf8((dir_ / "absent.txt").string()));
    EXPECT_TRUE(r.failed);
    EXPECT_EQ(r.messages, L"");
    EXPECT_TRUE(r.classifier.empty());
    r = readFile(host::fromUtf8(dir_.string()));  // a folder opens but does not read
    EXPECT_TRUE(r.failed);
    EXPECT_EQ(r.messages, L"");
}

TEST(MacroTable, ExpandsNestedValuesAndStopsOnACircle) {
    MacroTable macros;
    macros.set(MacroTable::referenceOf(L"Outer"), L"<$(INNER)>");
    macros.set(MacroTable::referenceOf(L"inner"), L"in");
    EXPECT_EQ(macros.expand(L"$(outer) $(OUTER) $(none) $(obj_name)"), L"<in> <in> $(none) $(obj_name)");

    // The reader's checks keep files from making a circle; the table itself must still end.
    macros.set(L"$(a)", L"x$(b)");
    macros.set(L"$(b)", L"$(a)");
    std::wstring expanded = macros.expand(L"$(a)").value();
    EXPECT_EQ(expanded.substr(0, 3), L"xxx");
}

}  // namespace
}  // namespace veltarn
