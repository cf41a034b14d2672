#include "OrvLibrary/host/ThreadMutex.h"

#include <gtest/gtest.h>

TEST(ThreadMutex, lockGuardHoldsItToTheEndOfTheBlock)
{
    ThreadMutex mutex;
    {
        ThreadLockGuard<ThreadMutex> guard(mutex);
        EXPECT_FALSE(mutex.try_lock());
    }
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
}
