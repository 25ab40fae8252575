// veltarn check: drawings checked in bulk against a classifier, the summary, the reports a script
// reads (JSON Lines, CSV) and the exit status. The drawings are real files: the selection case,
// whose objects are known one by one, and drawings of the generator with known faulty objects.
#include <unistd.h>

#include <set>
#include <sstream>

#include "ProgramRun.h"

namespace {

using namespace veltarn::e2e;
namespace testtools = veltarn::testtools;

const fs::path kCases = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/cases";
const fs::path kGolden = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/bulk";

class BulkCheck : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = fs::temp_directory_path() / ("veltarn_bulk_" + std::to_string(::getpid()) + "_" + info->name());
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        fs::copy_file(kCases / "selection.in.dxf", dir_ / "selection.dxf");
        fs::copy_file(kCases / "selection.classes.txt", dir_ / "selection.classes.txt");
    }
    void TearDown() override { fs::remove_all(dir_); }

    // `veltarn check ARGUMENTS` in the test's folder, with a home of its own (reading a classifier
    // brings its patterns into the user's files); standard error after the heading "--- stderr".
    ShellRun check(const std::string& arguments) { return veltarn("check " + arguments); }
    ShellRun veltarn(const std::string& arguments) {
        ShellRun run = runShell("cd " + quote(dir_.string()) + " && XDG_CONFIG_HOME=config " +
                                quote(kProgram.string()) + " " + arguments + " </dev/null 2>stderr.txt");
        run.out += "--- stderr\n" + readFile(dir_ / "stderr.txt");
        return run;
    }

    // A generated drawing with object data on every object, a share of it faulty, its classifier
    // and the handles of its faulty objects, all under `name` in the test's folder.
    void generate(const std::string& name, int count, double faulty) {
        ASSERT_EQ(testtools::missingEzdxf(), "");
        std::string output;
        const int code = testtools::runPython(
            quote((testtools::toolsDir() / "gen_dxf.py").string()) + " " + std::to_string(count) + " " +
                quote((dir_ / (name + ".dxf")).string()) + " --data all --tables 3 --one-record --faulty " +
                std::to_string(faulty) + " --classifier " + quote((dir_ / (name + ".txt")).string()) +
                " --faulty-list " + quote((dir_ / (name + ".faulty")).string()),
            &output);
        ASSERT_EQ(code, 0) << output;
    }

    fs::path dir_;
};

TEST_F(BulkCheck, TheSelectionDrawingsFindingsMatchTheirGoldenReports) {
    const ShellRun run = check("--classifier selection.classes.txt --report out.jsonl --report out.csv selection.dxf");
    EXPECT_EQ(run.exitCode, 1) << run.out;
    expectGolden(kGolden / "selection.summary", run.out, "the summary");
    expectGolden(kGolden / "selection.jsonl", readFile(dir_ / "out.jsonl"), "the JSON Lines report");
    expectGolden(kGolden / "selection.csv", readFile(dir_ / "out.csv"), "the CSV report");
    // The case's objects as the stat command counts them: 5 without data, 3 with data of no class.
    EXPECT_NE(run.out.find("selection.dxf"), std::string::npos);
    std::istringstream rows(run.out);
    std::string header, row, drawing;
    std::getline(rows, header);
    std::getline(rows, row);
    std::istringstream cells(row);
    int objects = 0, valid = 0, faulty = 0, unclassified = 0, foreign = 0;
    cells >> drawing >> objects >> valid >> faulty >> unclassified >> foreign;
    EXPECT_EQ(objects, 16);
    EXPECT_EQ(unclassified, 5);
    EXPECT_EQ(foreign, 3);
    EXPECT_EQ(valid + faulty, 8);  // the valid-keyed ones: 4 with illegal values, 1 with a foreign record too
}

