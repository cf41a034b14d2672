// Copying, moving and renaming.
#include "OrvLibrary/host/FileUtils.h"

#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/files/FileUtilsMove_p.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

using Names = std::vector<std::string>;

mode_t modeOf(const fileString& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.toNativeString().c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

void setMode(const fileString& path, mode_t mode)
{
    ASSERT_EQ(chmod(path.toNativeString().c_str(), mode), 0);
}

fileString withNul(const fileString& path)
{
    return fileString(path.toNativeString() + std::string("\0x", 2));
}

class FileUtilsMoveTest : public testing::Test
{
protected:
    Names list() const { return test::listTree(mFolder.path()); }

    test::TempFolder mFolder;
};

TEST_F(FileUtilsMoveTest, copyKeepsTheSourceAndRefusesAnExistingTargetUnlessTold)
{
    const fileString from = mFolder.write("from", "content");
    const fileString to = mFolder.file("to");
    EXPECT_TRUE(FileUtils::copyFile(from, to, false));
    EXPECT_EQ(test::readFile(to), "content");
    test::writeFile(from.toNativeString(), "other");
    EXPECT_FALSE(FileUtils::copyFile(from, to, false));
    EXPECT_EQ(test::readFile(to), "content");
    EXPECT_TRUE(FileUtils::copyFile(from, to, true));
    EXPECT_EQ(test::readFile(to), "other");
    EXPECT_EQ(test::readFile(from), "other");
    EXPECT_EQ(list(), (Names{"from", "to"}));
}

TEST_F(FileUtilsMoveTest, ofTwoCopiesAtOnceThatMayNotReplaceOnlyOneSucceeds)
{
    const std::string contents[] = {std::string(50000, 'a'), std::string(50000, 'b')};
    const fileString sources[] = {mFolder.write("a", contents[0]), mFolder.write("b", contents[1])};
    for (int round = 0; round < 100; ++round) {
        const fileString to = mFolder.file("to" + std::to_string(round));
        bool copied[2] = {};
        std::thread other([&] { copied[1] = FileUtils::copyFile(sources[1], to, false); });
        copied[0] = FileUtils::copyFile(sources[0], to, false);
        other.join();
        ASSERT_NE(copied[0], copied[1]);
        ASSERT_TRUE(test::readFile(to) == contents[copied[0] ? 0 : 1]);
    }
}

TEST_F(FileUtilsMoveTest, copyOfALargeAndOfAnEmptyFileIsWhole)
{
    std::string content(3 * 1024 * 1024 + 17, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 2654435761u >> 24);
    EXPECT_TRUE(FileUtils::copyFile(mFolder.write("large", content), mFolder.file("largeCopy"), false));
    EXPECT_TRUE(test::readFile(mFolder.file("largeCopy")) == content);
    EXPECT_TRUE(FileUtils::copyFile(mFolder.write("empty", ""), mFolder.file("emptyCopy"), false));
    EXPECT_EQ(test::readFile(mFolder.file("emptyCopy")), "");
}

TEST_F(FileUtilsMoveTest, copyOntoItselfChangesNothing)
{
    const fileString file = mFolder.write("file", "content");
    EXPECT_TRUE(FileUtils::copyFile(file, file, true));
    EXPECT_EQ(test::readFile(file), "content");
    EXPECT_EQ(list(), Names{"file"});
}

TEST_F(FileUtilsMoveTest, aNewCopyHasTheSourcesPermissionsAndAnOldTargetKeepsItsOwn)
{
    const fileString from = mFolder.write("from", "content");
    setMode(from, 0640);
    EXPECT_TRUE(FileUtils::copyFile(from, mFolder.file("new"), false));
    EXPECT_EQ(modeOf(mFolder.file("new")), 0640u);
    const fileString old = mFolder.write("old", "");
    setMode(old, 0606);
    EXPECT_TRUE(FileUtils::copyFile(from, old, true));
    EXPECT_EQ(modeOf(old), 0606u);
}

TEST_F(FileUtilsMoveTest, copyFollowsTheLinkThatItsTargetIs)
{
    mFolder.write("real/file", "old");
    ASSERT_EQ(symlink("real/file", mFolder.file("link").toNativeString().c_str()), 0);
    EXPECT_TRUE(FileUtils::copyFile(mFolder.write("from", "new"), mFolder.file("link"), true));
    EXPECT_EQ(test::readFile(mFolder.file("real/file")), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder.file("link").toNativeString()));
}

TEST_F(FileUtilsMoveTest, copyRefusesALinkThatLeadsNowhereUnlessTold)
{
    ASSERT_EQ(symlink("none", mFolder.file("link").toNativeString().c_str()), 0);
    const fileString from = mFolder.write("from", "new");
    EXPECT_FALSE(FileUtils::copyFile(from, mFolder.file("link"), false));
    EXPECT_EQ(list(), (Names{"from", "link"}));
    EXPECT_TRUE(FileUtils::copyFile(from, mFolder.file("link"), true));
    EXPECT_EQ(test::readFile(mFolder.file("none")), "new");
}

