// The veltarn program saving onto a symbolic link (kept, its target written) and onto a FIFO
// (refused with a message and exit status 1, the FIFO left as it was).
#include "TestSupport.h"
#include "VeltarnRun.h"

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <fstream>

namespace veltarn::db {
namespace {

namespace fs = std::filesystem;

TEST(SaveTargetProgram, FollowsALinkAndRefusesWhatIsNoFile) {
    fs::path folder = test::scratchDir("save-target-program");
    std::ofstream(folder / "in.dxf", std::ios::binary) << Database::createNew().toText().value();
    std::ofstream(folder / "plan.dxf") << "old";
    fs::create_symlink("plan.dxf", folder / "link.dxf");
    ASSERT_EQ(::mkfifo((folder / "pipe.dxf").c_str(), 0600), 0);

    auto linked = test::runVeltarn({(folder / "in.dxf").string(), "--save-as", (folder / "link.dxf").string()});
    EXPECT_EQ(linked.exitCode, 0) << linked.err;
    EXPECT_TRUE(fs::is_symlink(folder / "link.dxf"));
    EXPECT_TRUE(Database::load(folder / "plan.dxf").ok());

    auto piped = test::runVeltarn({(folder / "in.dxf").string(), "--save-as", (folder / "pipe.dxf").string()});
    EXPECT_EQ(piped.exitCode, 1);
    EXPECT_EQ(piped.err, "veltarn: cannot save '" + (folder / "pipe.dxf").string() + "': it is a FIFO, not a regular file\n");
    EXPECT_TRUE(fs::is_fifo(folder / "pipe.dxf"));
}

}  // namespace
}  // namespace veltarn::db
