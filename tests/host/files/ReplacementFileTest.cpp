#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "tests/host/files/LinklessSystem.h"
#include "tests/host/files/LocklessSystem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

/// On a file system without locks, a writer starts while the temporary file of another writer lies beside the
/// target. `meanwhile` does the other writer's next step; its argument is the path of that file.
class ReplacementFileWithoutLocks : public testing::Test
{
protected:
    ReplacementFileWithoutLocks()
    {
        test::writeFile(mBeside, "of another writer");
        setTime(kTime);
    }
    void setTime(const timespec& time) const
    {
        const timespec times[] = {{0, UTIME_OMIT}, time};
        ASSERT_EQ(utimensat(AT_FDCWD, mBeside.c_str(), times, 0), 0);
    }
    template <class Meanwhile>
    bool opens(Meanwhile meanwhile) const
    {
        const test::LocklessSystem system(meanwhile);
        return host::ReplacementFile::open(mTarget, host::ReplacementFile::Mode::Locked) != nullptr;
    }

    static constexpr timespec kTime{1'700'000'000, 5'000};
    test::TempFolder mFolder;
    const std::string mTarget = mFolder.write("data", "old").toNativeString();
    const std::string mBeside = host::ReplacementFile::besideName(mTarget);
};

} // namespace

TEST_F(ReplacementFileWithoutLocks, aFileThatNobodyWritesToIsALeftover)
{
    bool hasWaited = false;
    EXPECT_TRUE(opens([&] { hasWaited = true; }));
    EXPECT_TRUE(hasWaited);
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"data"}) << "ours is gone, too";
}

TEST_F(ReplacementFileWithoutLocks, aFileThatGrowsIsNone)
{
    EXPECT_FALSE(opens([this] {
        test::writeFile(mBeside, "of another writer, more");
        setTime(kTime);
    }));
    EXPECT_EQ(errno, EWOULDBLOCK);
    EXPECT_EQ(test::readFile(fileString(mBeside)), "of another writer, more");
}

TEST_F(ReplacementFileWithoutLocks, aFileWhoseTimeGoesOnIsNone)
{
    EXPECT_FALSE(opens([this] { setTime({kTime.tv_sec, kTime.tv_nsec + 1}); }));
    EXPECT_EQ(errno, EWOULDBLOCK);
    setTime(kTime);
    EXPECT_FALSE(opens([this] { setTime({kTime.tv_sec + 1, kTime.tv_nsec}); }));
    EXPECT_EQ(errno, EWOULDBLOCK);
    EXPECT_EQ(test::readFile(fileString(mBeside)), "of another writer");
}

TEST(ReplacementFile, theNameBesideFitsAndBelongsToItsTargetAlone)
{
    const std::string longName(254, 'n');
    const std::string first = host::ReplacementFile::besideName("/folder/" + longName + "1");
    const std::string second = host::ReplacementFile::besideName("/folder/" + longName + "2");
    EXPECT_NE(first, second);
    EXPECT_EQ(fileString(first).parentPath(), fileString("/folder"));
    EXPECT_LE(fileString(first).stemWithExtension().toNativeString().size(), 255u);
    EXPECT_EQ(fileString(first).extension(), fileString(".orv-new"));
    EXPECT_EQ(host::ReplacementFile::besideName("data").find('/'), std::string::npos);
}

TEST(ReplacementFile, aFreshFileNeverReplacesOneThatAppearedMeanwhile)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    const fileString target = folder.file("data");
    auto file = ReplacementFile::open(target.toNativeString(), ReplacementFile::Mode::Fresh);
    ASSERT_TRUE(file);
    test::writeFile(target.toNativeString(), "somebody else's");
    EXPECT_FALSE(file->commit());
    EXPECT_EQ(errno, EEXIST);
    file.reset();
    EXPECT_FALSE(ReplacementFile::open(target.toNativeString(), ReplacementFile::Mode::Fresh));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(test::readFile(target), "somebody else's");
    EXPECT_EQ(test::listTree(folder.path()), std::vector<std::string>{"data"});
}

TEST(ReplacementFile, aFileBesideThatIsNoLongerOursIsNotPutInPlace)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    const std::string target = folder.write("data", "old").toNativeString();
    auto file = ReplacementFile::open(target, ReplacementFile::Mode::Locked);
    ASSERT_TRUE(file);
    const std::string beside = ReplacementFile::besideName(target);
    FileUtils::removePath(fileString(beside));
    test::writeFile(beside, "half of what another writer has");
    EXPECT_FALSE(file->commit());
    EXPECT_EQ(test::readFile(target), "old");
}

TEST(ReplacementFile, aFreshFileGetsItsNameWithoutHardLinksToo)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    const std::string target = folder.path() + "/data";
    const std::string other = folder.path() + "/other";
    auto file = ReplacementFile::open(target, ReplacementFile::Mode::Fresh);
    auto second = ReplacementFile::open(other, ReplacementFile::Mode::Fresh);
    ASSERT_TRUE(file && second);
    ASSERT_EQ(write(file->descriptor(), "new", 3), 3);
    test::writeFile(other, "somebody else's");
    const test::LinklessSystem system;
    EXPECT_TRUE(file->commit());
    EXPECT_FALSE(second->commit());
    EXPECT_EQ(errno, EEXIST);
    second.reset();
    EXPECT_EQ(test::readFile(target), "new");
    EXPECT_EQ(test::readFile(other), "somebody else's");
    EXPECT_EQ(test::listTree(folder.path()), (std::vector<std::string>{"data", "other"}));
}

TEST(ReplacementFile, aFolderThatCannotBeSyncedIsNoFailureBecauseTheFileIsInPlace)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    ASSERT_EQ(chmod(folder.path().c_str(), 0333), 0); // nobody can open it
    const auto end = test::runWithoutRights([&] {
        const auto file = ReplacementFile::open(folder.path() + "/data", ReplacementFile::Mode::Fresh);
        const bool isWritten = file && write(file->descriptor(), "new", 3) == 3;
        return isWritten && file->commit() ? 0 : 1;
    });
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(test::readFile(folder.file("data")), "new");
}

TEST(ReplacementFile, contentThatCannotBeSyncedIsNotPutInPlace)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    const std::string target = folder.write("data", "old").toNativeString();
    using Durability = ReplacementFile::Durability;
    for (const Durability durability :
         {Durability::Synced, Durability::ContentSynced, Durability::Unsynced}) {
        const auto file = ReplacementFile::open(target, ReplacementFile::Mode::Replaced);
        ASSERT_TRUE(file && write(file->descriptor(), "new", 3) == 3);
        // The system cannot sync a descriptor that only stands for a path.
        const host::FileHandle path = host::openFile(ReplacementFile::besideName(target), O_PATH);
        ASSERT_EQ(dup2(path.get(), file->descriptor()), file->descriptor());
        const bool needNotBeSynced = durability == Durability::Unsynced;
        EXPECT_EQ(file->commit(durability), needNotBeSynced);
        EXPECT_EQ(test::readFile(target), needNotBeSynced ? "new" : "old");
    }
}

TEST(ReplacementFile, withoutTimeTheTargetIsReportedAsLocked)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    const std::string target = folder.write("data", "old").toNativeString();
    test::writeFile(ReplacementFile::besideName(target), "left by a killed process");
    errno = 0;
    EXPECT_FALSE(ReplacementFile::open(target, ReplacementFile::Mode::Locked, 0666, std::chrono::seconds(0)));
    EXPECT_EQ(errno, EWOULDBLOCK);
}
