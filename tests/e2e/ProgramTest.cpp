// The veltarn program's own command line: the order of scripts and command texts, standard input,
// saving at the end, and the exit status with its message on standard error.
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "ExternalTools.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int exitCode = -1;
    std::string out, err;
};

std::string quote(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string readAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class Program : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_program_" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    // Runs the program in the test's folder with `arguments`, standard input from `input`.
    Outcome veltarn(const std::string& arguments, const std::string& input = "") {
        std::ofstream(dir_ / "stdin") << input;
        const std::string command = "cd " + quote(dir_.string()) + " && XDG_CONFIG_HOME=config " +
                                    quote(VELTARN_BINARY_DIR "/bin/veltarn") + " " + arguments + " <stdin 2>stderr";
        Outcome outcome;
        FILE* pipe = ::popen(command.c_str(), "r");
        char buffer[4096];
        while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) outcome.out.append(buffer, n);
        const int status = ::pclose(pipe);
        outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        std::ifstream err(dir_ / "stderr");
        std::ostringstream text;
        text << err.rdbuf();
        outcome.err = text.str();
        return outcome;
    }

    fs::path dir_;
};

TEST_F(Program, ScriptsAndCommandTextsRunInTheOrderGiven) {
    std::ofstream(dir_ / "first.scr") << "GETVAR LUPREC";  // its last line has no line end
    const Outcome run = veltarn("--command 'LUPREC\\n2\\n' --script first.scr --command '(MyLispFunction)\\n'");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "Command: LUPREC\nEnter new value for LUPREC <4>: 2\n"
              "Command: GETVAR\nEnter variable name: LUPREC\n2\n"
              "Command: (MyLispFunction)\nnil\n");
    EXPECT_EQ(run.err, "");
}

TEST_F(Program, ReadsStandardInputToItsEndAndSavesWhenAsked) {
    const Outcome made = veltarn("--save-as made.dxf", "-LAYER N Roads\n\nGETVAR DWGNAME");
    EXPECT_EQ(made.exitCode, 0) << made.err;
    EXPECT_NE(made.out.find("\"Drawing1.dxf\""), std::string::npos) << "the last line, without its line end, ran";
    const Outcome reopened = veltarn("made.dxf --command '-LAYER ?\\n\\n'");
    EXPECT_EQ(reopened.exitCode, 0) << reopened.err;
    EXPECT_NE(reopened.out.find("Roads"), std::string::npos) << reopened.out;
}

TEST_F(Program, SavingGivesChangedSettingsBackToTheHeaderAndLeavesTheRestAsItWas) {
    ASSERT_EQ(veltarn("--save-as first.dxf").exitCode, 0);
    ASSERT_EQ(veltarn("first.dxf --save-as again.dxf").exitCode, 0);
    EXPECT_EQ(readAll(dir_ / "again.dxf"), readAll(dir_ / "first.dxf")) << "an untouched drawing saves byte for byte";

    const Outcome changed = veltarn("first.dxf --command '-LAYER M Pipes\n\nLUPREC\n2\n' --save-as changed.dxf");
    ASSERT_EQ(changed.exitCode, 0) << changed.err;
    const Outcome reopened = veltarn("changed.dxf --command 'GETVAR CLAYER\nGETVAR LUPREC\n'");
    EXPECT_NE(reopened.out.find("CLAYER\n\"Pipes\"\n"), std::string::npos) << reopened.out;
    EXPECT_NE(reopened.out.find("LUPREC\n2\n"), std::string::npos) << reopened.out;
    ASSERT_EQ(veltarn::testtools::missingEzdxf(), "");
    const std::string check = "/usr/bin/python3 -c \"import ezdxf; d = ezdxf.readfile('" + (dir_ / "changed.dxf").string() +
                              "'); print(d.header['\\$CLAYER'], d.header['\\$LUPREC'])\"";
    FILE* pipe = ::popen(check.c_str(), "r");
    char line[256] = {};
    const bool read = std::fgets(line, sizeof line, pipe) != nullptr;
    ::pclose(pipe);
    EXPECT_TRUE(read);
    EXPECT_STREQ(line, "Pipes 2\n") << "an independent reader sees the new settings";
}

