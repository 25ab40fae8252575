// The reader on inputs whose cost once grew faster than their size: macros that double at each
// level, tables of very many fields, many objects sharing one table.
#include "classifier/ClassifierReader.h"

#include "cad/editor/SystemVariableTable.h"
#include "classifier/MacroTable.h"
#include "host/Utf8.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace veltarn {
namespace {

namespace fs = std::filesystem;

// Macros m0 .. m`levels`: each level's value is the next level's reference twice.
MacroTable doubling(int levels, const std::wstring& last) {
    MacroTable macros;
    for (int i = 0; i < levels; ++i) {
        const std::wstring next = L"$(m" + std::to_wstring(i + 1) + L")";
        macros.set(MacroTable::referenceOf(L"m" + std::to_wstring(i)), next + next);
    }
    macros.set(MacroTable::referenceOf(L"m" + std::to_wstring(levels)), last);
    return macros;
}

TEST(MacroLimits, DoublingMacrosExpandInFullWithinTheLimitAndNotBeyond) {
    const std::optional<std::wstring> twenty = doubling(20, L"ab$(none)").expand(L"<$(M0)>");
    ASSERT_TRUE(twenty);
    ASSERT_EQ(twenty->size(), 2 + (std::size_t{1} << 20) * 9);
    EXPECT_EQ(twenty->substr(0, 20), L"<ab$(none)ab$(none)a");
    EXPECT_EQ(twenty->substr(twenty->size() - 10), L"ab$(none)>");

    EXPECT_FALSE(doubling(24, L"abcd").expand(L"$(m0)")) << "64 Mi characters is past the limit";
    EXPECT_FALSE(doubling(30, L"").expand(L"$(m0)")) << "a billion replacements that write nothing are too";
    EXPECT_EQ(doubling(3, L"x").expand(L"$(m0"), L"$(m0") << "a reference without its end stays as it is";
}

TEST(FieldList, CopiesShareTheirFieldsUntilOneIsChanged) {
    TableDef first{L"Roads", {makeKeyField(L"id")}};
    first.fields.push_back(FieldDef{});
    first.fields.back().name = L"width";
    TableDef second = first;
    EXPECT_TRUE(second.isIdenticalTo(first));
    second.fields[1].name = L"lanes";
    EXPECT_EQ(first.fields[1].name, L"width") << "a change to the copy leaves the original alone";
    EXPECT_EQ(second.fields[1].name, L"lanes");
    EXPECT_FALSE(second.isIdenticalTo(first));
    second.fields.pop_back();
    EXPECT_EQ(first.fields.size(), 2u);
    EXPECT_EQ(second.fields.size(), 1u);
}

class LargeClassifier : public ::testing::Test {
protected:
    void SetUp() override {
        file_ = fs::temp_directory_path() / ("veltarn_large_classifier_" + std::to_string(::getpid()) + ".txt");
    }
    void TearDown() override { fs::remove(file_); }

    Classifier read(const std::string& text, std::wstring& messages, bool& failed) {
        std::ofstream(file_, std::ios::binary) << text;
        editor::SystemVariableTable variables;
        ClassifierReader reader([&](const std::wstring& message) { messages += message; }, &variables);
        Classifier classifier = reader.read(host::fromUtf8(file_.string()));
        failed = reader.failed();
        return classifier;
    }

    fs::path file_;
};

TEST_F(LargeClassifier, ATableOfManyFieldsIsReadWholeAndARepeatedFieldIsStillFound) {
    std::string text = "class\tA\t1\n\tobj_name\tB\t1\t1\n\t\tobj_type\tLine\n\t\tod_name\tBIG\n\t\t\tod_key\tid\n";
    for (int i = 0; i < 100000; ++i) text += "\t\t\tod_fld\tf" + std::to_string(i) + "\tField\tinteger\t" + std::to_string(i) + "\n";
    std::wstring messages;
    bool failed = false;
    Classifier classifier = read(text + "/class\n", messages, failed);
    ASSERT_FALSE(failed) << host::toUtf8(messages);
    const ClassDef* object = classifier.find(L"b");
    ASSERT_TRUE(object);
    ASSERT_EQ(object->tables.size(), 1u);
    ASSERT_EQ(object->tables[0].fields.size(), 100001u);
    EXPECT_EQ(object->tables[0].fields[100000].name, L"f99999");

    text += "\t\t\tod_fld\tF5000\tAgain\tinteger\t1\n/class\n";
    messages.clear();
    read(text, messages, failed);
    EXPECT_TRUE(failed);
    EXPECT_EQ(messages, L"100006: error: redefinition of od_fld 'F5000'\n");
}

TEST_F(LargeClassifier, ObjectsOfOneTableKeepTheirOwnNamesAndConflictsAreStillFound) {
    std::string text = "class\tA\t1\n";
    for (int i = 0; i < 3; ++i) {
        text += "\tobj_name\tB" + std::to_string(i) + "\t1\t1\n\t\tobj_type\tLine\n";
        text += std::string("\t\tod_name\t") + (i == 1 ? "roads" : "Roads") + "\n\t\t\tod_key\tid\n\t\t\tod_fld\twidth\tWidth\treal\t7\n";
    }
    std::wstring messages;
    bool failed = false;
    Classifier classifier = read(text + "/class\n", messages, failed);
    ASSERT_FALSE(failed) << host::toUtf8(messages);
    EXPECT_EQ(classifier.find(L"b1")->tables[0].name, L"roads");
    EXPECT_EQ(classifier.find(L"b2")->tables[0].fields[1].name, L"width");

    text += "\tobj_name\tC\t1\t1\n\t\tobj_type\tLine\n\t\tod_name\tROADS\n\t\t\tod_key\tid\n\t\t\tod_fld\twidth\tWidth\tinteger\t7\n";
    messages.clear();
    read(text + "/class\n", messages, failed);
    EXPECT_TRUE(failed);
    EXPECT_NE(messages.find(L"ROADS"), std::wstring::npos) << host::toUtf8(messages);
}

}  // namespace
}  // namespace veltarn
