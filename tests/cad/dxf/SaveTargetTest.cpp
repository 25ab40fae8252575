// Saving onto what is not a plain file: a symbolic link is followed and kept, anything else that
// is no regular file is refused untouched; owner and mode stay; a killed save's leftovers go.
#include "TestFiles.h"

#include "cad/dxf/OutputSink.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <set>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;

using test::namesIn;

Result<void> save(const fs::path& target, const std::string& text) {
    return saveAtomically(target, [&](OutputSink& sink) -> Result<void> {
        sink.write(text);
        return {};
    });
}

// Why a save was refused; "saved" when it was not.
std::string refusal(const fs::path& target) {
    auto saved = save(target, "x");
    return saved.ok() ? "saved" : saved.message();
}

TEST(SaveTarget, ASymbolicLinkIsKeptAndItsTargetWritten) {
    test::TempFolder folder;
    fs::create_directory(folder / "real");
    test::writeBytes(folder / "real" / "plan.dxf", "old");
    fs::create_symlink("real/plan.dxf", folder / "link.dxf");
    fs::create_symlink("link.dxf", folder / "link-to-link.dxf");
    fs::create_symlink("real/new.dxf", folder / "dangling.dxf");

    ASSERT_TRUE(save(folder / "link.dxf", "first").ok());
    ASSERT_TRUE(save(folder / "link-to-link.dxf", "second").ok());
    ASSERT_TRUE(save(folder / "dangling.dxf", "third").ok());

    EXPECT_TRUE(fs::is_symlink(folder / "link.dxf"));
    EXPECT_TRUE(fs::is_symlink(folder / "link-to-link.dxf"));
    EXPECT_TRUE(fs::is_symlink(folder / "dangling.dxf"));
    EXPECT_EQ(test::readBytes(folder / "real" / "plan.dxf"), "second");
    EXPECT_EQ(test::readBytes(folder / "real" / "new.dxf"), "third");
    // The temporary files went beside the file written, and are gone.
    EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"real", "link.dxf", "link-to-link.dxf", "dangling.dxf"}));
    EXPECT_EQ(namesIn(folder / "real"), (std::set<std::string>{"plan.dxf", "new.dxf"}));
}

TEST(SaveTarget, WhatIsNoRegularFileIsRefusedAndLeftAsItWas) {
    test::TempFolder folder;
    fs::create_directory(folder / "drawing.dxf");
    ASSERT_EQ(::mkfifo((folder / "pipe.dxf").c_str(), 0600), 0);
    fs::create_symlink("pipe.dxf", folder / "link-to-pipe.dxf");

    EXPECT_EQ(refusal(folder / "drawing.dxf"), "cannot save '" + (folder / "drawing.dxf").string() + "': it is a directory, not a regular file");
    EXPECT_EQ(refusal(folder / "pipe.dxf"), "cannot save '" + (folder / "pipe.dxf").string() + "': it is a FIFO, not a regular file");
    EXPECT_EQ(refusal(folder / "link-to-pipe.dxf"), "cannot save '" + (folder / "link-to-pipe.dxf").string() + "': '" + (folder / "pipe.dxf").string() +
                                    "' is a FIFO, not a regular file");
    EXPECT_TRUE(fs::is_directory(folder / "drawing.dxf"));
    EXPECT_TRUE(fs::is_fifo(folder / "pipe.dxf"));

    // A device node of our own (the null device's numbers), where we may make one.
    if (::mknod((folder / "device.dxf").c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0) {
        EXPECT_EQ(refusal(folder / "device.dxf"), "cannot save '" + (folder / "device.dxf").string() + "': it is a device, not a regular file");
        EXPECT_TRUE(fs::is_character_file(folder / "device.dxf"));
    }
    EXPECT_EQ(namesIn(folder.path()).size(), fs::exists(folder / "device.dxf") ? 4u : 3u);  // no temporary file left
}

TEST(SaveTarget, OwnerAndModeAreKept) {
    test::TempFolder folder;
    fs::path target = folder / "plan.dxf";
    test::writeBytes(target, "old");
    ASSERT_EQ(::chmod(target.c_str(), 0604), 0);
    // Giving a file away needs the right to: as root the owner is tested too.
    const bool root = ::geteuid() == 0;
    if (root) {
        ASSERT_EQ(::chown(target.c_str(), 4321, 4322), 0);
    }
    ASSERT_TRUE(save(target, "new").ok());
    struct stat info {};
    ASSERT_EQ(::stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0604u);
    if (root) {
        EXPECT_EQ(info.st_uid, 4321u);
        EXPECT_EQ(info.st_gid, 4322u);
    }
    EXPECT_EQ(test::readBytes(target), "new");
}

// A process id no process has: a child's after it ended.
pid_t endedProcess() {
    pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return child;
}

void touch(const fs::path& file, long secondsFromNow) {
    const time_t when = ::time(nullptr) + secondsFromNow;
    struct timeval times[2] = {{when, 0}, {when, 0}};
    ::utimes(file.c_str(), times);
}

TEST(SaveTarget, TheNextSaveRemovesWhatAKilledSaveOfTheSameDrawingLeft) {
    test::TempFolder folder;
    fs::path target = folder / "plan.dxf";
    test::writeBytes(target, "old");
    // What a killed save left, a save still running (the first process is always alive), a file
    // younger than this save (whoever wrote it might still), and another drawing's leftover.
    const std::string dead = std::to_string(endedProcess());
    const std::string killed = ".plan.dxf.veltarn-save-" + dead + "-a1B2c3", running = ".plan.dxf.veltarn-save-1-x9Y8z7",
                      fresh = ".plan.dxf.veltarn-save-" + dead + "-q5W4e3", other = ".other.dxf.veltarn-save-" + dead + "-r2T3y4";
    for (const auto& name : {killed, running, fresh, other}) {
        test::writeBytes(folder / name, std::string(1000, 'x'));
        touch(folder / name, name == fresh ? 3600 : -3600);
    }
    ASSERT_TRUE(save(target, "new").ok());
    EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"plan.dxf", running, fresh, other}));
    EXPECT_EQ(test::readBytes(target), "new");
}

}  // namespace
}  // namespace veltarn::dxf
