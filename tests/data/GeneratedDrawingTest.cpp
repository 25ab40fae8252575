// Our fixture tools keep their promises: the generator's drawings are repeatable, clean for the
// independent auditor, and hold object data the store reads as the generator wrote it; the
// benchmark's value-rules script finds the faults the generator made; the audit check finds a
// damaged drawing.
#include "ExternalTools.h"
#include "ProgramRunner.h"
#include "ScratchFiles.h"
#include "TestDrawing.h"

#include "data/ObjectData.h"
#include "data/ObjectDataTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

using namespace veltarn;
using test::TestDrawing;

namespace {

namespace fs = std::filesystem;

using testtools::readBytes;

std::string generate(const fs::path& out, const std::string& arguments) {
    std::string output;
    const std::string script = testtools::quoted((testtools::toolsDir() / "gen_dxf.py").string());
    return testtools::runPython(script + " " + arguments + " " + testtools::quoted(out.string()), &output) == 0 ? "" : output;
}

TEST(FixtureGenerator, SameSeedSameBytesAndEveryFormAuditsClean) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    const fs::path dir = test::scratchDir("generator-repeatable");
    ASSERT_EQ(generate(dir / "a.dxf", "30 --kinds all --sortents 5 --seed 7"), "");
    ASSERT_EQ(generate(dir / "b.dxf", "30 --kinds all --sortents 5 --seed 7"), "");
    ASSERT_EQ(generate(dir / "c.dxf", "30 --kinds all --sortents 5 --seed 8"), "");
    EXPECT_TRUE(readBytes(dir / "a.dxf") == readBytes(dir / "b.dxf")) << "the same seed gave different files";
    EXPECT_FALSE(readBytes(dir / "a.dxf") == readBytes(dir / "c.dxf")) << "another seed gave the same file";
    EXPECT_EQ(testtools::audit(dir / "a.dxf"), "");
    ASSERT_EQ(generate(dir / "r12.dxf", "20 --kinds all --version R12 --binary"), "");
    EXPECT_TRUE(readBytes(dir / "r12.dxf").starts_with("AutoCAD Binary DXF"));
    EXPECT_EQ(testtools::audit(dir / "r12.dxf"), "");
}

TEST(FixtureGenerator, ObjectDataReadsBackThroughTheStore) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    const fs::path dir = test::scratchDir("generator-data");
    ASSERT_EQ(generate(dir / "d.dxf", "24 --data all --tables 3 --layers 1"), "");
    auto drawing = TestDrawing::read(dir / "d.dxf");
    host::Database& db = drawing->db();
    std::vector<std::wstring> tables;
    ASSERT_EQ(listTables(db, kListTablesMode, tables), kOdOk);
    EXPECT_EQ(tables, (std::vector<std::wstring>{L"ROADS", L"PIPES", L"CLASS_03"}));

    int entities = 0, records = 0;
    for (host::ObjectId entity : db.blockEntities(db.modelSpace())) {
        ObjectData cursor(db);
        ASSERT_EQ(cursor.open(entity), kOdOk) << "every entity has a record with --data all";
        ++entities;
        for (ObjectDataRecord record; !cursor.atEnd(); cursor.next()) {
            ASSERT_EQ(cursor.read(record), kOdOk);
            ASSERT_FALSE(record.fields.empty());
            EXPECT_EQ(record.fields[0].name(), L"ID");
            // The key holds the class's display name when no fault was asked for.
            EXPECT_TRUE(record.fields[0].displayText() == L"Roads" || record.fields[0].displayText() == L"Pipes" ||
                        record.fields[0].displayText() == L"Class 03")
                << record.table << ": " << record.fields[0].displayText().size();
            ++records;
        }
    }
    EXPECT_EQ(entities, 24);
    EXPECT_GT(records, entities) << "some entities carry two records";
}