TEST_F(Program, FileAndUsageErrorsGoToStandardErrorWithTheirStatus) {
    const Outcome noScript = veltarn("--script missing.scr");
    EXPECT_EQ(noScript.exitCode, 1);
    EXPECT_EQ(noScript.out, "");
    EXPECT_EQ(noScript.err, "veltarn: missing.scr: cannot read the script\n");

    std::ofstream(dir_ / "real.dwg", std::ios::binary) << std::string("AC1032\0\0\0\0\0\x03\x01", 13) << std::string(64, '\x7f');
    const Outcome dwg = veltarn("real.dwg --command 'HELP\\n'");
    EXPECT_EQ(dwg.exitCode, 1);
    EXPECT_EQ(dwg.out, "") << "nothing runs when the drawing cannot be read";
    EXPECT_EQ(dwg.err.rfind("veltarn: real.dwg", 0), 0u) << dwg.err;

    const Outcome unsaved = veltarn("--command 'HELP\\n' --save-as no/such/folder/x.dxf");
    EXPECT_EQ(unsaved.exitCode, 1);
    EXPECT_EQ(unsaved.err.rfind("veltarn: cannot save '", 0), 0u) << unsaved.err;

    for (const char* wrong : {"--script", "--command", "--frobnicate", "a.dxf b.dxf", "--check-classifier",
                              "--check-classifier a.txt --command HELP", "--check-classifier a.txt --check-classifier b.txt"}) {
        const Outcome usage = veltarn(wrong);
        EXPECT_EQ(usage.exitCode, 2) << wrong;
        EXPECT_EQ(usage.out, "") << wrong;
        EXPECT_NE(usage.err.find("usage: veltarn [DRAWING] [--script FILE]... [--command TEXT]... [--save-as OUT]"),
                  std::string::npos) << wrong;
    }
}

TEST_F(Program, AnR12DrawingGivenTheTableDictionaryIsSavedAs2018ThatAnotherReaderOpens) {
    const std::string checks = VELTARN_SOURCE_DIR "/tests/e2e/checks/";
    fs::copy_file(checks + "r12_drawing.dxf", dir_ / "r12.dxf");
    // Checking a classifier against it changes nothing; classifying its line gives it object data.
    const Outcome checked = veltarn("r12.dxf --check-classifier " + quote(checks + "good_small.txt") + " --save-as checked.dxf");
    EXPECT_EQ(checked.out.find("saved as"), std::string::npos) << checked.out;
    const Outcome run = veltarn("r12.dxf --command " +
                                quote("VELTARN_LOAD\\n" + checks + "good_small.txt\\nVELTARN_CLASSIFY Pipe\\n1\\n1\\n0\\n\\nALL\\n\\n") +
                                " --save-as out.dxf");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("Completed: 1"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("r12.dxf: saved as a 2018 drawing (AC1032)"), std::string::npos) << run.out;
    // Saved again, it is a 2018 drawing already: nothing to say.
    const Outcome again = veltarn("out.dxf --check-classifier " + quote(checks + "good_small.txt") + " --save-as again.dxf");
    EXPECT_EQ(again.out.find("saved as"), std::string::npos) << again.out;

    ASSERT_EQ(veltarn::testtools::missingEzdxf(), "");
    const std::string check = "/usr/bin/python3 -c \"import ezdxf; d = ezdxf.readfile('" + (dir_ / "out.dxf").string() +
                              "'); print(d.dxfversion, 'ODEMUDATA' in d.rootdict, len(d.audit().errors))\"";
    FILE* pipe = ::popen(check.c_str(), "r");
    char line[256] = {};
    const bool read = std::fgets(line, sizeof line, pipe) != nullptr;
    ::pclose(pipe);
    EXPECT_TRUE(read);
    EXPECT_STREQ(line, "AC1032 True 0\n");
}

}  // namespace

