// What a hostile user can give the program: deep nesting, files that are no files (folders, FIFOs,
// devices), scripts that start themselves, inputs whose cost grew faster than their size, and saves
// that fail. Each run has a time limit, so a regression shows as a failure and never as a hang.
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

TEST_F(HostileInput, InputsThatAreNoRegularFilesAreRefusedByName) {
    makeFifo("pipe.dxf");
    makeFifo("pipe.scr");
    makeFifo("pipe.txt");
    fs::create_directory(dir_ / "folder.scr");
    fs::create_symlink("/dev/zero", dir_ / "zero.txt");
    const std::pair<std::string, std::string> cases[] = {
        {"pipe.dxf", "veltarn: pipe.dxf: is a FIFO\n"},
        {"/dev/null", "veltarn: /dev/null: is a device\n"},
        {"--script pipe.scr", "veltarn: pipe.scr: is a FIFO\n"},
        {"--script /dev/zero", "veltarn: /dev/zero: is a device\n"},
        {"--script folder.scr", "veltarn: folder.scr: is a directory\n"},
        {"--check-classifier pipe.txt", "veltarn: pipe.txt: is a FIFO\n"},
        {"--check-classifier zero.txt", "veltarn: zero.txt: is a device\n"},
        {"--check-classifier folder.scr", "veltarn: folder.scr: is a directory\n"},
    };
    for (const auto& [arguments, message] : cases) {
        const Outcome run = veltarn(arguments);
        EXPECT_EQ(run.exitCode, 1) << arguments;
        EXPECT_EQ(run.err, message) << arguments;
    }
}

