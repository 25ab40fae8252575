// veltarn check over a generated delivery whose faults are known object by object: every kind of
// finding the check reports is planted by tests/tools/gen_delivery.py, which writes the drawings
// and a manifest of what each object must give. The reports are read back with Python's own JSON
// and CSV parsers (tests/tools/check_report.py) and must hold exactly the manifest's findings.
#include <unistd.h>

#include "ProgramRun.h"

namespace {

using namespace veltarn::e2e;
namespace testtools = veltarn::testtools;

// The delivery's drawings, in the order the manifest lists them: three checked, one the classifier
// cannot be read against, one that cannot be read.
const std::string kChecked = "north.dxf south.dxf 'east side.dxf'";
const std::string kAll = kChecked + " old-roads.dxf cut-short.dxf";

class DeliveryCheck : public ::testing::Test {
protected:
    // Generated once: the drawings are only read by the check.
    static void SetUpTestSuite() {
        dir_ = fs::temp_directory_path() / ("veltarn_delivery_" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        problem_ = testtools::missingEzdxf();
        if (!problem_.empty()) return;
        std::string output;
        if (testtools::runPython(quote((testtools::toolsDir() / "gen_delivery.py").string()) + " " + quote(dir_.string()),
                                 &output) != 0)
            problem_ = "gen_delivery.py failed: " + output;
    }
    static void TearDownTestSuite() { fs::remove_all(dir_); }
    void SetUp() override { ASSERT_EQ(problem_, ""); }

    // `veltarn check ARGUMENTS` in the delivery's folder with a home of its own; its standard
    // output is kept in summary.txt for the checking script.
    ShellRun check(const std::string& arguments) {
        ShellRun run = runShell("cd " + quote(dir_.string()) + " && XDG_CONFIG_HOME=config " + quote(kProgram.string()) +
                                " check --classifier delivery.classes.txt " + arguments +
                                " </dev/null >summary.txt 2>stderr.txt");
        run.out = readFile(dir_ / "summary.txt") + "--- stderr\n" + readFile(dir_ / "stderr.txt");
        return run;
    }

    // check_report.py over the manifest and ARGUMENTS (reports, --summary FILE); what it printed.
    static ShellRun compare(const std::string& arguments) {
        ShellRun run;
        run.exitCode = testtools::runPython(quote((testtools::toolsDir() / "check_report.py").string()) + " " +
                                                quote((dir_ / "manifest.json").string()) + " " + arguments,
                                            &run.out);
        return run;
    }
    static std::string at(const std::string& name) { return quote((dir_ / name).string()); }

    static inline fs::path dir_;
    static inline std::string problem_;  // why there is no delivery
};

// Nothing missing, nothing extra, nothing twice, in either format; the CSV holds the JSON Lines
// report's findings in its order, column for column. An empty required text is planted as one
// finding, empty-required (empty-value is for notempty fields).
TEST_F(DeliveryCheck, TheReportsHoldExactlyThePlantedFindings) {
    const ShellRun run = check("--report out.jsonl --report out.csv --report out.html " + kAll);
    EXPECT_EQ(run.exitCode, 3) << run.out;
    const ShellRun compared = compare(at("out.jsonl") + " " + at("out.csv") + " " + at("out.html"));
    EXPECT_EQ(compared.exitCode, 0) << compared.out;
    EXPECT_NE(compared.out.find("out.jsonl: "), std::string::npos) << compared.out;
    EXPECT_NE(compared.out.find("out.csv: the same findings as "), std::string::npos) << compared.out;
    EXPECT_NE(compared.out.find("out.html: the same findings as "), std::string::npos) << compared.out;
}

// Each drawing's row counts its objects as the generator planted them, the total row their sums;
// status 3 stands for the drawing that cannot be read and for the one the classifier cannot be
// read against, each alone, and 1 for findings only.
TEST_F(DeliveryCheck, TheSummaryAndTheStatusAgreeWithTheManifest) {
    const ShellRun all = check(kAll);
    EXPECT_EQ(all.exitCode, 3) << all.out;
    const ShellRun compared = compare("--summary " + at("summary.txt"));
    EXPECT_EQ(compared.exitCode, 0) << compared.out;
    EXPECT_EQ(compared.out, "summary: 5 drawings and the total, as planted\n");

    EXPECT_EQ(check(kChecked + " old-roads.dxf").exitCode, 3);
    EXPECT_EQ(check(kChecked + " cut-short.dxf").exitCode, 3);
    const ShellRun found = check(kChecked);
    EXPECT_EQ(found.exitCode, 1) << found.out;
    EXPECT_TRUE(found.out.ends_with("--- stderr\n")) << found.out;  // every drawing read
}

// The delivery plants every code a check can give, so that the comparison above covers them all.
// (class-without-table cannot arise: a check finds an object's classes through its records, and a
// class without tables has none.)
TEST_F(DeliveryCheck, TheDeliveryPlantsEveryCode) {
    const std::string manifest = readFile(dir_ / "manifest.json");
    for (const char* code : {"unclassified", "foreign-record", "no-record", "key-mismatch", "missing-value", "wrong-type",
                             "const-changed", "empty-value", "empty-required", "not-in-list", "out-of-range",
                             "wrong-entity-type", "wrong-property", "audit-missing-layer", "audit-od-value-type",
                             "audit-od-record-length", "classifier-message", "unreadable-drawing"})
        EXPECT_NE(manifest.find("\"code\": \"" + std::string(code) + "\""), std::string::npos) << code;
    for (const char* property : {"layer", "color", "linetype", "type"})
        EXPECT_NE(manifest.find("\"subject\": \"" + std::string(property) + "\""), std::string::npos) << property;
}

}  // namespace
