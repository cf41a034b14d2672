#include "OrvHost/update/UpdateLock.h"

#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using UpdateLockTest = test::HostedTest;

TEST_F(UpdateLockTest, secondLockFailsAtOnceAndNothingIsLeft)
{
    {
        const OrvHost::UpdateLock lock;
        EXPECT_THROW(OrvHost::UpdateLock(), std::runtime_error);
    }
    EXPECT_FALSE(folder.file("root/temp/update.lock").pathExists());
    EXPECT_NO_THROW(OrvHost::UpdateLock());
    folder.write("root/temp/update.lock", "left by a process that died");
    EXPECT_NO_THROW(OrvHost::UpdateLock());
}
