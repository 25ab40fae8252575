// A save either replaces the drawing whole or leaves the old one as it was; no temporary file is
// left behind either way.
#include "TestFiles.h"

#include "cad/dxf/OutputSink.h"

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <set>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;

using test::namesIn;

Result<void> save(const fs::path& target, const std::string& text, const char* failure = nullptr) {
    return saveAtomically(target, [&](OutputSink& sink) -> Result<void> {
        sink.write(text);
        if (failure) return makeError(failure);
        return {};
    });
}

TEST(AtomicSave, ReplacesTheFileWholeKeepingItsPermissions) {
    test::TempFolder folder;
    fs::path target = folder / "plan.dxf";
    test::writeBytes(target, "old");
    ::chmod(target.c_str(), 0640);
    std::string big(3 << 20, 'x');  // more than the write buffer holds
    ASSERT_TRUE(save(target, big).ok());
    EXPECT_EQ(test::readBytes(target), big);
    struct stat info {};
    ::stat(target.c_str(), &info);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"plan.dxf"});
}

TEST(AtomicSave, FailureLeavesTheOldFileAndNoTemporaryOne) {
    test::TempFolder folder;
    fs::path target = folder / "plan.dxf", directory = folder / "sub.dxf", missing = folder / "missing";
    test::writeBytes(target, "old");
    fs::create_directory(directory);

    auto halfway = save(target, "half a drawing", "the value \"abc\" does not fit group code 70");
    EXPECT_EQ(halfway.message(), "cannot save '" + target.string() + "': the value \"abc\" does not fit group code 70");
    auto refused = save(directory, "new");  // refused before anything is written
    EXPECT_EQ(refused.message(), "cannot save '" + directory.string() + "': it is a directory, not a regular file");
    auto nowhere = save(missing / "plan.dxf", "new");
    EXPECT_EQ(nowhere.message(), "cannot save '" + (missing / "plan.dxf").string() + "': cannot create a file in '" +
                                     missing.string() + "': No such file or directory");

    EXPECT_EQ(test::readBytes(target), "old");
    EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"plan.dxf", "sub.dxf"}));
}

}  // namespace
}  // namespace veltarn::dxf
