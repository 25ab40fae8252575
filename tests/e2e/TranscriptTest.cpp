// Runs the golden transcript cases through the real program. A case is cases/NAME.scr; beside it
// NAME.in.dxf, when present, is the drawing the program opens, and other NAME.* files are copied
// into the run's folder as they are (scripts the case runs with SCRIPT). The run's folder is the
// working folder, so its path is written "<dir>" in the transcript that is compared.
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "ExternalTools.h"
#include "ProgramRun.h"

namespace {

using namespace veltarn::e2e;

const fs::path kCases = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/cases";

std::vector<std::string> caseNames() {
    std::vector<std::string> names;
    for (const auto& item : fs::directory_iterator(kCases))
        if (item.path().extension() == ".scr" && item.path().stem().extension().empty())
            names.push_back(item.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

class Transcript : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_e2e_" + std::to_string(::getpid()) + "_" + GetParam());
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        // The settings file of a run is its own, so a user's support path does not leak in.
        ::setenv("XDG_CONFIG_HOME", (dir_ / "config").c_str(), 1);
    }
    void TearDown() override { fs::remove_all(dir_); }

    fs::path dir_;
};

TEST_P(Transcript, MatchesItsGoldenFiles) {
    const std::string name = GetParam();
    std::string arguments;
    for (const auto& item : fs::directory_iterator(kCases)) {
        const std::string file = item.path().filename().string();
        if (file.rfind(name + ".", 0) != 0 || file == name + ".scr" || file == name + ".out" || file == name + ".dxf") continue;
        fs::copy_file(item.path(), dir_ / file);
    }
    if (fs::exists(dir_ / (name + ".in.dxf"))) arguments += quote(name + ".in.dxf") + " ";
    arguments += "--script " + quote((kCases / (name + ".scr")).string());

    const ShellRun run = runShell("cd " + quote(dir_.string()) + " && " + quote(kProgram.string()) + " " + arguments +
                             " </dev/null 2>stderr.txt");
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_EQ(readFile(dir_ / "stderr.txt"), "") << "the program's own errors";
    std::string transcript = run.out;
    replaceAll(transcript, fs::canonical(dir_).string(), "<dir>");
    replaceAll(transcript, dir_.string(), "<dir>");
    expectGolden(kCases / (name + ".out"), transcript, "the transcript");

    const fs::path saved = dir_ / "out.dxf";
    if (!fs::exists(saved)) {
        EXPECT_FALSE(fs::exists(kCases / (name + ".dxf")) && !updating()) << "the case no longer saves out.dxf";
        return;
    }
    expectGolden(kCases / (name + ".dxf"), readFile(saved), "the saved drawing");
    EXPECT_EQ(veltarn::testtools::audit(saved), "") << "the saved drawing fails the independent audit";
}

INSTANTIATE_TEST_SUITE_P(Cases, Transcript, ::testing::ValuesIn(caseNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) { return info.param; });

}  // namespace
