// Runs the golden transcript cases through the real program. A case is cases/NAME.scr; beside it
// NAME.in.dxf, when present, is the drawing the program opens, and other NAME.* files are copied
// into the run's folder as they are (scripts the case runs with SCRIPT). The run's folder is the
// working folder, so its path is written "<dir>" in the transcript that is compared.
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

const fs::path kCases = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/cases";
const fs::path kProgram = fs::path(VELTARN_BINARY_DIR) / "bin/veltarn";
const fs::path kAuditor = "/work/shared/tools/audit_dxf.py";

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void writeFile(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

std::string quote(const std::string& text) {
    std::string quoted = "'";
    for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

struct ShellRun {
    int exitCode = -1;
    std::string out;
};

ShellRun runShell(const std::string& command) {
    ShellRun run;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) run.out.append(buffer, n);
    const int status = ::pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    if (from.empty()) return;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

std::vector<std::string> caseNames() {
    std::vector<std::string> names;
    for (const auto& item : fs::directory_iterator(kCases))
        if (item.path().extension() == ".scr" && item.path().stem().extension().empty())
            names.push_back(item.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

bool updating() {
    const char* value = std::getenv("VELTARN_UPDATE_GOLDEN");
    return value && std::string(value) == "1";
}

// Compares `actual` with the golden file, or rewrites it when updating.
void expectGolden(const fs::path& golden, const std::string& actual, const std::string& what) {
    if (updating()) {
        writeFile(golden, actual);
        return;
    }
    ASSERT_TRUE(fs::exists(golden)) << golden << " is missing; run with VELTARN_UPDATE_GOLDEN=1 to write it";
    const std::string expected = readFile(golden);
    EXPECT_EQ(actual, expected) << what << " differs from " << golden;
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
    if (fs::exists(kAuditor) && fs::exists("/usr/bin/python3")) {
        const ShellRun audit = runShell("/usr/bin/python3 " + quote(kAuditor.string()) + " " + quote(saved.string()) + " 2>&1");
        EXPECT_EQ(audit.exitCode, 0) << "the saved drawing fails the independent audit:\n" << audit.out;
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, Transcript, ::testing::ValuesIn(caseNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) { return info.param; });

}  // namespace