namespace {

// A template written from the example drawing is a classifier once its comment marks go: its
// resource lines name the drawing itself, its definitions the objects' own properties.
TEST_F(Program, TemplateOfTheExampleReadsBackAsAClassifierWithoutItsCommentMarks) {
    const std::string example = VELTARN_SOURCE_DIR "/examples/utility-survey.dxf";
    fs::copy_file(example, dir_ / "survey.dxf");
    const Outcome refused = veltarn("survey.dxf --command " + quote("VELTARN_TEMPLATE\\n\\n%L_%t\\n"));
    EXPECT_NE(refused.out.find("Error: invalid format (%T/%t, %i are required).\n"), std::string::npos) << refused.out;

    const Outcome written = veltarn("survey.dxf --command " + quote("VELTARN_TEMPLATE\\n\\n%T-%l-%i\\ntemplate.txt\\n"));
    ASSERT_EQ(written.exitCode, 0) << written.err;
    // Objects that look alike (the spot-level points, the level texts) give one definition.
    EXPECT_NE(written.out.find("Completed: "), std::string::npos) << written.out;
    const std::string text = readAll(dir_ / "template.txt");
    EXPECT_EQ(text.rfind("#BlockReference\t", 0), 0u) << text.substr(0, 200);
    EXPECT_NE(text.find("Class\tCircle\t1\n\nobj_name\tCircle-sv_sewer-1\t1\t5000"), std::string::npos) << text;
    EXPECT_NE(text.find("\n#od_name\tRoad\n#\tod_fld\tid\tdescription\tCharacter\n"), std::string::npos) << text;

    std::string uncommented;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) uncommented += (line.rfind('#', 0) == 0 ? line.substr(1) : line) + "\n";
    std::ofstream(dir_ / "classifier.txt", std::ios::binary) << uncommented;
    const Outcome checked = veltarn("survey.dxf --check-classifier classifier.txt");
    EXPECT_EQ(checked.exitCode, 0) << checked.out << checked.err;
    EXPECT_EQ(checked.out.find("error"), std::string::npos) << checked.out;
}

// Rounding changes only the reals of tables the classifier knows, and says how many objects it
// changed of how many it looked at; the statistics count what the selection commands select.
TEST_F(Program, RoundAndStatisticsOverTheSelectionDrawing) {
    const std::string cases = VELTARN_SOURCE_DIR "/tests/e2e/cases/";
    fs::copy_file(cases + "selection.in.dxf", dir_ / "d.dxf");
    fs::copy_file(cases + "selection.classes.txt", dir_ / "classes.txt");
    const std::string load = "VELTARN_LOAD\\nclasses.txt\\n";
    const Outcome run = veltarn("d.dxf --command " + quote(load + "VELTARN_ROUND\\n1\\n\\nVELTARN_ROUND 40\\n\\nVELTARN_STAT\\n\\n") +
                                " --save-as out.dxf");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // LUPREC 4 at first; 40 is clamped to 15, which changes nothing more.
    EXPECT_NE(run.out.find("Decimals<4>: 1\nSelect objects: \nCompleted: 6/16\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Decimals<1>: 40\nSelect objects: \nCompleted: 0/16\n"), std::string::npos) << run.out;
    for (const char* line : {"Objects                                   16\n", "  Roads                                    4\n",
                             "  Illegal values                           4\n", "  Empty required values                    1\n",
                             "  Unclassified (no data)                   5\n", "  Foreign (data of no known class)         3\n"})
        EXPECT_NE(run.out.find(line), std::string::npos) << line << run.out;

    ASSERT_EQ(veltarn::testtools::missingEzdxf(), "");
    const std::string check = "/usr/bin/python3 -c \"import ezdxf; d = ezdxf.readfile('" + (dir_ / "out.dxf").string() +
                              "'); x = d.entitydb['A2'].get_extension_dict()['ROADS']; print([t.value for t in x.tags])\"";
    FILE* pipe = ::popen(check.c_str(), "r");
    char line[256] = {};
    const bool read = std::fgets(line, sizeof line, pipe) != nullptr;
    ::pclose(pipe);
    EXPECT_TRUE(read);
    EXPECT_STREQ(line, "['Roads', 61.0, 2]\n");
}

}  // namespace