// A script reads the report with a JSON parser: exactly the eight keys on every line, text that
// needs escaping (a drawing named with quotes, a comma, a backslash and non-ASCII letters) read
// back as it was, and the objects with illegal values (or an empty key, which names no class) exactly
// those the generator made faulty.
TEST_F(BulkCheck, AJsonLinesReportReadsBackWithAJsonParser) {
    generate("gen", 60, 0.3);
    const std::string name = "a \"b\", c\\d \xc3\xa9t\xc3\xa9.dxf";
    fs::rename(dir_ / "gen.dxf", dir_ / name);
    const ShellRun run = check("--classifier gen.txt --report out.jsonl --report out.csv " + quote(name));
    EXPECT_EQ(run.exitCode, 1) << run.out;

    const std::string script =
        "import json, sys\n"
        "keys = ['drawing', 'handle', 'type', 'layer', 'class', 'code', 'message', 'expected']\n"
        "faulty = set()\n"
        "for line in open(sys.argv[1], encoding='utf-8'):\n"
        "    finding = json.loads(line)\n"
        "    assert list(finding) == keys, list(finding)\n"
        "    assert finding['drawing'] == sys.argv[3], finding['drawing']\n"
        "    if finding['code'] in ('not-in-list', 'out-of-range', 'empty-value', 'key-mismatch', 'empty-required', 'foreign-record'):\n"
        "        faulty.add(finding['handle'])\n"
        "expected = set(open(sys.argv[2]).read().split())\n"
        "print('missed', sorted(expected - faulty), 'extra', sorted(faulty - expected))\n";
    writeFile(dir_ / "read.py", script);
    std::string output;
    const int code = testtools::runPython(quote((dir_ / "read.py").string()) + " " + quote((dir_ / "out.jsonl").string()) +
                                              " " + quote((dir_ / "gen.faulty").string()) + " " + quote(name),
                                          &output);
    EXPECT_EQ(code, 0) << output;
    EXPECT_EQ(output, "missed [] extra []\n");
    ASSERT_FALSE(readFile(dir_ / "gen.faulty").empty());

    // The CSV report: the header, and the drawing's name quoted with its quotes doubled.
    const std::string csv = readFile(dir_ / "out.csv");
    EXPECT_EQ(csv.rfind("drawing,handle,type,layer,class,code,message,expected\r\n", 0), 0u);
    EXPECT_NE(csv.find("\r\n\"a \"\"b\"\", c\\d \xc3\xa9t\xc3\xa9.dxf\","), std::string::npos);
}

// The drawing's audit findings are findings on their objects; the classifier's messages are
// findings of the drawing it was read against, and one that cannot be read against a drawing
// leaves that drawing's objects unchecked, the status 3. The drawings are never written.
TEST_F(BulkCheck, AuditFindingsAndTheReadersMessagesAreReported) {
    const fs::path source = VELTARN_SOURCE_DIR;
    fs::copy_file(source / "tests/cad/audit/data/bad_missing_layer.dxf", dir_ / "ghost.dxf");
    fs::copy_file(source / "tests/data/data/good_records.dxf", dir_ / "records.dxf");
    fs::copy_file(source / "tests/e2e/checks/table_mismatch.txt", dir_ / "mismatch.txt");
    const std::string ghost = readFile(dir_ / "ghost.dxf");

    const ShellRun audited = check("--classifier selection.classes.txt --report out.csv ghost.dxf");
    EXPECT_EQ(audited.exitCode, 1) << audited.out;
    EXPECT_NE(readFile(dir_ / "out.csv").find("\r\nghost.dxf,91,Line,GHOST,,audit-missing-layer,"
                                              "\"LINE 91: layer \"\"GHOST\"\" is not defined\",\r\n"),
              std::string::npos)
        << readFile(dir_ / "out.csv");
    EXPECT_EQ(readFile(dir_ / "ghost.dxf"), ghost);

    // An audit finding on an object-data record is a finding on the entity that carries it.
    fs::copy_file(source / "tests/cad/audit/data/bad_od_value_type.dxf", dir_ / "od.dxf");
    ASSERT_EQ(check("--classifier selection.classes.txt --report od.csv od.dxf").exitCode, 1);
    EXPECT_NE(readFile(dir_ / "od.csv").find("\r\nod.dxf,9C,Line,LAYER_00,,audit-od-value-type,\"LINE 9C: object data"),
              std::string::npos)
        << readFile(dir_ / "od.csv");

    const ShellRun mismatch = check("--classifier mismatch.txt --report out.csv records.dxf");
    EXPECT_EQ(mismatch.exitCode, 3) << mismatch.out;
    EXPECT_EQ(readFile(dir_ / "out.csv"),
              "drawing,handle,type,layer,class,code,message,expected\r\n"
              "records.dxf,,,,,classifier-message,14: error: table 'ROADS' does not match existing definition,\r\n");
    EXPECT_NE(mismatch.out.find("\nrecords.dxf            4            -            -            -            -            0\n"),
              std::string::npos)
        << mismatch.out;
}

