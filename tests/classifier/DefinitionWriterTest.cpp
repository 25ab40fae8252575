#include "classifier/DefinitionWriter.h"
#include "classifier/PropertyKeywords.h"
#include "cad/editor/SystemVariableTable.h"
#include "classifier/ClassifierReader.h"
#include "host/Utf8.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace veltarn {
namespace {

ClassDef definition(std::wstring name, std::vector<std::wstring> types) {
    ClassDef def;
    def.name = std::move(name);
    def.types = std::move(types);
    return def;
}

std::wstring firstLine(const std::wstring& text) { return text.substr(0, text.find(L'\n')); }

TEST(DefinitionWriter, NumberIsTheLargestTypeDefaultUnlessTheClassifierHasOne) {
    std::wstring icon;
    EXPECT_EQ(firstLine(writeDefinition(definition(L"Label", {L"Text", L"Hatch"}), nullptr, 4, icon)),
              L"obj_name\tLabel\t1\t9000\tIcons/Text.png");
    EXPECT_EQ(icon, L"Icons/Text.png");
    EXPECT_EQ(firstLine(writeDefinition(definition(L"Area", {L"Hatch"}), nullptr, 4, icon)),
              L"obj_name\tArea\t1\t0\tIcons/Hatch.png");
    EXPECT_EQ(firstLine(writeDefinition(definition(L"Odd", {L"Widget"}), nullptr, 4, icon)),
              L"obj_name\tOdd\t1\t7000\tIcons/Widget.png");

    ClassDef existing = definition(L"Label", {L"Text"});
    existing.flag = false;
    existing.number = 123;
    existing.text = L"icons/label.png";
    EXPECT_EQ(firstLine(writeDefinition(definition(L"Label", {L"Text", L"Hatch"}), &existing, 4, icon)),
              L"obj_name\tLabel\t0\t123\ticons/label.png");
    EXPECT_EQ(icon, L"icons/label.png");

    EXPECT_EQ(firstLine(writeDefinition(definition(L"Nothing", {}), nullptr, 4, icon)), L"obj_name\tNothing\t1\t0");
    EXPECT_EQ(icon, L"");
}

TEST(DefinitionWriter, WritesSetPropertiesInOrderAndTablesWithTheirFields) {
    ClassDef def = definition(L"Well", {L"Circle", L"Point"});
    // Given out of order on purpose: the writer has its own order.
    ASSERT_TRUE(parseProperty(def.properties, L"circleradius", L"0.75", L""));
    ASSERT_TRUE(parseProperty(def.properties, L"lineweight", L"bylayer", L""));
    ASSERT_TRUE(parseProperty(def.properties, L"color", L"(10 20 30)", L"1,ByBlock"));
    ASSERT_TRUE(parseProperty(def.properties, L"layer", L"Water", L""));
    ASSERT_TRUE(parseProperty(def.properties, L"textjustification", L"topcenter", L""));
    ASSERT_TRUE(parseProperty(def.properties, L"pattern", L"?", L""));

    TableDef table{L"Wells", {makeKeyField(L"id")}};
    FieldDef depth;
    depth.name = L"depth";
    depth.description = L"Depth in metres";
    depth.type = FieldType::Real;
    depth.attributes = kAttributeRequired | kAttributeConst;
    depth.kind = ValueKind::Range;
    depth.value = FieldValue::fromReal(5);
    depth.values = {L"1", L"10"};
    FieldDef kind;
    kind.name = L"kind";
    kind.type = FieldType::Character;
    kind.kind = ValueKind::List;
    kind.values = {L"drilled", L"dug"};
    FieldDef note;
    note.name = L"note";
    note.description = L"Note";
    note.type = FieldType::Character;
    FieldDef where;
    where.name = L"where";
    where.description = L"Position";
    where.type = FieldType::Point;
    where.kind = ValueKind::Default;
    where.value = FieldValue::fromPoint({1, 2, 3});
    table.fields.insert(table.fields.end(), {depth, kind, note, where});
    def.tables.push_back(table);

    std::wstring icon;
    EXPECT_EQ(writeDefinition(def, nullptr, 2, icon),
              L"obj_name\tWell\t1\t8500\tIcons/Circle.png\n"
              L"\tobj_type\tCircle, Point\n"
              L"\t\tobj_prop\tcolor\t(10 20 30)\t1,ByBlock\n"
              L"\t\tobj_prop\tlayer\tWater\n"
              L"\t\tobj_prop\tlineWeight\tByLayer\n"
              L"\t\tobj_prop\tcircleMode\tCenter\n"
              L"\t\tobj_prop\tcircleRadius\t0.75\n"
              L"\t\tobj_prop\tpattern\t?\n"
              L"\t\tobj_prop\ttextJustification\tTopCenter\n"
              L"\tod_name\tWells\n"
              L"\t\tod_key\tid\n"
              L"\t\tod_fld\tdepth\tDepth in metres\tconst required Real\t5.00\t1:10\n"
              L"\t\tod_fld\tkind\t \tCharacter\t \tdrilled, dug\n"
              L"\t\tod_fld\tnote\tNote\tCharacter\n"
              L"\t\tod_fld\twhere\tPosition\t\t1.00,2.00,3.00\n");
}

TEST(DefinitionWriter, CircleModeOfItsOwnIsNotDoubled) {
    ClassDef def = definition(L"Ring", {L"Circle"});
    ASSERT_TRUE(parseProperty(def.properties, L"circlemode", L"2p", L""));
    ASSERT_TRUE(parseProperty(def.properties, L"circleradius", L"1", L""));
    std::wstring icon;
    std::wstring text = writeDefinition(def, nullptr, 0, icon);
    EXPECT_NE(text.find(L"\t\tobj_prop\tcircleMode\t2p\n\t\tobj_prop\tcircleRadius\t1\n"), std::wstring::npos) << text;
    EXPECT_EQ(text.find(L"Center"), std::wstring::npos);
}

TEST(DefinitionWriter, DecimalsFollowTheDrawingsLinearPrecision) {
    editor::SystemVariableTable variables;
    ASSERT_TRUE(variables.set(L"LUPREC", host::VariableValue::ofShort(1)));
    ClassDef def = definition(L"Ring", {L"Circle"});
    ASSERT_TRUE(parseProperty(def.properties, L"circleradius", L"2.26", L""));
    std::wstring icon;
    std::wstring text = writeDefinition(def, nullptr, linearPrecision(variables), icon);
    EXPECT_NE(text.find(L"\tcircleRadius\t2.3\n"), std::wstring::npos) << text;
}

// What the writer writes, the reader reads back to the same definition.
TEST(DefinitionWriter, ReaderReadsBackWhatItWrites) {
    const std::wstring fixtures = host::fromUtf8(VELTARN_SOURCE_DIR "/tests/classifier/data/");
    std::wstring messages;
    ClassifierReader reader([&](const std::wstring& text) { messages += text; });
    for (const wchar_t* name : {L"good_tables.txt", L"good_text_level.txt"}) {
        Classifier original = reader.read(fixtures + name);
        ASSERT_FALSE(reader.failed()) << host::toUtf8(messages);

        std::wstring text;
        for (const auto& [key, def] : original.objects()) {
            std::wstring icon;
            text += writeDefinition(def, &def, 6, icon);
        }
        auto path = std::filesystem::temp_directory_path() / "veltarn_written_classifier.txt";
        std::ofstream(path, std::ios::binary) << host::toUtf8(text);
        Classifier reread = reader.read(host::fromUtf8(path.string()));
        std::filesystem::remove(path);
        ASSERT_FALSE(reader.failed()) << host::toUtf8(messages) << host::toUtf8(text);

        ASSERT_EQ(reread.objectCount(), original.objectCount());
        for (const auto& [key, def] : original.objects()) {
            const ClassDef* back = reread.find(key);
            ASSERT_NE(back, nullptr) << host::toUtf8(key);
            EXPECT_EQ(back->name, def.name);
            EXPECT_EQ(back->flag, def.flag);
            EXPECT_EQ(back->number, def.number);
            EXPECT_EQ(back->types, def.types);
            EXPECT_EQ(back->properties, def.properties) << host::toUtf8(text);
            ASSERT_EQ(back->tables.size(), def.tables.size());
            for (std::size_t t = 0; t < def.tables.size(); ++t) {
                EXPECT_TRUE(back->tables[t].isIdenticalTo(def.tables[t])) << host::toUtf8(text);
            }
        }
    }
    EXPECT_EQ(messages, L"");
}

}  // namespace
}  // namespace veltarn
