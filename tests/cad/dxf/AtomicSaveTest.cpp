// Saving never half-writes a drawing: the old file stays as it was unless the new one is complete,
// and no temporary file is left behind either way.
#include "TempFolder.h"
#include "TestFiles.h"

#include "cad/dxf/OutputSink.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <set>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
    return names;
}

Result<void> saveText(const fs::path& target, const std::string& text) {
    return saveAtomically(target, [&](OutputSink& sink) -> Result<void> {
        sink.write(text);
        return {};
    });
}

TEST(AtomicSave, ReplacesTheFileAndKeepsItsPermissions) {
    TempFolder folder;
    fs::path target = folder / "plan.dxf";
    test::writeBytes(target, "old");
    ::chmod(target.c_str(), 0640);
    std::string big(3 << 20, 'x');  // larger than the write buffer
    ASSERT_TRUE(saveText(target, big).ok());
    EXPECT_EQ(test::readBytes(target), big);
    struct stat info {};
    ASSERT_EQ(::stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{"plan.dxf"});
}

TEST(AtomicSave, FailureLeavesTheOldFileAndNoTemporaryOne) {
    TempFolder folder;
    fs::path target = folder / "plan.dxf";
    test::writeBytes(target, "old");

    // The drawing fails to write halfway.
    auto failed = saveAtomically(target, [](OutputSink& sink) -> Result<void> {
        sink.write("half a drawing");
        return makeError("the value \"abc\" does not fit group code 70");
    });
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.message(), "cannot save '" + target.string() + "': the value \"abc\" does not fit group code 70");

    // The target is a folder, so the final rename fails.
    fs::create_directory(folder / "sub.dxf");
    auto renamed = saveText(folder / "sub.dxf", "new");
    ASSERT_FALSE(renamed.ok());
    EXPECT_EQ(renamed.message(), "cannot save '" + (folder / "sub.dxf").string() + "': Is a directory");

    EXPECT_EQ(test::readBytes(target), "old");
    EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"plan.dxf", "sub.dxf"}));
}

TEST(AtomicSave, FolderThatCannotTakeTheFile) {
    TempFolder folder;
    fs::path missing = folder / "missing";
    auto result = saveText(missing / "plan.dxf", "new");
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.message(), "cannot save '" + (missing / "plan.dxf").string() + "': cannot create a file in '" +
                                    missing.string() + "': No such file or directory");

    test::writeBytes(folder / "file", "");
    result = saveText(folder / "file" / "plan.dxf", "new");
    ASSERT_FALSE(result.ok());
    EXPECT_NE(result.message().find("Not a directory"), std::string::npos) << result.message();

    if (::geteuid() == 0) GTEST_SKIP() << "root may write into a read-only folder: that case needs another user";
    fs::path readOnly = folder / "read-only";
    fs::create_directory(readOnly);
    test::writeBytes(readOnly / "plan.dxf", "old");
    ::chmod(readOnly.c_str(), 0500);
    result = saveText(readOnly / "plan.dxf", "new");
    ::chmod(readOnly.c_str(), 0700);
    ASSERT_FALSE(result.ok());
    EXPECT_NE(result.message().find("Permission denied"), std::string::npos) << result.message();
    EXPECT_EQ(test::readBytes(readOnly / "plan.dxf"), "old");
    EXPECT_EQ(namesIn(readOnly), std::set<std::string>{"plan.dxf"});
}

}  // namespace
}  // namespace veltarn::dxf
