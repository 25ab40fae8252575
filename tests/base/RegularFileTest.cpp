#include "base/RegularFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace veltarn {
namespace {

namespace fs = std::filesystem;

class RegularFile : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("veltarn_regular_file_" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    fs::path dir_;
};

TEST_F(RegularFile, ReadsAFileWholeAlsoThroughASymlink) {
    const std::string bytes("line one\r\nline two\0 and a zero byte", 35);
    std::ofstream(path("text.txt"), std::ios::binary) << bytes;
    fs::create_symlink(path("text.txt"), path("link.txt"));
    for (const char* name : {"text.txt", "link.txt"}) {
        const FileBytes file = readRegularFile(path(name), kMaxTextFileBytes);
        EXPECT_TRUE(file.ok()) << file.error;
        EXPECT_EQ(file.bytes, bytes) << name;
    }
    std::ofstream(path("empty.txt"));
    EXPECT_TRUE(readRegularFile(path("empty.txt"), 0).ok()) << "an empty file is within every limit";
}

// Each of these would hang a plain read (a FIFO without a writer blocks the open, /dev/zero
// never ends) or fail it without a word (a folder).
TEST_F(RegularFile, RefusesWhatIsNoRegularFileAndSaysWhatItIs) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    fs::create_directory(path("folder"));
    fs::create_symlink("/dev/zero", path("zero.lin"));
    const std::pair<std::string, std::string> cases[] = {
        {path("pipe"), path("pipe") + ": is a FIFO"},
        {path("folder"), path("folder") + ": is a directory"},
        {path("zero.lin"), path("zero.lin") + ": is a device"},
        {"/dev/null", "/dev/null: is a device"},
    };
    for (const auto& [name, message] : cases) {
        const FileBytes read = readRegularFile(name, kMaxTextFileBytes);
        EXPECT_EQ(read.problem, FileProblem::kNotRegular) << name;
        EXPECT_EQ(read.error, message);
        EXPECT_EQ(read.bytes, "");
        const FileBytes checked = checkRegularFile(name);
        EXPECT_EQ(checked.problem, FileProblem::kNotRegular) << name;
        EXPECT_EQ(checked.error, message);
    }
    const FileBytes missing = readRegularFile(path("missing"), kMaxTextFileBytes);
    EXPECT_EQ(missing.problem, FileProblem::kCannotOpen);
    EXPECT_EQ(missing.error, path("missing") + ": cannot open: No such file or directory");
}

TEST_F(RegularFile, StopsAtItsLimit) {
    std::ofstream(path("big.txt"), std::ios::binary) << std::string(1001, 'x');
    const FileBytes over = readRegularFile(path("big.txt"), 1000);
    EXPECT_EQ(over.problem, FileProblem::kTooLarge);
    EXPECT_EQ(over.error, path("big.txt") + ": is larger than 1000 bytes, the limit for such files");
    EXPECT_EQ(over.bytes, "");
    EXPECT_EQ(readRegularFile(path("big.txt"), 1001).bytes.size(), 1001u);
    EXPECT_NE(readRegularFile(path("big.txt"), 0).error.find("is larger than 0 bytes"), std::string::npos);
}

}  // namespace
}  // namespace veltarn