// A class stricter about its graphic properties than the drawing: the objects that disagree with
// it are faulty, with what they have and what the class asks.
TEST_F(BulkCheck, PropertiesThatDisagreeWithTheClassAreFindings) {
    std::string classes = readFile(dir_ / "selection.classes.txt");
    replaceAll(classes, "layer\tLAYER_00\tLAYER_01", "layer\tLAYER_00");
    replaceAll(classes, "Line,Circle,Arc,Polyline,Text,BlockReference,Point", "Line,Circle,Arc,Text,BlockReference,Point");
    writeFile(dir_ / "strict.txt", classes);
    const ShellRun run = check("--classifier strict.txt --report out.csv selection.dxf");
    EXPECT_EQ(run.exitCode, 1) << run.out;
    const std::string csv = readFile(dir_ / "out.csv");
    EXPECT_NE(csv.find("\r\nselection.dxf,C0,Point,LAYER_01,Roads,wrong-property,\"layer: found \"\"LAYER_01\"\"\",LAYER_00\r\n"),
              std::string::npos)
        << csv;
    EXPECT_NE(csv.find("\r\nselection.dxf,A6,Polyline,LAYER_00,Pipes,wrong-entity-type,\"type: found \"\"Polyline\"\"\","
                       "\"Line, Circle, Arc, Text, BlockReference, Point\"\r\n"),
              std::string::npos)
        << csv;
    // C0 was valid against the case's own classes; now it is faulty.
    EXPECT_NE(run.out.find("\nselection.dxf           16            2            6            5            3            0\n"),
              std::string::npos)
        << run.out;
}

// Several workers give what one gives, in the order the drawings were named.
TEST_F(BulkCheck, WorkersReportInTheOrderTheDrawingsWereGiven) {
    generate("g", 60, 0.3);
    std::string drawings;
    for (const char* name : {"g1.dxf", "s1.dxf", "g2.dxf", "s2.dxf", "g3.dxf"}) {
        fs::copy_file(dir_ / (name[0] == 'g' ? "g.dxf" : "selection.dxf"), dir_ / name);
        drawings += std::string(" ") + name;
    }
    const ShellRun one = check("--classifier g.txt --jobs 1 --report one.jsonl" + drawings + " missing.dxf");
    const ShellRun three = check("--classifier g.txt --jobs 3 --report three.jsonl" + drawings + " missing.dxf");
    EXPECT_EQ(one.exitCode, 3) << one.out;
    EXPECT_EQ(three.exitCode, 3) << three.out;
    EXPECT_EQ(three.out, one.out);
    EXPECT_EQ(readFile(dir_ / "three.jsonl"), readFile(dir_ / "one.jsonl"));
    const std::size_t g1 = one.out.find("\ng1.dxf "), s2 = one.out.find("\ns2.dxf "), g3 = one.out.find("\ng3.dxf ");
    EXPECT_TRUE(g1 < s2 && s2 < g3 && g3 < one.out.find("\nmissing.dxf ")) << one.out;
    for (const char* jobs : {"0", "x", "-1"})
        EXPECT_EQ(check(std::string("--classifier g.txt --jobs ") + jobs + " g1.dxf").exitCode, 2) << jobs;
}

