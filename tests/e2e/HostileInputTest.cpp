// What a hostile user can give the program. Each run has a time limit, so a regression shows as a
// failure and never as a hang.
#include <unistd.h>

#include "ProgramRun.h"

namespace veltarn::e2e {
namespace {

struct Outcome {
    int exitCode = -1;
    std::string out, err;
};

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t found = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) ++found;
    return found;
}

class HostileInput : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_hostile_" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    // The program in the test's folder, standard input empty; 124 is the exit status of a run
    // that `timeout` had to stop.
    Outcome veltarn(const std::string& arguments) {
        const ShellRun run = runShell("cd " + quote(dir_.string()) + " && XDG_CONFIG_HOME=config timeout 20 " +
                                      quote(kProgram.string()) + " " + arguments + " </dev/null 2>stderr");
        return {run.exitCode, run.out, readFile(dir_ / "stderr")};
    }

    void makeFifo(const std::string& name) { ASSERT_EQ(::mkfifo((dir_ / name).c_str(), 0600), 0) << name; }

    fs::path dir_;
};

TEST_F(HostileInput, NestedTransparentCommandsStopAtTheLimitWithAMessage) {
    std::string script = "GETVAR\n";
    for (int i = 0; i < 20000; ++i) script += "'GETVAR\n";
    // Sixteen prompts wait then, one for each level: Enter ends each.
    script += std::string(16, '\n') + "GETVAR\nLUPREC\n";
    writeFile(dir_ / "nest.scr", script);
    const Outcome run = veltarn("--script nest.scr");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // The outermost GETVAR and 15 nested ones run; every 'GETVAR beyond them is cancelled alone.
    EXPECT_EQ(count(run.out, "GETVAR: cancelled, commands nest at most 16 deep.\n"), 20000u - 15u);
    EXPECT_NE(run.out.find("Command: GETVAR\nEnter variable name: LUPREC\n4\n"), std::string::npos)
        << "the command line goes on after the nesting unwound";

    // A variable typed transparently nests the same way: its prompt waits while the next one runs.
    std::string variables = "GETVAR\n";
    for (int i = 0; i < 100; ++i) variables += "'LUPREC\n";
    writeFile(dir_ / "variables.scr", variables);
    const Outcome nestedVariables = veltarn("--script variables.scr");
    EXPECT_EQ(nestedVariables.exitCode, 0) << nestedVariables.err;
    EXPECT_EQ(count(nestedVariables.out, "LUPREC: cancelled, commands nest at most 16 deep.\n"), 100u - 15u);
}

}  // namespace
}  // namespace veltarn::e2e
