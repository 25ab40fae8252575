// AUDIT and --audit through the veltarn program, as a CAD manager's batch script uses them.
#include "ExternalTools.h"
#include "ProgramRunner.h"
#include "ScratchFiles.h"

#include <gtest/gtest.h>

namespace veltarn::audit {
namespace {

namespace fs = std::filesystem;
using testtools::runVeltarn;

fs::path fixture(const std::string& fault) {
    return fs::path(VELTARN_SOURCE_DIR) / "tests/cad/audit/data" / ("bad_" + fault + ".dxf");
}

TEST(AuditOption, ReportsWithoutChangingTheFile) {
    const fs::path bad = fixture("missing_layer");
    const std::string bytes = testtools::readBytes(bad);
    const auto run = runVeltarn({bad.string(), "--audit"});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    EXPECT_NE(run.out.find("missing-layer: LINE "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("layer \"GHOST\" is not defined\n1 errors found, 0 fixed\n"), std::string::npos) << run.out;
    EXPECT_EQ(testtools::readBytes(bad), bytes);

    // What reading repaired is a finding too, reported once, on standard output.
    const auto twice = runVeltarn({fixture("duplicate_handle").string(), "--audit"});
    EXPECT_EQ(twice.exitCode, 1);
    EXPECT_NE(twice.out.find("duplicate-handle: "), std::string::npos) << twice.out;
    EXPECT_EQ(twice.err, "");

    const fs::path good = testtools::generated("audit-all-2018.dxf", "60 --kinds all");
    ASSERT_FALSE(good.empty());
    const auto clean = runVeltarn({good.string(), "--audit"});
    EXPECT_EQ(clean.exitCode, 0) << clean.err;
    EXPECT_EQ(clean.out, "0 errors found, 0 fixed\n");
}

TEST(AuditOption, RefusesWhatWouldRunOrSave) {
    const std::string bad = fixture("missing_layer").string();
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"--audit"}, {bad, "--audit", "--save-as", "out.dxf"}, {bad, "--audit", "--command", "LIST\n"}}) {
        const auto run = runVeltarn(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments.size();
        EXPECT_NE(run.err.find("--audit"), std::string::npos) << run.err;
    }
}

TEST(AuditCommand, FixesAsOneUndoStep) {
    const fs::path folder = testtools::scratchDir("audit", "command");
    const fs::path bad = fixture("xdictionary_owner");

    // Enter answers No: reported, not fixed, the drawing saved as it was.
    const auto kept = runVeltarn({bad.string(), "--command", "AUDIT\n\n", "--save-as", (folder / "kept.dxf").string()});
    EXPECT_EQ(kept.exitCode, 0) << kept.err;
    EXPECT_NE(kept.out.find("Fix any errors detected? [Yes/No] <N>: "), std::string::npos) << kept.out;
    EXPECT_NE(kept.out.find("xdictionary-owner: DICTIONARY "), std::string::npos) << kept.out;
    EXPECT_NE(kept.out.find("1 errors found, 0 fixed\n"), std::string::npos) << kept.out;
    EXPECT_EQ(runVeltarn({(folder / "kept.dxf").string(), "--audit"}).exitCode, 1);

    // Yes fixes; the saved drawing passes our audit and ezdxf's.
    const auto fixed =
        runVeltarn({bad.string(), "--command", "AUDIT\nYes\n", "--save-as", (folder / "fixed.dxf").string()});
    EXPECT_EQ(fixed.exitCode, 0) << fixed.err;
    EXPECT_NE(fixed.out.find("; re-owned to "), std::string::npos) << fixed.out;
    EXPECT_NE(fixed.out.find("1 errors found, 1 fixed\n"), std::string::npos) << fixed.out;
    const auto again = runVeltarn({(folder / "fixed.dxf").string(), "--audit"});
    EXPECT_EQ(again.exitCode, 0) << again.out;
    EXPECT_EQ(testtools::audit(folder / "fixed.dxf"), "");

    // One U takes every repair back.
    const fs::path layers = fixture("missing_layer");
    const auto undone =
        runVeltarn({layers.string(), "--command", "AUDIT\nYes\nU\n", "--save-as", (folder / "undone.dxf").string()});
    EXPECT_EQ(undone.exitCode, 0) << undone.err;
    const auto check = runVeltarn({(folder / "undone.dxf").string(), "--audit"});
    EXPECT_EQ(check.exitCode, 1);
    EXPECT_NE(check.out.find("missing-layer: "), std::string::npos) << check.out;
}

}  // namespace
}  // namespace veltarn::audit
