#include "OrvLibrary/host/impl/zip/ZipPatience_p.h"

#include <cerrno>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/TempFolder.h"

namespace {

class ZipPatienceTest : public testing::Test
{
protected:
    test::TempFolder mFolder;
    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
    ZipUtils::ZipMeter mMeter{mProgress};
    ZipUtils::ZipPatience mPatience{mMeter};
};

} // namespace

TEST_F(ZipPatienceTest, onlyALockIsWaitedFor)
{
    errno = EWOULDBLOCK; // of an earlier call
    EXPECT_TRUE(mPatience.open(mFolder.file("new")));
    EXPECT_FALSE(mPatience.open(mFolder.file("no/such/folder")));
    EXPECT_EQ(errno, ENOENT);
    // While it waits, it asks for a cancel.
    EXPECT_EQ(mProgress->checks(), 0);
}

TEST_F(ZipPatienceTest, newFileHasOrdinaryPermissions)
{
    const mode_t mask = umask(0022);
    const auto file = mPatience.open(mFolder.file("new"));
    umask(mask);
    ASSERT_TRUE(file);
    struct stat status = {};
    ASSERT_EQ(fstat(file->descriptor(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644U);
}

TEST_F(ZipPatienceTest, cancelIsHeardWhileALockIsWaitedFor)
{
    ZipUtils::ZipMeter others(nullptr);
    const auto held = ZipUtils::ZipPatience(others).open(mFolder.file("new"));
    ASSERT_TRUE(held);
    mProgress->isCancelled = [](int check) { return check == 2; };
    EXPECT_THROW(mPatience.open(mFolder.file("new")), ZipUtils::Cancelled);
    EXPECT_EQ(mProgress->checks(), 2);
}
