// The plan counts the allocations that it should.
#include "tests/allocation-sweeps/AllocationPlan.h"

#include <new>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <QObject>
#include <gtest/gtest.h>

using test::AllocationPlan;
using test::CountedAllocations;
using test::CountedThread;

namespace {

void allocateThrice()
{
    const CountedAllocations counted;
    const std::vector<int> numbers(10, 1);
    const std::string text(100, static_cast<char>(numbers[0]));
    const std::string copy(text);
}

/// Allocates on a new thread. Returns whether the allocation failed.
bool failsOnAThread()
{
    bool hasFailed = false;
    std::thread([&hasFailed] {
        try {
            const std::vector<int> numbers(10, 1);
            const std::string text(100, static_cast<char>(numbers[0]));
        } catch (const std::bad_alloc&) {
            hasFailed = true;
        }
    }).join();
    return hasFailed;
}

} // namespace

TEST(AllocationPlanTest, allocationsOfOurCodeAndOfTheStandardLibraryForItCount)
{
    const AllocationPlan plan(0);
    allocateThrice();
    EXPECT_EQ(plan.count(), 3u);
    EXPECT_FALSE(plan.hasFailed());
}

TEST(AllocationPlanTest, thePlannedAllocationFails)
{
    const AllocationPlan plan(2);
    EXPECT_THROW(allocateThrice(), std::bad_alloc);
    EXPECT_EQ(plan.count(), 2u);
    EXPECT_TRUE(plan.hasFailed());
}

TEST(AllocationPlanTest, onlyTheBlockCounts)
{
    const AllocationPlan plan(1);
    EXPECT_EQ(std::string(100, 'x').size(), 100u);
    EXPECT_EQ(plan.count(), 0u);
}

TEST(AllocationPlanTest, otherLibrariesCountOnlyWhereTheyAreToCount)
{
    const auto allocationsOfQt = [](AllocationPlan::Whose whose) {
        const AllocationPlan plan(0, whose);
        const CountedAllocations counted;
        const QObject object;
        return plan.count();
    };
    EXPECT_EQ(allocationsOfQt(AllocationPlan::Whose::Ours), 0u);
    EXPECT_GT(allocationsOfQt(AllocationPlan::Whose::Everybodys), 0u);
}

TEST(AllocationPlanTest, threadsThatAreStartedCountForThemselves)
{
    const AllocationPlan plan(0);
    {
        const CountedAllocations counted;
        EXPECT_FALSE(failsOnAThread());
        EXPECT_FALSE(failsOnAThread());
    }
    EXPECT_FALSE(failsOnAThread());
    EXPECT_EQ(plan.count(CountedThread::Caller), 4u) << "twice a thread's state and its start";
    EXPECT_EQ(plan.count(CountedThread::Helper), 4u);
}

TEST(AllocationPlanTest, anAllocationOfAThreadFails)
{
    const AllocationPlan plan(2, AllocationPlan::Whose::Ours, CountedThread::Helper);
    const CountedAllocations counted;
    EXPECT_TRUE(failsOnAThread());
    EXPECT_TRUE(plan.hasFailed());
    EXPECT_FALSE(failsOnAThread());
}

TEST(AllocationPlanTest, theStartOfAThreadFails)
{
    const AllocationPlan plan(2);
    const CountedAllocations counted;
    EXPECT_THROW(failsOnAThread(), std::system_error);
    EXPECT_TRUE(plan.hasFailed());
}
