// The veltarn program on drawings: exit status, messages on standard error, and the memory it
// takes on hostile files.
#include "BinaryDxf.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <iostream>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;
using test::quoted;

const std::string kProgram = VELTARN_BINARY_DIR "/bin/veltarn";

struct Outcome {
    int exitCode;
    std::string out, err;
};

// Without a script the program reads commands from its input: it gets none.
Outcome veltarn(const std::string& arguments) {
    test::TempFolder folder;
    auto run = test::runCommand(quoted(kProgram) + " " + arguments + " </dev/null 2>" + quoted((folder / "err").string()));
    return {run.exitCode, run.output, test::readBytes(folder / "err")};
}

TEST(Veltarn, ExitStatusAndMessages) {
    EXPECT_EQ(veltarn("--help").out.rfind("usage: veltarn [DRAWING]", 0), 0u);
    EXPECT_EQ(veltarn("--version").exitCode, 0);
    Outcome usage = veltarn("a.dxf --save-as");
    EXPECT_EQ(usage.exitCode, 2);
    EXPECT_EQ(usage.err.rfind("veltarn: ", 0), 0u) << usage.err;

    test::TempFolder folder;
    const std::string data = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/", bad = data + "bad_group_code.dxf";
    Outcome saved = veltarn(quoted(data + "good_tolerated_quirks.dxf") + " --save-as " + quoted((folder / "out.dxf").string()));
    EXPECT_EQ(saved.exitCode, 0);
    EXPECT_EQ(saved.out + saved.err, "");
    EXPECT_TRUE(fs::exists(folder / "out.dxf"));
    Outcome refused = veltarn(quoted(bad) + " --save-as " + quoted((folder / "never.dxf").string()));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err, "veltarn: " + bad + ":11: expected a group code, found \"ABC\"\n");
    EXPECT_FALSE(fs::exists(folder / "never.dxf"));
}

// Peak memory loading `file`, as GNU time measures it: a child spawned from this test would count
// the test's own memory as well.
double peakMiB(const fs::path& file) {
    fs::path report = file.string() + ".time";
    test::runCommand("/usr/bin/time -f %M -o " + quoted(report.string()) + " " + quoted(kProgram) + " " +
                     quoted(file.string()) + " </dev/null 2>/dev/null");
    std::string lines = test::readBytes(report);  // the figure is on the last line
    return std::atof(lines.c_str() + lines.find_last_of('\n', lines.size() - 2) + 1) / 1024;
}

TEST(Veltarn, MemoryStaysWithinASmallMultipleOfTheFile) {
    ASSERT_TRUE(fs::exists("/usr/bin/time")) << "/usr/bin/time is missing (Debian package time)";
    test::TempFolder folder;
    test::writeBytes(folder / "tiny.dxf", "0\nEOF\n");
    const double baseline = peakMiB(folder / "tiny.dxf");
    auto sixteenMiB = [](std::string head, std::string_view unit) {
        while (head.size() < (16u << 20)) head += unit;
        return head;
    };
    // Lines that are no tags, and the shortest tags there are.
    const std::pair<const char*, std::string> hostile[] = {
        {"empty-lines", std::string(16 << 20, '\n')},
        {"shortest-ascii-tags", sixteenMiB("0\nSECTION\n", "1\n\n")},
        {"shortest-binary-tags", sixteenMiB(test::BinaryDxf(true).text(0, "SECTION").bytes(), {"\x01", 2})}};
    for (const auto& [name, bytes] : hostile) {
        test::writeBytes(folder / name, bytes);
        double times = (peakMiB(folder / name) - baseline) / 16;
        EXPECT_LT(times, 6.0) << name;
        std::cout << "  " << name << ": " << times << " times the file\n";
    }
}

}  // namespace
}  // namespace veltarn::dxf