// The generator's faulty entities are exactly those the benchmark's value-rules script finds, and
// a classifier that types a field otherwise makes each value of that field the wrong type.
TEST(FixtureGenerator, ValueRulesFindTheEntitiesMadeFaulty) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    const fs::path dir = test::scratchDir("generator-faulty");
    const std::string classifier = testtools::quoted((dir / "classes.txt").string());
    ASSERT_EQ(generate(dir / "d.dxf", "240 --data all --tables 5 --faulty 0.2 --one-record --classifier " + classifier +
                                          " --faulty-list " + testtools::quoted((dir / "faulty.txt").string())),
              "");

    auto drawing = TestDrawing::read(dir / "d.dxf");
    host::Database& db = drawing->db();
    int entities = 0, roads = 0;
    for (host::ObjectId entity : db.blockEntities(db.modelSpace())) {
        ObjectData cursor(db);
        ObjectDataRecord record;
        ASSERT_EQ(cursor.open(entity), kOdOk);
        ASSERT_EQ(cursor.read(record), kOdOk);
        EXPECT_TRUE(cursor.atEnd()) << "--one-record gave an entity a second record";
        roads += record.table == L"ROADS";
        ++entities;
    }
    EXPECT_EQ(entities, 240);

    const std::string faulty = readBytes(dir / "faulty.txt");
    const auto faultyCount = std::count(faulty.begin(), faulty.end(), '\n');
    EXPECT_GT(faultyCount, 20);
    EXPECT_LT(faultyCount, 80);

    const std::string script = testtools::quoted(VELTARN_SOURCE_DIR "/bench/commands/value_rules.py") + " " +
                               testtools::quoted((dir / "d.dxf").string());
    std::string found;
    // Every record, as the generator counts its faults: empty keys included.
    ASSERT_EQ(testtools::runPython(script + " " + classifier + " --handles --every-record", &found), 0) << found;
    EXPECT_EQ(found.substr(0, found.find("illegal: ")), faulty);
    EXPECT_NE(found.find("illegal: " + std::to_string(faultyCount) + "\n"), std::string::npos) << found;
    EXPECT_NE(found.find("wrong type 0,"), std::string::npos) << found;

    // Records whose key names no class are another program's: the script passes them over as
    // VELTARN_ASSERT does, so the two count the same objects.
    ASSERT_EQ(testtools::runPython(script + " " + classifier, &found), 0) << found;
    const std::string counted = found.substr(found.find("illegal: ") + 9);
    const testtools::ProgramRun run = testtools::runVeltarn(
        {(dir / "d.dxf").string(), "--command", "VELTARN_LOAD\n" + (dir / "classes.txt").string() + "\nVELTARN_ASSERT 1\n\n"});
    EXPECT_NE(run.out.find("Selected: " + counted.substr(0, counted.find('\n'))), std::string::npos)
        << run.out << "\n" << found;

    std::string classes = readBytes(dir / "classes.txt");
    const std::string lanes = "LANES\tLanes\tinteger";
    ASSERT_NE(classes.find(lanes), std::string::npos);
    classes.replace(classes.find(lanes), lanes.size(), "LANES\tLanes\treal");
    std::ofstream(dir / "retyped.txt", std::ios::binary) << classes;
    ASSERT_EQ(testtools::runPython(script + " " + testtools::quoted((dir / "retyped.txt").string()) + " --every-record",
                                   &found),
              0)
        << found;
    EXPECT_NE(found.find("wrong type " + std::to_string(roads) + ","), std::string::npos)
        << roads << " roads: " << found;
}

TEST(AuditCheck, FindsADanglingEntryAndAnUnreadableFile) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    const fs::path dir = test::scratchDir("audit-check");
    ASSERT_EQ(generate(dir / "good.dxf", "6"), "");
    // Point the named objects dictionary's entry "ODEMUDATA" at a handle no object has.
    std::string text = readBytes(dir / "good.dxf");
    const std::size_t entry = text.find("ODEMUDATA\n350\n");
    ASSERT_NE(entry, std::string::npos);
    const std::size_t value = entry + std::string("ODEMUDATA\n350\n").size();
    text.replace(value, text.find('\n', value) - value, "FFFFF");
    std::ofstream(dir / "broken.dxf", std::ios::binary) << text;
    EXPECT_NE(testtools::audit(dir / "broken.dxf").find("ODEMUDATA"), std::string::npos);

    std::ofstream(dir / "truncated.dxf", std::ios::binary) << text.substr(0, text.size() / 3);
    EXPECT_NE(testtools::audit(dir / "truncated.dxf").find("unreadable"), std::string::npos);
}

}  // namespace