TEST_F(BulkCheck, TheExitStatusTellsCleanFromFaultyFromUnreadable) {
    // A name shorter than the summary's heading.
    generate("c", 30, 0);
    const ShellRun clean = check("--classifier c.txt --report out.jsonl c.dxf");
    EXPECT_EQ(clean.exitCode, 0) << clean.out;
    EXPECT_EQ(readFile(dir_ / "out.jsonl"), "");

    // A missing drawing among good ones: reported, and the others checked all the same.
    writeFile(dir_ / "list.txt", "  selection.dxf  \n\nc.dxf\n");
    const ShellRun missing = check("--classifier c.txt --report out.csv missing.dxf --from list.txt");
    EXPECT_EQ(missing.exitCode, 3) << missing.out;
    EXPECT_NE(missing.out.find("\nmissing.dxf  "), std::string::npos) << missing.out;
    EXPECT_NE(missing.out.find("unreadable"), std::string::npos);
    EXPECT_NE(missing.out.find("--- stderr\nveltarn check: missing.dxf"), std::string::npos) << missing.out;
    const std::string csv = readFile(dir_ / "out.csv");
    EXPECT_NE(csv.find("\r\nmissing.dxf,,,,,unreadable-drawing,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("\r\nselection.dxf,"), std::string::npos);
    EXPECT_EQ(csv.find("\r\nc.dxf,"), std::string::npos);

    // A report that cannot be written (its name is a folder's) leaves the folder alone and fails
    // the run; the other reports are still written whole, and a report written over an older
    // one replaces it only at the end, with no temporary file left beside it.
    fs::create_directories(dir_ / "taken.jsonl");
    writeFile(dir_ / "old.csv", "older report\n");
    const ShellRun blocked = check("--classifier c.txt --report taken.jsonl --report old.csv --report page.html c.dxf");
    EXPECT_EQ(blocked.exitCode, 3) << blocked.out;
    // Told once, before the check, so that a long run is not wasted on it.
    const std::string message = "veltarn check: taken.jsonl: is not a regular file\n";
    const std::size_t told = blocked.out.find(message);
    EXPECT_NE(told, std::string::npos) << blocked.out;
    EXPECT_EQ(blocked.out.find(message, told + 1), std::string::npos) << blocked.out;
    EXPECT_TRUE(fs::is_directory(dir_ / "taken.jsonl"));
    EXPECT_EQ(readFile(dir_ / "old.csv").rfind("drawing,handle,", 0), 0u);
    EXPECT_NE(readFile(dir_ / "page.html").find("</html>"), std::string::npos);
    for (const auto& entry : fs::directory_iterator(dir_))
        for (const char* report : {"old.csv.", "page.html.", "taken.jsonl."})
            EXPECT_FALSE(entry.path().filename().string().starts_with(report)) << entry.path();

    // A classifier that cannot be opened checks nothing.
    EXPECT_EQ(check("--classifier none.txt c.dxf").exitCode, 3);

    // Usage errors: nothing is checked, no report is written.
    for (const char* arguments : {"c.dxf", "--classifier c.txt", "--classifier c.txt --report out.txt c.dxf",
                                  "--classifier c.txt --fast c.dxf", "--classifier c.txt --from nolist.txt",
                                  "--classifier"}) {
        const ShellRun usage = check(arguments);
        EXPECT_EQ(usage.exitCode, 2) << arguments;
        EXPECT_NE(usage.out.find("usage: veltarn check"), std::string::npos) << arguments;
    }
    EXPECT_FALSE(fs::exists(dir_ / "out.txt"));
}

// Four shards checked apart (as four machines of a cluster would) and their JSON Lines reports
// merged give byte for byte the reports of one run over the whole list, which --shard sorts: the
// drawings are named out of order, some in a list, and more shards than drawings leave one empty.
TEST_F(BulkCheck, ShardsMergedGiveTheReportOfOneRun) {
    generate("gen", 40, 0.3);
    fs::create_directories(dir_ / "sub");
    for (const char* name : {"b.dxf", "B.dxf", "a b.dxf", "sub/a.dxf"}) fs::copy_file(dir_ / "selection.dxf", dir_ / name);
    writeFile(dir_ / "list.txt", "sub/a.dxf\ngen.dxf\n");
    const std::string drawings = " b.dxf missing.dxf selection.dxf B.dxf 'a b.dxf' --from list.txt";
    const std::string classifier = "--classifier selection.classes.txt ";

    const ShellRun whole = check(classifier + "--shard 1/1 --report one.jsonl --report one.csv" + drawings);
    EXPECT_EQ(whole.exitCode, 3) << whole.out;  // missing.dxf
    // Sorted by bytes: capitals first, a space before letters, a folder by its path.
    const std::vector<std::string> sorted = {"B.dxf", "a b.dxf", "b.dxf", "gen.dxf", "missing.dxf", "selection.dxf", "sub/a.dxf"};
    std::size_t last = 0;
    for (const std::string& name : sorted) {
        const std::size_t row = whole.out.find("\n" + name + " ");
        ASSERT_NE(row, std::string::npos) << name << "\n" << whole.out;
        EXPECT_LT(last, row) << name;
        last = row;
    }
    // Without --shard the same drawings named in that order give the same report.
    ASSERT_EQ(check(classifier + "--report named.jsonl B.dxf 'a b.dxf' b.dxf gen.dxf missing.dxf selection.dxf sub/a.dxf").exitCode, 3);
    EXPECT_EQ(readFile(dir_ / "named.jsonl"), readFile(dir_ / "one.jsonl"));

    // Shard K takes every fourth drawing from the K-th, and its summary shows only those.
    std::string shards;
    for (int k = 1; k <= 4; ++k) {
        const std::string report = "shard-" + std::to_string(k) + ".jsonl";
        const ShellRun shard = check(classifier + "--shard " + std::to_string(k) + "/4 --report " + report + drawings);
        EXPECT_NE(shard.exitCode, 2) << shard.out;
        for (std::size_t i = 0; i < sorted.size(); ++i)
            EXPECT_EQ(shard.out.find("\n" + sorted[i] + " ") != std::string::npos, int(i % 4) == k - 1)
                << "shard " << k << ", " << sorted[i] << "\n" << shard.out;
        shards = report + " " + shards;  // merged in any order
    }
    for (const char* out : {"merged.jsonl", "merged.csv"}) {
        const ShellRun merge = veltarn(std::string("report --merge ") + out + " " + shards);
        EXPECT_EQ(merge.exitCode, 0) << merge.out;
    }
    EXPECT_EQ(readFile(dir_ / "merged.jsonl"), readFile(dir_ / "one.jsonl"));
    EXPECT_EQ(readFile(dir_ / "merged.csv"), readFile(dir_ / "one.csv"));
    EXPECT_NE(readFile(dir_ / "one.jsonl").find("\"drawing\": \"gen.dxf\""), std::string::npos);

    // Eight shards of seven drawings: the last is empty, and that is no error.
    const ShellRun empty = check(classifier + "--shard 8/8 --report empty.jsonl --report empty.csv" + drawings);
    EXPECT_EQ(empty.exitCode, 0) << empty.out;
    EXPECT_EQ(readFile(dir_ / "empty.jsonl"), "");
    EXPECT_EQ(readFile(dir_ / "empty.csv"), "drawing,handle,type,layer,class,code,message,expected\r\n");

    for (const char* shard : {"0/4", "5/4", "1/0", "x", "1/", "/4", "-1/4", "1/4/2"}) {
        const ShellRun usage = check(classifier + "--shard " + shard + " selection.dxf");
        EXPECT_EQ(usage.exitCode, 2) << shard;
        EXPECT_NE(usage.out.find("--shard needs K/N"), std::string::npos) << usage.out;
    }
}

// What merge reads is a report as a JSON parser would read it (spacing, key order and escapes
// are free); anything else names its file and line and writes nothing.
TEST_F(BulkCheck, MergeReadsJsonAndRefusesWhatIsNoReport) {
    writeFile(dir_ / "a.jsonl",
              "\n{ \"expected\":\"\", \"message\": \"caf\\u00e9 \\ud83d\\ude00 \\/ \\\"q\\\"\", \"code\": \"unclassified\","
              " \"class\": \"\", \"layer\": \"0\", \"type\": \"Line\", \"handle\": \"1F\", \"drawing\": \"z.dxf\" }\r\n");
    writeFile(dir_ / "b.jsonl", "{\"drawing\": \"y.dxf\", \"handle\": \"\", \"type\": \"\", \"layer\": \"\", \"class\": \"\", "
                                "\"code\": \"unreadable-drawing\", \"message\": \"m\", \"expected\": \"\"}\n");
    ASSERT_EQ(veltarn("report --merge out.jsonl a.jsonl b.jsonl").exitCode, 0);
    EXPECT_EQ(readFile(dir_ / "out.jsonl"),
              "{\"drawing\": \"y.dxf\", \"handle\": \"\", \"type\": \"\", \"layer\": \"\", \"class\": \"\", "
              "\"code\": \"unreadable-drawing\", \"message\": \"m\", \"expected\": \"\"}\n"
              "{\"drawing\": \"z.dxf\", \"handle\": \"1F\", \"type\": \"Line\", \"layer\": \"0\", \"class\": \"\", "
              "\"code\": \"unclassified\", \"message\": \"caf\xc3\xa9 \xf0\x9f\x98\x80 / \\\"q\\\"\", \"expected\": \"\"}\n");

    const std::string good = readFile(dir_ / "b.jsonl");
    const std::vector<std::pair<std::string, std::string>> bad = {
        {"not json", "a report line is a JSON object"},
        {"{\"drawing\": \"y.dxf\"}", "no \"handle\""},
        {good.substr(0, good.size() - 2) + ", \"extra\": \"\"}", "unknown key \"extra\""},
        {"{\"drawing\": 3}", "\"drawing\" is not a string"},
        {"{\"drawing\": \"a\\x\"}", "an unknown escape \\x"},
        {"{\"drawing\": \"\\ud800\"}", "a lone surrogate"},
        {good.substr(0, good.size() - 1) + " {}", "text after the object"},
    };
    for (const auto& [line, why] : bad) {
        writeFile(dir_ / "bad.jsonl", good + line + "\n");
        const ShellRun merge = veltarn("report --merge out.jsonl a.jsonl bad.jsonl");
        EXPECT_EQ(merge.exitCode, 3) << line;
        EXPECT_NE(merge.out.find("veltarn report: bad.jsonl:2: not a report line: " + why), std::string::npos) << merge.out;
    }
    EXPECT_NE(readFile(dir_ / "out.jsonl").find("z.dxf"), std::string::npos);  // left as it was

    EXPECT_EQ(veltarn("report --merge out.csv a.jsonl missing.jsonl").exitCode, 3);
    EXPECT_FALSE(fs::exists(dir_ / "out.csv"));
    for (const char* arguments : {"report", "report --merge", "report --merge out.csv", "report --merge out.txt a.jsonl",
                                  "report --join out.csv a.jsonl"}) {
        const ShellRun usage = veltarn(arguments);
        EXPECT_EQ(usage.exitCode, 2) << arguments;
        EXPECT_NE(usage.out.find("usage: veltarn report --merge"), std::string::npos) << arguments;
    }
}

}  // namespace
