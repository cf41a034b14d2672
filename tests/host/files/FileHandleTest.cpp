#include "OrvLibrary/host/impl/files/FileHandle_p.h"

#include <cerrno>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "tests/host/files/LocklessSystem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/DescriptorLimit.h"
#include "tests/support/TempFolder.h"

namespace {

TEST(FileHandle, everyAnswerOfASystemWithoutLocksMeansThatThereAreNone)
{
    const test::TempFolder folder;
    const host::FileHandle file = host::openFile(folder.write("data", "x").toNativeString(), O_RDWR);
    ASSERT_TRUE(file);
    for (const int reason : {ENOLCK, EOPNOTSUPP, ENOSYS}) {
        const test::LocklessSystem system([] {}, reason);
        EXPECT_EQ(host::tryLock(file.get(), LOCK_EX), host::Lock::Unknown) << reason;
    }
}

TEST(FileHandle, lockThatFailsOtherwiseIsAFailure)
{
    const test::LocklessSystem system([] {}, EIO);
    EXPECT_EQ(host::tryLock(0, LOCK_EX), host::Lock::Failed);
    EXPECT_EQ(errno, EIO);
}

TEST(FileHandle, fileThatMayOnlyBeWrittenIsOpenedForItsLock)
{
    const test::TempFolder folder;
    const std::string path = folder.write("data", "x").toNativeString();
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0222), 0);
    const auto end = test::runWithoutRights([&] {
        const host::FileHandle file = host::openForLock(path);
        return file && host::mayUse(host::tryLock(file.get(), LOCK_EX)) ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
}

TEST(FileHandle, firstDescriptorIsAFileLikeAnyOther)
{
    const auto end = test::runInChild([] {
        close(STDIN_FILENO);
        errno = EINTR; // left by an earlier call
        const host::FileHandle file = host::openFile("/", O_RDONLY);
        return file && file.get() == STDIN_FILENO ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
}

TEST(FileHandle, descriptorsAreCountedUpToTheLimit)
{
    const test::DescriptorLimit limit(host::descriptorUse().open + 2);
    const host::DescriptorUse before = host::descriptorUse();
    EXPECT_EQ(before.limit, before.open + 2);
    const host::FileHandle one = host::openFile("/", O_RDONLY);
    EXPECT_GT(host::descriptorUse().open, before.open);
    const host::FileHandle two = host::openFile("/", O_RDONLY);
    EXPECT_EQ(host::descriptorUse().open, before.limit);
}

} // namespace
