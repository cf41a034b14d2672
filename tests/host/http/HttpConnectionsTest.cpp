#include <csignal>

#include <gtest/gtest.h>

#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

namespace {

bool isPending(int signal)
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}

bool isBlocked(int signal)
{
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

} // namespace

TEST(HttpConnectionsTest, brokenPipeWithinABlockIsSwallowed)
{
    ASSERT_FALSE(isBlocked(SIGPIPE));
    {
        const BrokenPipeBlock block;
        EXPECT_TRUE(isBlocked(SIGPIPE));
        raise(SIGPIPE);
    }
    EXPECT_FALSE(isPending(SIGPIPE));
    EXPECT_FALSE(isBlocked(SIGPIPE));
}

TEST(HttpConnectionsTest, brokenPipeOfTheHostsOwnStays)
{
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &pipe, nullptr), 0);
    raise(SIGPIPE);
    {
        const BrokenPipeBlock block;
    }
    EXPECT_TRUE(isPending(SIGPIPE));
    const timespec noWait{};
    EXPECT_EQ(sigtimedwait(&pipe, nullptr, &noWait), SIGPIPE);
    EXPECT_EQ(pthread_sigmask(SIG_UNBLOCK, &pipe, nullptr), 0);
}
