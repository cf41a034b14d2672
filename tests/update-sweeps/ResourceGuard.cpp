#include "tests/update-sweeps/ResourceGuard.h"

#include <chrono>
#include <filesystem>
#include <iterator>
#include <thread>

#include <gtest/gtest.h>

#include "tests/update-sweeps/UpdateWorld.h"

namespace test {

namespace {

std::size_t countEntries(const char* folder)
{
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// Libraries open some descriptors at their first use and keep them, so a first run happens before counting.
void warmUp()
{
    static const bool isWarm = [] {
        UpdateWorld world;
        return true;
    }();
    static_cast<void>(isWarm);
}

} // namespace

ResourceGuard::ResourceGuard()
{
    warmUp();
    mDescriptors = countEntries("/proc/self/fd");
    mThreads = countEntries("/proc/self/task");
}

ResourceGuard::~ResourceGuard()
{
    // A joined thread may still be listed for a moment.
    for (int wait = 0; wait < 200 && countEntries("/proc/self/task") > mThreads; ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(countEntries("/proc/self/fd"), mDescriptors) << "open descriptors";
    EXPECT_EQ(countEntries("/proc/self/task"), mThreads) << "threads";
}

} // namespace test