TEST_F(FileUtilsMoveTest, copyRefusesWhatCannotBeReadOrWritten)
{
    const fileString from = mFolder.write("from", "new");
    const fileString to = mFolder.write("to", "old");
    setMode(to, 0444);
    ASSERT_EQ(mkfifo(mFolder.file("fifo").toNativeString().c_str(), 0644), 0);
    mFolder.write("folder/file", "x");
    EXPECT_FALSE(FileUtils::copyFile(from, to, true)) << "read-only, also for the superuser";
    setMode(to, 0644);
    EXPECT_FALSE(FileUtils::copyFile(mFolder.file("none"), to, true));
    EXPECT_FALSE(FileUtils::copyFile(mFolder.file("folder"), to, true));
    EXPECT_FALSE(FileUtils::copyFile(mFolder.file("fifo"), to, true)) << "and does not wait";
    EXPECT_FALSE(FileUtils::copyFile(withNul(from), to, true));
    EXPECT_FALSE(FileUtils::copyFile(from, mFolder.file("folder"), true));
    EXPECT_FALSE(FileUtils::copyFile(from, mFolder.file("fifo"), true));
    EXPECT_FALSE(FileUtils::copyFile(from, mFolder.file("none/none"), true));
    EXPECT_FALSE(FileUtils::copyFile(from, withNul(to), true));
    EXPECT_FALSE(FileUtils::copyFile(from, fileString(), true));
    EXPECT_EQ(test::readFile(to), "old");
    EXPECT_EQ(list(), (Names{"fifo", "folder/", "folder/file", "from", "to"}));
}

TEST_F(FileUtilsMoveTest, copyOnAFullDiskLeavesTheOldContent)
{
    const fileString from = mFolder.write("from", std::string(1024 * 1024, 'x'));
    std::filesystem::create_directory(mFolder.path() + "/disk");
    std::string reason;
    const auto end = test::runOnSmallDisk(
        mFolder.path() + "/disk", 64,
        [&] {
            const fileString to = mFolder.write("disk/to", "old");
            if (FileUtils::copyFile(from, to, true) ||
                FileUtils::copyFile(from, mFolder.file("disk/new"), false))
                return 1;
            if (FileUtils::moveFile(from, to, false) || !from.pathExists())
                return 2;
            return test::readFile(to) == "old" && test::listTree(mFolder.path() + "/disk") == Names{"to"} ? 0
                                                                                                          : 3;
        },
        reason);
    if (!end) // only the superuser may mount a small disk
        GTEST_SKIP() << reason;
    EXPECT_EQ(end->status, 0);
}

TEST_F(FileUtilsMoveTest, moveAndRenameReplaceAnExistingTargetAlsoAReadOnlyOne)
{
    const fileString target = mFolder.write("to", "old");
    EXPECT_TRUE(FileUtils::moveFile(mFolder.write("a", "first"), target, false));
    EXPECT_EQ(test::readFile(target), "first");
    setMode(target, 0444);
    EXPECT_TRUE(FileUtils::renameFile(mFolder.write("b", "second"), target));
    EXPECT_EQ(test::readFile(target), "second");
    EXPECT_EQ(list(), Names{"to"});
}

