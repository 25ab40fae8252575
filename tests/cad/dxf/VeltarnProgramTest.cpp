// The veltarn program as a user runs it: options, exit status, messages on standard error, and
// the memory it takes on hostile files.
#include "BinaryDxf.h"
#include "TempFolder.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <iostream>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;
using test::quoteForShell;
using test::TempFolder;

const std::string kProgram = VELTARN_BINARY_DIR "/bin/veltarn";
const std::string kDrawing = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/good_tolerated_quirks.dxf";

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

Outcome veltarn(const std::string& arguments) {
    TempFolder folder;
    fs::path err = folder / "stderr";
    auto run = test::runCommand(quoteForShell(kProgram) + " " + arguments + " 2>" + quoteForShell(err.string()));
    return {run.exitCode, run.output, test::readBytes(err)};
}

TEST(Veltarn, HelpVersionAndUsageErrors) {
    Outcome help = veltarn("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.out.rfind("usage: veltarn [DRAWING] [--save-as OUT]\n", 0), 0u) << help.out;
    EXPECT_EQ(help.err, "");

    Outcome version = veltarn("--version");
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out.rfind("veltarn ", 0), 0u) << version.out;

    for (const char* wrong : {"", "--frobnicate", "a.dxf b.dxf", "a.dxf --save-as"}) {
        Outcome usage = veltarn(wrong);
        EXPECT_EQ(usage.exitCode, 2) << wrong;
        EXPECT_EQ(usage.out, "") << wrong;
        EXPECT_EQ(usage.err.rfind("veltarn: ", 0), 0u) << wrong << ": " << usage.err;
        EXPECT_NE(usage.err.find("usage: veltarn"), std::string::npos) << wrong;
    }
    EXPECT_EQ(veltarn("--frobnicate").err.substr(0, 39), "veltarn: unknown option '--frobnicate'\n");
}

TEST(Veltarn, SavesAsOrSaysWhyNot) {
    TempFolder folder;
    fs::path out = folder / "out.dxf";
    Outcome saved = veltarn(quoteForShell(kDrawing) + " --save-as " + quoteForShell(out.string()));
    EXPECT_EQ(saved.exitCode, 0) << saved.err;
    EXPECT_EQ(saved.out + saved.err, "");
    std::string written = test::readBytes(out);
    EXPECT_EQ(written.substr(written.size() - 10), "  0\r\nEOF\r\n");  // completed with the missing EOF

    Outcome missing = veltarn(quoteForShell((folder / "none.dxf").string()));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "veltarn: " + (folder / "none.dxf").string() + ": cannot open: No such file or directory\n");

    const std::string bad = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/bad_group_code.dxf";
    Outcome refused = veltarn(quoteForShell(bad) + " --save-as " + quoteForShell((folder / "never.dxf").string()));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.err, "veltarn: " + bad + ":11: expected a group code, found \"ABC\"\n");
    EXPECT_FALSE(fs::exists(folder / "never.dxf"));

    Outcome unsaved = veltarn(quoteForShell(kDrawing) + " --save-as " + quoteForShell((folder / "no" / "x.dxf").string()));
    EXPECT_EQ(unsaved.exitCode, 1);
    EXPECT_EQ(unsaved.err.rfind("veltarn: cannot save '", 0), 0u) << unsaved.err;
}

// Peak resident memory of the program loading `file`, in bytes, as GNU time measures it: a
// process spawned from this one would count this one's memory as its own.
long peakMemoryLoading(const fs::path& file) {
    fs::path report = file.string() + ".time";
    test::runCommand("/usr/bin/time -f %M -o " + quoteForShell(report.string()) + " " + quoteForShell(kProgram) + " " +
                     quoteForShell(file.string()) + " 2>/dev/null");
    // The last line holds the figure; a line before it may say that the program failed.
    std::string lines = test::readBytes(report);
    std::size_t last = lines.find_last_of('\n', lines.size() >= 2 ? lines.size() - 2 : 0);
    std::string kibibytes = last == std::string::npos ? lines : lines.substr(last + 1);
    return kibibytes.empty() ? -1 : std::atol(kibibytes.c_str()) * 1024L;
}

TEST(Veltarn, MemoryStaysWithinASmallMultipleOfTheFile) {
    if (!fs::exists("/usr/bin/time")) GTEST_SKIP() << "/usr/bin/time is missing (Debian package time)";
    TempFolder folder;
    const std::size_t size = 16 << 20;
    auto repeated = [&](std::string head, std::string_view unit) {
        while (head.size() + unit.size() <= size) head += unit;
        return head;
    };
    test::writeBytes(folder / "tiny.dxf", "0\nEOF\n");
    const long baseline = peakMemoryLoading(folder / "tiny.dxf");
    ASSERT_GT(baseline, 0);
    // Shapes that maximise the tags per byte, or lines that are no tags at all.
    std::string oneByteCodes = test::BinaryDxf(true).text(0, "SECTION").bytes();
    const std::pair<const char*, std::string> hostile[] = {
        {"empty-lines", std::string(size, '\n')},
        {"shortest-ascii-tags", repeated("0\nSECTION\n", "1\n\n")},
        {"shortest-binary-tags", repeated(oneByteCodes, std::string_view("\x01\0", 2))},
    };
    for (const auto& [name, bytes] : hostile) {
        test::writeBytes(folder / name, bytes);
        long extra = peakMemoryLoading(folder / name) - baseline;
        EXPECT_LT(extra, 6L * static_cast<long>(bytes.size())) << name << ": " << (extra >> 20) << " MiB for "
                                                                << (bytes.size() >> 20) << " MiB";
        std::cout << "  " << name << ": " << extra / static_cast<double>(bytes.size()) << " times the file\n";
    }
}

}  // namespace
}  // namespace veltarn::dxf
