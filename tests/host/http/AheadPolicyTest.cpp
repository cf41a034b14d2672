#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

struct WidthRow
{
    const char* what;
    bool isDownload;
    std::chrono::microseconds latency;
    bool isMultiplexing;
    std::size_t limit;
    bool isInTurn;
    std::size_t width;
};

} // namespace

TEST(AheadPolicyTest, widthDependsOnTimeKindAndLimit)
{
    const WidthRow rows[] = {
        {"nothing is known", false, -1us, false, 16, false, 0},
        {"same machine", false, 200us, false, 16, false, 0},
        {"just near", false, 4999us, false, 16, false, 0},
        {"just far", false, 5ms, false, 16, false, 16},
        {"far", false, 80ms, false, 16, false, 16},
        {"far, a request in its turn", false, 80ms, false, 16, true, 15},
        {"far, a download", true, 80ms, false, 16, false, 16},
        {"host allows one", false, 20ms, false, 1, false, 0},
        {"host allows one, a request in its turn", false, 20ms, false, 1, true, 0},
        {"host allows two", false, 20ms, false, 2, false, 2},
        {"host allows two, a request in its turn", false, 20ms, false, 2, true, 1},
        {"host allows all", false, 20ms, false, 96, false, 96},
        {"near, HTTP/2", false, 1ms, true, 16, false, 0},
        {"HTTP/2", false, 80ms, true, 16, false, 800},
        {"HTTP/2, a request in its turn", false, 80ms, true, 16, true, 800},
        {"HTTP/2, a download", true, 80ms, true, 16, false, 100},
    };
    for (const WidthRow& row : rows) {
        AddressMemory::Known known;
        known.latency = row.latency;
        known.isMultiplexing = row.isMultiplexing;
        EXPECT_EQ(AheadPolicy::width(known, row.isDownload, row.limit, row.isInTurn), row.width) << row.what;
    }
}

TEST(AheadPolicyTest, addressThatWasGivenUpGetsNothingAhead)
{
    AddressMemory::Known known;
    known.latency = 80ms;
    known.isOpen = false;
    EXPECT_EQ(AheadPolicy::width(known, false, 16, false), 0u);
}

TEST(AheadPolicyTest, bodiesAheadAreBounded)
{
    EXPECT_TRUE(AheadPolicy::allowsBody({}, 64'000'000));
    EXPECT_FALSE(AheadPolicy::allowsBody({}, 64'000'001));
    EXPECT_TRUE(AheadPolicy::allowsBody({127, 63'000'000, 0}, 1'000'000));
    EXPECT_FALSE(AheadPolicy::allowsBody({127, 63'000'000, 0}, 1'000'001));
    EXPECT_FALSE(AheadPolicy::allowsBody({128, 0, 0}, 1));
    EXPECT_TRUE(AheadPolicy::allowsBody({2, 0, 1}, 8'000'001));
    EXPECT_FALSE(AheadPolicy::allowsBody({2, 0, 2}, 8'000'001));
    EXPECT_TRUE(AheadPolicy::allowsBody({2, 0, 2}, 8'000'000));
}

TEST(AheadPolicyTest, quarterOfTheDescriptorsIsLeftForOtherFiles)
{
    const auto row = [](std::size_t connections, std::size_t open, std::size_t limit) {
        const AheadPolicy::Allowance allowance = AheadPolicy::allowance(connections, {open, limit});
        return std::make_pair(allowance.connections, allowance.bodies);
    };
    using Row = std::pair<std::size_t, std::size_t>;
    EXPECT_EQ(row(16, 20, 1024), Row(16, 128));
    EXPECT_EQ(row(96, 20, 1024), Row(96, 128));
    EXPECT_EQ(row(96, 500, 1024), Row(96, 12));
    EXPECT_EQ(row(16, 600, 1024), Row(16, 0));
    EXPECT_EQ(row(96, 10, 64), Row(16, 22));
    EXPECT_EQ(row(16, 3, 3), Row(1, 0));
    EXPECT_FALSE(AheadPolicy::allowsBody({22, 0, 0}, 1, 22));
    EXPECT_TRUE(AheadPolicy::allowsBody({21, 0, 0}, 1, 22));
}

TEST(AheadPolicyTest, stallIsASecondOrEightTimesAnAnswer)
{
    EXPECT_EQ(AheadPolicy::stallTime(-1us), 1s);
    EXPECT_EQ(AheadPolicy::stallTime(125ms), 1s);
    EXPECT_EQ(AheadPolicy::stallTime(500ms), 4s);
}
