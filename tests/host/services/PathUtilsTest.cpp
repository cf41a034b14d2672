#include "OrvLibrary/host/PathUtils.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TempFolder.h"

namespace {

struct RootCase
{
    const char* given;
    const char* data;
    const char* home;
    const char* root;
};

class DefaultRoot : public testing::TestWithParam<RootCase>
{
};

TEST_P(DefaultRoot, followsTheEnvironment)
{
    const test::ScopedEnvironment given("ORV_LIBRARY_ROOT", GetParam().given);
    const test::ScopedEnvironment data("XDG_DATA_HOME", GetParam().data);
    const test::ScopedEnvironment home("HOME", GetParam().home);
    EXPECT_EQ(RootPathUtils::defaultRoot(), fileString(GetParam().root));
}

INSTANTIATE_TEST_SUITE_P(
    PathUtils, DefaultRoot,
    testing::Values(RootCase{"/given", "/data", "/home/u", "/given"},
                    RootCase{nullptr, "/data", "/home/u", "/data/orv-library"},
                    RootCase{"", "/data/", "/home/u", "/data/orv-library"},
                    RootCase{nullptr, nullptr, "/home/u", "/home/u/.local/share/orv-library"},
                    RootCase{nullptr, "", "/home/u/", "/home/u/.local/share/orv-library"},
                    RootCase{nullptr, "relative/is/ignored", "/home/u", "/home/u/.local/share/orv-library"}));

TEST(PathUtils, withoutHomeTheUserDatabaseIsAsked)
{
    const test::ScopedEnvironment given("ORV_LIBRARY_ROOT", nullptr);
    const test::ScopedEnvironment data("XDG_DATA_HOME", nullptr);
    const test::ScopedEnvironment home("HOME", nullptr);
    const std::string root = RootPathUtils::defaultRoot().toNativeString();
    const passwd* const user = getpwuid(geteuid());
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(root, std::string(user->pw_dir) + "/.local/share/orv-library");
}

TEST(PathUtils, withoutHomeAUserWhomTheDatabaseLacksHasTheTopFolder)
{
    constexpr uid_t kUnknown = 54321;
    if (geteuid() != 0 || getpwuid(kUnknown))
        GTEST_SKIP() << "needs the superuser, who can become an unknown user";
    const test::ScopedEnvironment given("ORV_LIBRARY_ROOT", nullptr);
    const test::ScopedEnvironment data("XDG_DATA_HOME", nullptr);
    const test::ScopedEnvironment home("HOME", nullptr);
    const auto end = test::runInChild([] {
        if (seteuid(kUnknown) != 0)
            return 1;
        return RootPathUtils::defaultRoot() == fileString("/.local/share/orv-library") ? 0 : 2;
    });
    EXPECT_EQ(end.status, 0);
}

TEST(PathUtils, aRelativeRootIsSeenFromTheCurrentFolder)
{
    const std::string current = std::filesystem::current_path();
    const test::ScopedEnvironment given("ORV_LIBRARY_ROOT", "some/root");
    EXPECT_EQ(RootPathUtils::defaultRoot(), fileString(current + "/some/root"));
    EXPECT_EQ(RootPathUtils(fileString("some/root/")).root(), fileString(current + "/some/root/"));
    EXPECT_EQ(RootPathUtils(fileString()).root(), fileString(current + "/"));
}

struct Getter
{
    fileString (PathUtils::*get)() const;
    const char* folder;
};

const Getter kGetters[] = {{&PathUtils::getUserLibraryDatabasePath, "user/"},
                           {&PathUtils::getCoreLibraryDatabasePath, "core/"},
                           {&PathUtils::getBonusLibraryDatabasePath, "bonus/"},
                           {&PathUtils::getManufacturerLibraryPath, "manufacturer/"},
                           {&PathUtils::getManufacturerDataPath, "manufacturer-data/"},
                           {&PathUtils::getProprietaryLibraryReferencedFilesPath, "referenced/"},
                           {&PathUtils::getUserTexturePath, "textures/"},
                           {&PathUtils::getTempPath, "temp/"}};

void expectFoldersBelow(const PathUtils& paths, const std::string& root)
{
    for (const Getter& getter : kGetters)
        EXPECT_EQ((paths.*getter.get)(), fileString(root + "/" + getter.folder));
}

TEST(PathUtils, everyFolderLiesBelowTheRootAndEndsWithASeparator)
{
    const test::TempFolder folder;
    expectFoldersBelow(RootPathUtils(fileString(folder.path())), folder.path());
    expectFoldersBelow(RootPathUtils(fileString(folder.path() + "//")), folder.path());
    EXPECT_EQ(RootPathUtils(fileString(folder.path())).root(), fileString(folder.path() + "/"));
}

TEST(PathUtils, theDefaultFollowsTheEnvironmentAtEveryCall)
{
    const test::TempFolder folder;
    PathUtils* const former = PathUtils::install(nullptr);
    for (const std::string name : {"/first", "/second"}) {
        const test::ScopedEnvironment given("ORV_LIBRARY_ROOT", (folder.path() + name).c_str());
        expectFoldersBelow(PathUtils::getObject(), folder.path() + name);
    }
    PathUtils::install(former);
}

mode_t modeOf(const fileString& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.toNativeString().c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

TEST(PathUtils, theTemporaryFolderIsPrivate)
{
    const test::TempFolder folder;
    const RootPathUtils paths(folder.file("deep/root"));
    const fileString temp = paths.getTempPath();
    EXPECT_EQ(modeOf(temp), 0700u);
    EXPECT_EQ(modeOf(paths.root()), 0755u);
    for (const mode_t mode : {0755u, 0701u, 0710u}) {
        ASSERT_EQ(chmod(temp.toNativeString().c_str(), mode), 0);
        EXPECT_EQ(modeOf(paths.getTempPath()), 0700u) << "also when another program made it";
    }
}

TEST(PathUtils, everyFolderCanBeCreated)
{
    const test::TempFolder folder;
    const RootPathUtils paths(folder.file("root"));
    std::string reason;
    EXPECT_TRUE(paths.createFolders(reason));
    EXPECT_TRUE(paths.createFolders(reason)) << "again";
    EXPECT_EQ(reason, "");
    EXPECT_EQ(test::listTree(folder.path()),
              (std::vector<std::string>{"root/", "root/bonus/", "root/core/", "root/manufacturer-data/",
                                        "root/manufacturer/", "root/referenced/", "root/temp/",
                                        "root/textures/", "root/user/"}));
    EXPECT_EQ(modeOf(paths.getCoreLibraryDatabasePath()), 0755u);
    EXPECT_EQ(modeOf(paths.getTempPath()), 0700u);
}

TEST(PathUtils, aFolderThatCannotBeCreatedIsNamedWithTheReason)
{
    const test::TempFolder folder;
    folder.write("root/core", "a file in the way");
    const RootPathUtils paths(folder.file("root"));
    std::string reason;
    EXPECT_FALSE(paths.createFolders(reason));
    EXPECT_EQ(reason, folder.path() + "/root/core/: " + std::strerror(ENOTDIR));
}

TEST(PathUtils, installReturnsTheFormerOne)
{
    RootPathUtils first(fileString("/first"));
    PathUtils* const former = PathUtils::install(&first);
    EXPECT_EQ(&PathUtils::getObject(), &first);
    EXPECT_EQ(PathUtils::install(nullptr), &first);
    EXPECT_NE(&PathUtils::getObject(), &first);
    EXPECT_EQ(PathUtils::install(former), nullptr);
}

} // namespace