TEST_F(FileUtilsMoveTest, moveKeepsTheInode)
{
    const fileString from = mFolder.write("from", "x");
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(stat(from.toNativeString().c_str(), &before), 0);
    EXPECT_TRUE(FileUtils::moveFile(from, mFolder.file("to"), false));
    ASSERT_EQ(stat(mFolder.file("to").toNativeString().c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(FileUtilsMoveTest, moveThatFailsLeavesBothSides)
{
    const fileString from = mFolder.write("from", "new");
    const fileString to = mFolder.write("to", "old");
    mFolder.write("folder/file", "x");
    EXPECT_FALSE(FileUtils::moveFile(mFolder.file("none"), to, false));
    EXPECT_FALSE(FileUtils::moveFile(from, mFolder.file("folder"), false));
    EXPECT_FALSE(FileUtils::moveFile(from, mFolder.file("none/none"), false));
    EXPECT_FALSE(FileUtils::moveFile(withNul(from), to, false));
    EXPECT_FALSE(FileUtils::moveFile(from, withNul(to), false));
    EXPECT_FALSE(FileUtils::renameFile(from, fileString()));
    EXPECT_EQ(test::readFile(from), "new");
    EXPECT_EQ(test::readFile(to), "old");
}

TEST_F(FileUtilsMoveTest, moveRemovesWhatAKilledWriterLeftBeside)
{
    const fileString to = mFolder.write("to", "old");
    test::writeFile(host::ReplacementFile::besideName(to.toNativeString()), "half");
    EXPECT_TRUE(FileUtils::moveFile(mFolder.write("from", "new"), to, false));
    EXPECT_EQ(list(), Names{"to"});
}

TEST_F(FileUtilsMoveTest, moveLeavesWhatALivingWriterWritesBeside)
{
    const fileString to = mFolder.write("to", "old");
    const auto writer = host::ReplacementFile::open(to.toNativeString(), host::ReplacementFile::Mode::Locked);
    ASSERT_TRUE(writer);
    EXPECT_TRUE(FileUtils::moveFile(mFolder.write("from", "moved"), to, false));
    ASSERT_EQ(write(writer->descriptor(), "written", 7), 7);
    EXPECT_TRUE(writer->commit());
    EXPECT_EQ(test::readFile(to), "written");
}

class FileUtilsAcrossDevices : public FileUtilsMoveTest
{
protected:
    void SetUp() override
    {
        if (mDevice.path().empty())
            GTEST_SKIP() << "the temporary folder lies on the only device";
    }
    fileString there(const std::string& name) const { return fileString(mDevice.path() + "/" + name); }

    test::OtherDevice mDevice;
};

TEST_F(FileUtilsAcrossDevices, moveReplacesTheTargetAndRemovesTheSource)
{
    test::writeFile(there("to").toNativeString(), "old");
    EXPECT_TRUE(FileUtils::moveFile(mFolder.write("a", "first"), there("to"), false));
    EXPECT_EQ(test::readFile(there("to")), "first");
    EXPECT_TRUE(FileUtils::renameFile(mFolder.write("b", "second"), there("to")));
    EXPECT_EQ(test::readFile(there("to")), "second");
    EXPECT_EQ(list(), Names{});
    EXPECT_EQ(test::listTree(mDevice.path()), Names{"to"});
}

TEST_F(FileUtilsAcrossDevices, moveKeepsPermissionsAndTimes)
{
    const fileString from = mFolder.write("from", "x");
    const timespec times[] = {{5, 0}, {1234567890, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, from.toNativeString().c_str(), times, 0), 0);
    setMode(from, 0604);
    EXPECT_TRUE(FileUtils::moveFile(from, there("to"), false));
    EXPECT_EQ(modeOf(there("to")), 0604u);
    EXPECT_EQ(there("to").modificationTime(), 1234567890);
}

TEST_F(FileUtilsAcrossDevices, moveKeepsTheSourceWhenTold)
{
    const fileString from = mFolder.write("from", "x");
    EXPECT_TRUE(FileUtils::moveFile(from, there("to"), true));
    EXPECT_TRUE(from.pathExists());
    EXPECT_EQ(test::readFile(there("to")), "x");
}

TEST_F(FileUtilsAcrossDevices, moveReplacesALinkAsARenameDoes)
{
    test::writeFile(there("real").toNativeString(), "old");
    ASSERT_EQ(symlink("real", there("to").toNativeString().c_str()), 0);
    EXPECT_TRUE(FileUtils::moveFile(mFolder.write("from", "new"), there("to"), false));
    EXPECT_EQ(test::readFile(there("real")), "old");
    EXPECT_EQ(test::readFile(there("to")), "new");
    EXPECT_FALSE(std::filesystem::is_symlink(there("to").toNativeString()));
}

TEST_F(FileUtilsAcrossDevices, moveThatFailsLeavesBothSides)
{
    const fileString from = mFolder.write("from", "new");
    std::filesystem::create_directory(there("folder").toNativeString());
    EXPECT_FALSE(FileUtils::moveFile(from, there("folder"), false));
    EXPECT_FALSE(FileUtils::moveFile(from, there("none/none"), false));
    EXPECT_FALSE(FileUtils::moveFile(fileString(mFolder.path()), there("to"), false)) << "no folders";
    EXPECT_EQ(test::readFile(from), "new");
    EXPECT_EQ(test::listTree(mDevice.path()), Names{"folder/"});
}

TEST_F(FileUtilsMoveTest, moveByCopyKeepsTheSourceWhileThePowerCouldTakeTheCopy)
{
    setMode(fileString(mFolder.path()), 0777);
    const fileString from = mFolder.write("from", "new");
    setMode(from, 0644);
    std::filesystem::create_directory(mFolder.path() + "/closed");
    setMode(mFolder.file("closed"), 0333); // nobody can open it to sync it
    const auto end = test::runWithoutRights([&] {
        const std::string to = mFolder.path() + "/closed/to";
        return host::moveByCopy(from.toNativeString(), to, false) ? 1 : 0;
    });
    setMode(mFolder.file("closed"), 0755);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(test::readFile(from), "new");
    EXPECT_EQ(test::readFile(mFolder.file("closed/to")), "new");
}

TEST_F(FileUtilsMoveTest, moveByCopyFailsWhereTheSourceStays)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can become somebody else";
    setMode(fileString(mFolder.path()), 0755);
    const fileString from = mFolder.write("from", "new");
    std::filesystem::create_directory(mFolder.path() + "/open");
    setMode(mFolder.file("open"), 0777);
    const auto end = test::runWithoutRights([&] {
        const std::string to = mFolder.path() + "/open/to";
        return host::moveByCopy(from.toNativeString(), to, false) ? 1 : 0;
    });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(test::readFile(from), "new");
    EXPECT_EQ(test::readFile(mFolder.file("open/to")), "new");
}

} // namespace
