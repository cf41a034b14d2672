// The plan counts what it is to count.
#include "tests/allocation-sweeps/AllocationPlan.h"

#include <new>
#include <string>
#include <vector>

#include <QObject>
#include <gtest/gtest.h>

using test::AllocationPlan;
using test::CountedAllocations;

namespace {

void allocateThrice()
{
    const CountedAllocations counted;
    const std::vector<int> numbers(10, 1);
    const std::string text(100, static_cast<char>(numbers[0]));
    const std::string copy(text);
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
