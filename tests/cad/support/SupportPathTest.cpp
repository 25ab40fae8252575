// Finding hatch patterns over the folders of a support path.
#include "cad/support/SupportPath.h"
#include "cad/support/UserSupportFolder.h"

#include "SupportScratch.h"

#include <gtest/gtest.h>

namespace veltarn::support {
namespace {

TEST(SupportPath, APatternIsPresentWhenAPatFileOnThePathDefinesIt) {
    std::filesystem::path dir = test::scratchDir("support-path");
    std::filesystem::create_directories(dir / "user");
    std::filesystem::create_directories(dir / "project");
    test::writeFile(dir / "user" / "acad.pat", "*Marsh,Marsh\n0,0,0,0,1\n");
    test::writeFile(dir / "project" / "Extra.PAT", ";; *COMMENTED\n*Paving\n0,0,0,0,1\n");
    test::writeFile(dir / "project" / "notes.txt", "*NOT_A_PATTERN\n0,0,0,0,1\n");

    SupportPath path((dir / "missing").string() + " ;; " + (dir / "user").string() + ";" + (dir / "project").string() + ";");
    EXPECT_EQ(path.folders().size(), 3u);  // blank entries passed over
    EXPECT_EQ(path.findPattern("MARSH"), dir / "user" / "acad.pat");
    EXPECT_EQ(path.findPattern("paving"), dir / "project" / "Extra.PAT");
    EXPECT_FALSE(path.definesPattern("COMMENTED"));
    EXPECT_FALSE(path.definesPattern("NOT_A_PATTERN"));
    EXPECT_TRUE(SupportPath(test::kSupportDir.string()).definesPattern("solid"));
}

TEST(UserSupportFolder, ANewUserGetsCopiesToAppendToAndTheUsersOwnFilesAreKept) {
    std::filesystem::path dir = test::scratchDir("user-support");
    std::filesystem::path user = dir / "home" / "support";
    std::filesystem::create_directories(user);
    test::writeFile(user / "acad.pat", "*MINE\n0,0,0,0,1\n");

    auto path = prepareUserSupportFolder(user, test::kSupportDir);
    ASSERT_TRUE(path) << path.message();
    EXPECT_EQ(*path, user.string() + ";" + test::kSupportDir.string());
    EXPECT_EQ(test::readFile(user / "acad.pat"), "*MINE\n0,0,0,0,1\n");
    EXPECT_EQ(test::readFile(user / "acadiso.pat"), test::readFile(test::kSupportDir / "acadiso.pat"));
    EXPECT_TRUE(SupportPath(*path).definesPattern("mine"));
    EXPECT_TRUE(SupportPath(*path).definesPattern("solid"));  // from the shipped acad.pat, after the user's
}

}  // namespace
}  // namespace veltarn::support
