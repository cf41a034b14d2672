#include "OrvLibrary/host/FileUtils.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/LockingFStream.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

class FileUtilsTest : public testing::Test
{
protected:
    FileUtilsTest() { setMode(fileString(mFolder.path()), 0755); }

    static void setMode(const fileString& path, mode_t mode)
    {
        ASSERT_EQ(chmod(path.toNativeString().c_str(), mode), 0);
    }

    static mode_t modeOf(const fileString& path)
    {
        struct stat status = {};
        EXPECT_EQ(stat(path.toNativeString().c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    fileString link(const std::string& name, const std::string& to) const
    {
        EXPECT_EQ(symlink(to.c_str(), mFolder.file(name).toNativeString().c_str()), 0);
        return mFolder.file(name);
    }

    fileString folder(const std::string& name) const
    {
        std::filesystem::create_directories(mFolder.path() + "/" + name);
        return mFolder.file(name);
    }

    std::vector<std::string> list() const { return test::listTree(mFolder.path()); }

    static fileString withNul(const fileString& path)
    {
        return fileString(path.toNativeString() + std::string("\0x", 2));
    }

    test::TempFolder mFolder;
};

TEST_F(FileUtilsTest, pathExistsForFilesAndFoldersButNotForBrokenLinks)
{
    const fileString file = mFolder.write("file", "");
    EXPECT_TRUE(FileUtils::pathExists(file));
    EXPECT_TRUE(FileUtils::pathExists(fileString(mFolder.path())));
    EXPECT_TRUE(FileUtils::pathExists(link("good", "file")));
    EXPECT_FALSE(FileUtils::pathExists(link("broken", "none")));
    EXPECT_FALSE(FileUtils::pathExists(file / fileString("below")));
    EXPECT_FALSE(FileUtils::pathExists(fileString()));
    EXPECT_FALSE(FileUtils::pathExists(withNul(file)));
}

TEST_F(FileUtilsTest, fileSizeIsBelowOneForEmptyAndMissing)
{
    const fileString file = mFolder.write("five", "12345");
    EXPECT_EQ(FileUtils::fileSize(file), 5);
    EXPECT_EQ(FileUtils::fileSize(link("link", "five")), 5);
    EXPECT_EQ(FileUtils::fileSize(mFolder.write("empty", "")), 0);
    EXPECT_EQ(FileUtils::fileSize(mFolder.file("none")), -1);
    EXPECT_EQ(FileUtils::fileSize(fileString(mFolder.path())), -1);
    EXPECT_EQ(FileUtils::fileSize(withNul(file)), -1);
}

TEST_F(FileUtilsTest, fileSizeGoesBeyondFourGigabytes)
{
    const fileString file = mFolder.write("large", "");
    std::filesystem::resize_file(file.toNativeString(), 5000000000u); // a sparse file
    EXPECT_EQ(FileUtils::fileSize(file), 5000000000);
}

TEST_F(FileUtilsTest, canWriteAnExistingFileThatIsNotReadOnly)
{
    const fileString file = mFolder.write("file", "x");
    EXPECT_TRUE(FileUtils::canWriteFile(file));
    setMode(file, 0444);
    EXPECT_FALSE(FileUtils::canWriteFile(file)) << "also for the superuser";
    EXPECT_FALSE(FileUtils::canWriteFile(folder("folder")));
    EXPECT_FALSE(FileUtils::canWriteFile(withNul(file)));
    EXPECT_EQ(test::readFile(file), "x");
}

TEST_F(FileUtilsTest, aMissingFileCanBeWrittenWhereItsFolderCan)
{
    EXPECT_TRUE(FileUtils::canWriteFile(mFolder.file("none")));
    EXPECT_FALSE(FileUtils::canWriteFile(mFolder.file("none/none")));
    EXPECT_FALSE(FileUtils::canWriteFile(mFolder.write("file", "") / fileString("below")));
    EXPECT_FALSE(FileUtils::canWriteFile(fileString()));
    EXPECT_EQ(list(), std::vector<std::string>{"file"});
}

TEST_F(FileUtilsTest, fileOfAnotherUserCannotBeWritten)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can become somebody else";
    const fileString file = mFolder.write("file", "x");
    const auto end = test::runWithoutRights([&] {
        const bool isRefused =
            !FileUtils::canWriteFile(file) && !FileUtils::canWriteFile(mFolder.file("none"));
        return isRefused && FileUtils::isPathWriteLocked(file) ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
}

TEST_F(FileUtilsTest, aFileIsWriteLockedWhileAStreamHoldsIt)
{
    const fileString file = mFolder.write("file", "x");
    EXPECT_FALSE(FileUtils::isPathWriteLocked(file));
    {
        LockingFStream reader(file, std::ios_base::in);
        EXPECT_TRUE(FileUtils::isPathWriteLocked(file));
    }
    EXPECT_FALSE(FileUtils::isPathWriteLocked(file));
    LockingFStream writer(file, std::ios_base::out | std::ios_base::trunc);
    EXPECT_TRUE(FileUtils::isPathWriteLocked(file));
    writer.close();
    EXPECT_FALSE(FileUtils::isPathWriteLocked(file));
}

TEST_F(FileUtilsTest, aFileIsWriteLockedWhileAnotherProcessHoldsIt)
{
    const fileString file = mFolder.write("file", "x");
    {
        const test::WaitingChild child([&] { new LockingFStream(file, std::ios_base::in); });
        EXPECT_TRUE(FileUtils::isPathWriteLocked(file));
    }
    EXPECT_FALSE(FileUtils::isPathWriteLocked(file)) << "the lock ends with the process";
}

TEST_F(FileUtilsTest, aReadOnlyFileIsWriteLockedAndAMissingOneIsNot)
{
    const fileString file = mFolder.write("file", "x");
    setMode(file, 0444);
    EXPECT_TRUE(FileUtils::isPathWriteLocked(file)) << "also for the superuser";
    EXPECT_FALSE(FileUtils::isPathWriteLocked(mFolder.file("none")));
    EXPECT_FALSE(FileUtils::isPathWriteLocked(withNul(file)));
}

TEST_F(FileUtilsTest, makeFileWritableClearsReadOnlyProtection)
{
    const fileString file = mFolder.write("file", "x");
    setMode(file, 0044);
    FileUtils::makeFileWritable(file);
    EXPECT_EQ(modeOf(file), 0644u);
    FileUtils::makeFileWritable(mFolder.file("none"));
    setMode(file, 0444);
    FileUtils::makeFileWritable(withNul(file));
    EXPECT_EQ(modeOf(file), 0444u);
}

TEST_F(FileUtilsTest, setFilePermissionGivesTheStandardOnes)
{
    const fileString file = mFolder.write("file", "x");
    for (const mode_t mode : {0600u, 0777u, 0400u}) {
        setMode(file, mode);
        FileUtils::setFilePermission(file);
        EXPECT_EQ(modeOf(file), 0644u);
    }
}

std::string permissionFailure(const fileString& path)
{
    try {
        FileUtils::setFilePermission(path);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST_F(FileUtilsTest, setFilePermissionThrowsWithPathAndReason)
{
    const fileString none = mFolder.file("none");
    EXPECT_EQ(permissionFailure(none), none.toNativeString() + ": " + std::strerror(ENOENT));
    const fileString file = mFolder.write("file", "x");
    setMode(file, 0600);
    EXPECT_THROW(FileUtils::setFilePermission(withNul(file)), std::runtime_error);
    EXPECT_EQ(modeOf(file), 0600u);
}

TEST_F(FileUtilsTest, setFilePermissionThrowsForTheFileOfAnother)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can become somebody else";
    const fileString file = mFolder.write("file", "x");
    const auto end = test::runWithoutRights([&] {
        return permissionFailure(file) == file.toNativeString() + ": " + std::strerror(EPERM) ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
}

TEST_F(FileUtilsTest, everyMissingFolderIsCreated)
{
    EXPECT_TRUE(FileUtils::createDirectoriesWithPerm(mFolder.file("a/b//c/"), false));
    EXPECT_TRUE(FileUtils::createDirectoriesWithPerm(mFolder.file("a/d/e"), true));
    EXPECT_EQ(list(), (std::vector<std::string>{"a/", "a/b/", "a/b/c/", "a/d/", "a/d/e/"}));
    EXPECT_EQ(modeOf(mFolder.file("a/b")), 0755u);
    EXPECT_EQ(modeOf(mFolder.file("a/d")), 0700u);
    EXPECT_EQ(modeOf(mFolder.file("a/d/e")), 0700u);
    EXPECT_TRUE(FileUtils::createDirectoriesWithPerm(mFolder.file("a/b"), true));
    EXPECT_EQ(modeOf(mFolder.file("a/b")), 0755u) << "one that exists is left as it is";
}

TEST_F(FileUtilsTest, aFolderThatCannotBeCreatedIsReported)
{
    mFolder.write("file", "x");
    EXPECT_FALSE(FileUtils::createDirectoriesWithPerm(mFolder.file("file"), false));
    EXPECT_FALSE(FileUtils::createDirectoriesWithPerm(mFolder.file("file/below"), false));
    EXPECT_FALSE(FileUtils::createDirectoriesWithPerm(link("broken", "none/none"), false));
    EXPECT_FALSE(FileUtils::createDirectoriesWithPerm(mFolder.file("broken/below"), false));
    EXPECT_FALSE(FileUtils::createDirectoriesWithPerm(fileString(), false));
    EXPECT_FALSE(FileUtils::createDirectoriesWithPerm(withNul(mFolder.file("new")), false));
    EXPECT_TRUE(FileUtils::createDirectoriesWithPerm(fileString("/"), false));
    EXPECT_EQ(list(), (std::vector<std::string>{"broken", "file"}));
}

class FileUtilsRemove : public FileUtilsTest, public testing::WithParamInterface<int>
{
};

TEST_P(FileUtilsRemove, removesFilesAndLinksAlsoReadOnlyOnes)
{
    const fileString file = mFolder.write("file", "x");
    mFolder.write("kept", "x");
    EXPECT_TRUE(FileUtils::removePath(link("link", "kept"), GetParam()));
    setMode(file, 0444);
    EXPECT_TRUE(FileUtils::removePath(file, GetParam()));
    EXPECT_EQ(list(), std::vector<std::string>{"kept"});
}

TEST_P(FileUtilsRemove, neverRemovesAFolder)
{
    const fileString empty = folder("empty");
    setMode(empty, 0555);
    EXPECT_FALSE(FileUtils::removePath(empty, GetParam()));
    EXPECT_FALSE(FileUtils::removePath(empty / fileString(), GetParam()));
    EXPECT_EQ(list(), std::vector<std::string>{"empty/"});
    EXPECT_EQ(modeOf(empty), 0555u);
}

TEST_P(FileUtilsRemove, missingFileCountsAsRemoved)
{
    EXPECT_TRUE(FileUtils::removePath(mFolder.file("none"), GetParam()));
    EXPECT_TRUE(FileUtils::removePath(mFolder.file("none/none"), GetParam()));
    const fileString file = mFolder.write("file", "x");
    EXPECT_TRUE(FileUtils::removePath(mFolder.file("file/below"), GetParam())) << "nothing is below a file";
    EXPECT_FALSE(FileUtils::removePath(withNul(file), GetParam())) << "such a name cannot be asked for";
    EXPECT_EQ(list(), std::vector<std::string>{"file"});
}

INSTANTIATE_TEST_SUITE_P(FileUtils, FileUtilsRemove, testing::Values(0, 1));

TEST_F(FileUtilsTest, aFileInAFolderOfAnotherCannotBeRemoved)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can become somebody else";
    const fileString file = mFolder.write("file", "x");
    EXPECT_EQ(test::runWithoutRights([&] { return FileUtils::removePath(file, 1) ? 1 : 0; }).status, 0);
    EXPECT_TRUE(file.pathExists());
}

TEST_F(FileUtilsTest, aFolderIsRemovedWithItsContent)
{
    mFolder.write("tree/a/b/file", "x");
    mFolder.write("tree/.hidden", "x");
    setMode(mFolder.write("tree/readonly", "x"), 0444);
    mFolder.write("other", "x");
    EXPECT_TRUE(FileUtils::removeDirectoryAndFiles(mFolder.file("tree/"), 1));
    EXPECT_EQ(list(), std::vector<std::string>{"other"});
    EXPECT_TRUE(FileUtils::removeDirectoryAndFiles(mFolder.file("tree"), 1)) << "nothing is left";
}

TEST_F(FileUtilsTest, linksInARemovedFolderAreNotFollowed)
{
    mFolder.write("outside/file", "x");
    folder("tree");
    link("tree/toFolder", "../outside");
    link("tree/toFile", "../outside/file");
    EXPECT_TRUE(FileUtils::removeDirectoryAndFiles(mFolder.file("tree"), 1));
    EXPECT_EQ(list(), (std::vector<std::string>{"outside/", "outside/file"}));
}

TEST_F(FileUtilsTest, aLinkToAFolderIsRemovedItselfWithSeparatorToo)
{
    mFolder.write("outside/file", "x");
    EXPECT_TRUE(FileUtils::removeDirectoryAndFiles(link("one", "outside"), 1));
    EXPECT_TRUE(FileUtils::removeDirectoryAndFiles(link("two", "outside") / fileString(), 1));
    EXPECT_EQ(list(), (std::vector<std::string>{"outside/", "outside/file"}));
}

TEST_F(FileUtilsTest, foldersInOneOfAnotherUserAreNotMade)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can become somebody else";
    const auto end = test::runWithoutRights(
        [&] { return FileUtils::createDirectoriesWithPerm(mFolder.file("a/b/c"), false) ? 1 : 0; });
    EXPECT_EQ(end.status, 0);
    EXPECT_TRUE(list().empty());
}

TEST_F(FileUtilsTest, emptyRelativeAndRootPathsAreNotRemoved)
{
    // The child changes its root and current folder to the test's folder, so that a mistake does no harm.
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can change the root";
    mFolder.write("folder/file", "x");
    const auto end = test::runInChild([&] {
        const int formerRoot = open("/", O_PATH | O_DIRECTORY);
        if (formerRoot < 0 || chroot(mFolder.path().c_str()) != 0 || chdir("/") != 0)
            return 100;
        const std::string paths[] = {"",   "folder", "./folder",  "../folder",   "/",
                                     "//", "/.",     "/..",       "/folder/..",  "/folder/../",
                                     ".",  "..",     "/folder/.", "/folder/.//", std::string("/folder\0", 8)};
        int refused = 0;
        for (const std::string& path : paths)
            refused += FileUtils::removeDirectoryAndFiles(fileString(path), 1) ? 0 : 1;
        // Leaves the changed root, because a coverage build writes its counters at the end of the process.
        return fchdir(formerRoot) == 0 && chroot(".") == 0 ? refused : 101;
    });
    EXPECT_EQ(end.status, 15);
    EXPECT_EQ(list(), (std::vector<std::string>{"folder/", "folder/file"}));
}

TEST_F(FileUtilsTest, foldersThatTheirOwnerProtectedAreRemovedOnlyWhenTold)
{
    setMode(fileString(mFolder.path()), 0777);
    const fileString tree = mFolder.file("tree");
    const auto end = test::runWithoutRights([&] {
        std::filesystem::create_directories(tree.toNativeString() + "/a/b");
        test::writeFile(tree.toNativeString() + "/a/b/file", "x");
        for (const std::string name : {"/a/b", "/a"})
            chmod((tree.toNativeString() + name).c_str(), 0500);
        if (FileUtils::removeDirectoryAndFiles(tree, 0))
            return 1;
        return FileUtils::removeDirectoryAndFiles(tree, 1) && !tree.pathExists() ? 0 : 2;
    });
    EXPECT_EQ(end.status, 0);
}

TEST_F(FileUtilsTest, targetsOfLinksInAProtectedFolderStayProtected)
{
    setMode(fileString(mFolder.path()), 0777);
    const std::string tree = mFolder.path() + "/tree";
    const std::string outside = mFolder.path() + "/outside";
    const auto end = test::runWithoutRights([&] {
        std::filesystem::create_directories(tree + "/a");
        std::filesystem::create_directory(outside);
        test::writeFile(outside + "/file", "x");
        std::filesystem::create_symlink("../../outside", tree + "/a/folder");
        std::filesystem::create_symlink("../../outside/file", tree + "/a/file");
        chmod((outside + "/file").c_str(), 0400);
        chmod(outside.c_str(), 0500);
        chmod((tree + "/a").c_str(), 0500);
        return FileUtils::removeDirectoryAndFiles(fileString(tree), 1) ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
    EXPECT_FALSE(fileString(tree).pathExists());
    EXPECT_EQ(modeOf(fileString(outside)), 0500u);
    EXPECT_EQ(modeOf(fileString(outside + "/file")), 0400u);
}

} // namespace
