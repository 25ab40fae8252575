// RECOVER and --recover through the veltarn program: the damaged file is only read, the recovered
// drawing is what gets saved.
#include "ExternalTools.h"
#include "ProgramRunner.h"
#include "ScratchFiles.h"

#include <gtest/gtest.h>

#include <fstream>

namespace veltarn::audit {
namespace {

namespace fs = std::filesystem;
using testtools::runVeltarn;

// A generated drawing cut inside its circle, the second entity: no ENDSEC, no OBJECTS, no EOF.
fs::path cutDrawing(const fs::path& folder) {
    const fs::path good = testtools::generated("recover-program-2018.dxf", "6 --seed 11 --layers 2");
    std::string bytes = testtools::readBytes(good);
    const std::size_t entities = bytes.find("\nENTITIES\n");
    const std::size_t circle = bytes.find("\nCIRCLE\n", entities);
    if (entities == std::string::npos || circle == std::string::npos) {
        ADD_FAILURE() << good << " has no circle in its entities";
        return {};
    }
    const std::size_t cutAt = circle + 40;
    const fs::path cut = folder / "cut.dxf";
    std::ofstream(cut, std::ios::binary) << bytes.substr(0, cutAt);
    return cut;
}

TEST(RecoverOption, PrintsWhatWasSkippedAndSavesTheRecoveredDrawing) {
    const fs::path folder = testtools::scratchDir("recover", "option");
    const fs::path cut = cutDrawing(folder);
    const std::string before = testtools::readBytes(cut);
    EXPECT_EQ(runVeltarn({cut.string(), "--audit"}).exitCode, 1);  // the strict reader refuses it

    const fs::path out = folder / "out.dxf";
    const auto run = runVeltarn({"--recover", cut.string(), "--save-as", out.string()});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("truncated: " + cut.string() + ":"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("CIRCLE at line "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("section-not-closed: " + cut.string() + ":"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("the file ends inside section \"ENTITIES\""), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("missing-eof: "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(" errors found, "), std::string::npos) << run.out;
    EXPECT_EQ(testtools::readBytes(cut), before);
    EXPECT_EQ(runVeltarn({out.string(), "--audit"}).exitCode, 0);
    EXPECT_EQ(testtools::audit(out), "");

    const fs::path garbage = folder / "garbage.dxf";
    std::ofstream(garbage, std::ios::binary) << "\x89PNG\r\n\x1A\n";
    const auto nothing = runVeltarn({"--recover", garbage.string(), "--save-as", (folder / "none.dxf").string()});
    EXPECT_EQ(nothing.exitCode, 1);
    EXPECT_NE(nothing.err.find(garbage.string() + ": "), std::string::npos) << nothing.err;
    EXPECT_FALSE(fs::exists(folder / "none.dxf"));

    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--recover"},
                                               {"--recover", cut.string(), "--command", "LIST\n"},
                                               {cut.string(), "--recover", "--audit"}}) {
        const auto refused = runVeltarn(arguments);
        EXPECT_EQ(refused.exitCode, 2) << arguments.size();
        EXPECT_NE(refused.err.find("--recover"), std::string::npos) << refused.err;
    }
}

TEST(RecoverCommand, OpensTheRecoveredDrawingModifiedUnderTheOriginalName) {
    const fs::path folder = testtools::scratchDir("recover", "command");
    const fs::path cut = cutDrawing(folder);
    const std::string before = testtools::readBytes(cut);

    // QUIT asks to save: the recovered drawing is a change not yet saved; No leaves the file alone.
    const auto run = runVeltarn({"--command", "RECOVER\n" + cut.string() + "\nQUIT\nNo\n"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("Enter name of file to open"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("truncated: " + cut.string() + ":"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(" errors found, "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Save changes to cut.dxf?"), std::string::npos) << run.out;
    EXPECT_EQ(testtools::readBytes(cut), before);

    // SAVEAS writes the recovered drawing where the user says, which both readers accept.
    const fs::path saved = folder / "saved.dxf";
    const auto save = runVeltarn({"--command", "RECOVER\n" + cut.string() + "\nSAVEAS\n" + saved.string() + "\n"});
    EXPECT_EQ(save.exitCode, 0) << save.err;
    EXPECT_EQ(testtools::readBytes(cut), before);
    EXPECT_EQ(runVeltarn({saved.string(), "--audit"}).exitCode, 0);
    EXPECT_EQ(testtools::audit(saved), "");
}

}  // namespace
}  // namespace veltarn::audit
