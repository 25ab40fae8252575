// Golden runs of `veltarn ... --check-classifier FILE`. A case is checks/NAME.args, the program's
// arguments on one line ("<source>" stands for the source tree); the other NAME.* files are copied
// into the run's folder, the working folder. NAME.out holds what standard output shows, then the
// standard error and the exit status under their own headings. Also the example's own runs: its
// resources brought in, and the checks the demo makes over the example drawing.
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "ProgramRun.h"

namespace {

using namespace veltarn::e2e;

const fs::path kChecks = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/checks";

std::vector<std::string> checkNames() {
    std::vector<std::string> names;
    for (const auto& item : fs::directory_iterator(kChecks))
        if (item.path().extension() == ".args") names.push_back(item.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

class ClassifierCheck : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_check_" + std::to_string(::getpid()) + "_" + GetParam());
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    fs::path dir_;
};

TEST_P(ClassifierCheck, MatchesItsGoldenOutput) {
    const std::string name = GetParam();
    for (const auto& item : fs::directory_iterator(kChecks)) {
        const std::string file = item.path().filename().string();
        if (file.rfind(name + ".", 0) == 0 && file != name + ".args" && file != name + ".out")
            fs::copy_file(item.path(), dir_ / file);
    }
    std::string arguments = readFile(kChecks / (name + ".args"));
    arguments.erase(arguments.find_last_not_of("\r\n") + 1);
    replaceAll(arguments, "<source>", VELTARN_SOURCE_DIR);

    // A home of its own: the check appends the classifier's patterns to the user's pattern files.
    const ShellRun run = runShell("cd " + quote(dir_.string()) + " && XDG_CONFIG_HOME=config " +
                                  quote(kProgram.string()) + " " + arguments + " </dev/null 2>stderr.txt");
    std::string shown = run.out + "--- standard error\n" + readFile(dir_ / "stderr.txt") +
                        "--- exit status " + std::to_string(run.exitCode) + "\n";
    replaceAll(shown, VELTARN_SOURCE_DIR, "<source>");
    expectGolden(kChecks / (name + ".out"), shown, "the check's output");
}

INSTANTIATE_TEST_SUITE_P(Checks, ClassifierCheck, ::testing::ValuesIn(checkNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) { return info.param; });

TEST(ClassifierCheckResources, TheExampleBringsItsResourcesIntoTheDrawingItSaves) {
    const fs::path dir = fs::temp_directory_path() / ("veltarn_check_saved_" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir);
    const std::string examples = VELTARN_SOURCE_DIR "/examples/";
    const ShellRun run = runShell("cd " + quote(dir.string()) + " && XDG_CONFIG_HOME=config " + quote(kProgram.string()) +
                                  " " + quote(examples + "utility-survey.dxf") + " --check-classifier " +
                                  quote(examples + "utility-survey.txt") + " --save-as checked.dxf 2>&1");
    EXPECT_EQ(run.exitCode, 0) << run.out;
    const std::string saved = readFile(dir / "checked.dxf");
    const std::string original = readFile(examples + "utility-survey.dxf");
    // A block of the side drawing, a linetype of the .lin file, a layer of the side drawing: none
    // of them in the example drawing before.
    for (const char* name : {"\nLAMP_POST\n", "\nGAS_PIPE\n", "\nSV_GAS\n"}) {
        EXPECT_EQ(original.find(name), std::string::npos) << name;
        EXPECT_NE(saved.find(name), std::string::npos) << name;
    }
    // The .pat file's patterns went to the new user's own pattern files.
    EXPECT_NE(readFile(dir / "config/veltarn/support/acad.pat").find("*WETLAND,"), std::string::npos);
    fs::remove_all(dir);
}

// examples/check.scr as the demo runs it, from the source tree whose relative paths it names: the
// counts examples/README.md explains, and the listing of the objects with an empty required value.
TEST(ExampleChecks, FindWhatTheExampleDrawingHolds) {
    const fs::path dir = fs::temp_directory_path() / ("veltarn_example_checks_" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir);
    const ShellRun run = runShell("cd " + quote(VELTARN_SOURCE_DIR) + " && XDG_CONFIG_HOME=" +
                                  quote((dir / "config").string()) + " " + quote(kProgram.string()) +
                                  " examples/utility-survey.dxf --script examples/check.scr </dev/null 2>" +
                                  quote((dir / "stderr.txt").string()));
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_EQ(readFile(dir / "stderr.txt"), "") << "the program's own errors";
    expectGolden(fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/example_checks.out", run.out, "the transcript");
    fs::remove_all(dir);
}

}  // namespace