TEST_F(HostileInput, OpenAndScriptSayWhatAPathIsThatIsNoFile) {
    makeFifo("pipe.dxf");
    fs::create_directory(dir_ / "folder.dxf");
    fs::create_symlink("/dev/zero", dir_ / "zero.dxf");
    fs::create_directory(dir_ / "folder.scr");
    const Outcome run = veltarn("--command 'OPEN\\nfolder.dxf\\nOPEN\\npipe.dxf\\nOPEN\\nzero.dxf\\nOPEN\\nnone.dxf\\n"
                                "SCRIPT\\nfolder.scr\\n'");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const std::string folder = (dir_ / "folder.dxf").string();
    EXPECT_NE(run.out.find(folder + ": is a directory\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find((dir_ / "pipe.dxf").string() + ": is a FIFO\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find((dir_ / "zero.dxf").string() + ": is a device\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("File not found: " + (dir_ / "none.dxf").string()), std::string::npos) << run.out;
    EXPECT_NE(run.out.find((dir_ / "folder.scr").string() + ": is a directory\n"), std::string::npos) << run.out;
    EXPECT_EQ(count(run.out, "File not found"), 1u) << run.out;
}

TEST_F(HostileInput, ResourceFilesThatAreDevicesOrFifosAreNotRead) {
    fs::create_symlink("/dev/zero", dir_ / "zero.lin");
    fs::create_symlink("/dev/zero", dir_ / "zero.pat");
    makeFifo("pipe.lin");
    for (const auto& [keyword, file] : {std::pair{"linetype", "zero.lin"}, {"pattern", "zero.pat"}, {"linetype", "pipe.lin"}}) {
        writeFile(dir_ / "resources.txt", std::string(keyword) + "\t" + file +
                                              "\n\nclass\tA\t1\n\tobj_name\tB\t1\t1\n\t\tobj_type\tLine\n"
                                              "\t\tobj_prop\tlinetype\tDASHED2\n\t\tobj_prop\tpattern\tSTARS\n/class\n");
        const Outcome run = veltarn("--check-classifier resources.txt");
        EXPECT_EQ(run.exitCode, 1) << file << ": the reader stops on a file it cannot load";
        EXPECT_EQ(run.out, "error: unable to load './" + std::string(file) + "'\n0 classes, 0 objects, 0 tables\n");
    }
}

TEST_F(HostileInput, AScriptCannotStartItselfNotEvenThroughAnother) {
    writeFile(dir_ / "self.scr", "GETVAR LUPREC\nSCRIPT\nself.scr\nGETVAR CMDECHO\n");
    const Outcome self = veltarn("--script self.scr");
    EXPECT_EQ(self.exitCode, 0) << self.err;
    EXPECT_EQ(count(self.out, "Enter variable name: LUPREC\n"), 1u) << self.out;
    EXPECT_NE(self.out.find("Error: " + (dir_ / "self.scr").string() +
                            ": the script is running already and cannot start itself again.\n"
                            "Command: GETVAR\nEnter variable name: CMDECHO\n"),
              std::string::npos)
        << "refused, and the rest of the script runs: " << self.out;

    // Two that start each other, the second at its very end: the first is still running then.
    writeFile(dir_ / "ping.scr", "GETVAR LUPREC\nSCRIPT\npong.scr\n");
    writeFile(dir_ / "pong.scr", "GETVAR CMDECHO\nSCRIPT\nping.scr\n");
    const Outcome pair = veltarn("--command 'SCRIPT\\nping.scr\\n'");
    EXPECT_EQ(pair.exitCode, 0) << pair.err;
    EXPECT_EQ(count(pair.out, "Enter variable name: LUPREC\n"), 1u) << pair.out;
    EXPECT_EQ(count(pair.out, "Enter variable name: CMDECHO\n"), 1u) << pair.out;
    EXPECT_EQ(count(pair.out, "cannot start itself again"), 1u) << pair.out;

    // One after the other is no loop: the same script may run again once it has ended.
    writeFile(dir_ / "plain.scr", "GETVAR CMDECHO\n");
    const Outcome again = veltarn("--command 'SCRIPT\\nplain.scr\\n' --script plain.scr --command 'SCRIPT\\nplain.scr\\n'");
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_EQ(count(again.out, "Enter variable name: CMDECHO\n"), 3u) << again.out;
    EXPECT_EQ(count(again.out, "cannot start itself again"), 0u) << again.out;
}

TEST_F(HostileInput, AFailedSaveEndsTheProgramWithStatusOne) {
    const std::string tooLong(300, 'x');
    const Outcome failed = veltarn("--command 'SAVEAS\\n" + tooLong + ".dxf\\nGETVAR LUPREC\\n'");
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_NE(failed.out.find("Error: cannot save"), std::string::npos) << failed.out;
    EXPECT_NE(failed.out.find("Enter variable name: LUPREC\n"), std::string::npos) << "the commands after it still ran";
    EXPECT_EQ(failed.err.rfind("veltarn: cannot save '", 0), 0u) << failed.err;

    writeFile(dir_ / "save.scr", "SAVEAS\n" + tooLong + ".dxf\n");
    EXPECT_EQ(veltarn("--script save.scr").exitCode, 1);

    // A save that works after one that failed does not make the run a success.
    const Outcome later = veltarn("--command 'SAVEAS\\n" + tooLong + ".dxf\\nSAVEAS\\ngood.dxf\\n'");
    EXPECT_EQ(later.exitCode, 1);
    EXPECT_TRUE(fs::exists(dir_ / "good.dxf"));
    EXPECT_EQ(veltarn("--command 'SAVEAS\\ngood2.dxf\\n'").exitCode, 0);

    // A folder that is not there fails the save as surely; a cancelled prompt does not.
    const Outcome noFolder = veltarn("--command 'SAVEAS\\nno/such/folder/x.dxf\\n'");
    EXPECT_EQ(noFolder.exitCode, 1);
    EXPECT_EQ(noFolder.err, "veltarn: " + (dir_ / "no/such/folder").string() + ": folder not found\n");
    EXPECT_EQ(veltarn("--command 'SAVEAS\\nEsc\\n'").exitCode, 0);
}

// An object-data record xrecord of 20,000 values (5,000 records of the ROADS table) in the
// drawing of the object-data transcript: LIST read the whole xrecord again for every record.
TEST_F(HostileInput, ListShowsEveryRecordOfALargeXrecord) {
    std::string drawing = readFile(VELTARN_SOURCE_DIR "/tests/e2e/cases/object_data_list.in.dxf");
    const std::string lastRecord = "  1\nSide road\n 90\n1\n 40\n3.25\n 10\n5.0\n 20\n6.0\n 30\n7.0\n";
    const std::size_t at = drawing.find(lastRecord);
    ASSERT_NE(at, std::string::npos);
    std::string records;
    for (int i = 0; i < 5000; ++i)
        records += "  1\nRoad " + std::to_string(i) + "\n 90\n" + std::to_string(i) + "\n 40\n1.5\n 10\n1.0\n 20\n2.0\n 30\n0.0\n";
    drawing.insert(at + lastRecord.size(), records);
    writeFile(dir_ / "large.dxf", drawing);

    const Outcome run = veltarn("large.dxf --command 'LIST\\n33\\n\\n'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(count(run.out, "  Object data table: ROADS\n"), 5002u);
    EXPECT_NE(run.out.find("      NAME (Character): Road 0\n      LANES (Integer): 0\n"), std::string::npos);
    EXPECT_NE(run.out.find("      NAME (Character): Road 4999\n      LANES (Integer): 4999\n"), std::string::npos);
}

// Macros that double at each of their levels: the line they make is refused past its limit, with
// the line's number, and one within it is read whole.
TEST_F(HostileInput, MacrosThatBlowUpStopWithAnError) {
    auto classifier = [](int levels) {
        std::string text;
        for (int i = 0; i < levels; ++i)
            text += "define\tm" + std::to_string(i) + "\t$(m" + std::to_string(i + 1) + ")$(m" + std::to_string(i + 1) + ")\n";
        text += "define\tm" + std::to_string(levels) + "\tabcdefgh\n";
        return text + "class\tA\t1\n\tobj_name\tB\t1\t1\t$(m0)\n\t\tobj_type\tLine\n/class\n";
    };
    writeFile(dir_ / "twenty.txt", classifier(20));  // 8 Mi characters
    const Outcome twenty = veltarn("--check-classifier twenty.txt");
    EXPECT_EQ(twenty.exitCode, 0) << twenty.out;
    EXPECT_EQ(twenty.out, "1 classes, 1 objects, 0 tables\n");

    writeFile(dir_ / "thirty.txt", classifier(30));
    const Outcome thirty = veltarn("--check-classifier thirty.txt");
    EXPECT_EQ(thirty.exitCode, 1);
    EXPECT_EQ(thirty.out,
              "33: error: macros expand the line too far (more than 16777216 characters or 4194304 replacements)\n"
              "0 classes, 0 objects, 0 tables\n");
}

}  // namespace
}  // namespace veltarn::e2e
