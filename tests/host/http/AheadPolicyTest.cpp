#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

struct WidthRow
{
    const char* what;
    std::size_t requests;
    std::chrono::microseconds latency;
    bool isMultiplexing;
    std::size_t limit;
    bool isInTurn;
    std::size_t width; ///< with one established connection
    std::size_t connections;
};

} // namespace

TEST(AheadPolicyTest, widthDependsOnTimeKindAndLimit)
{
    const WidthRow rows[] = {
        {"nothing is known", 100, -1us, false, 16, false, 0, 1},
        {"same machine", 100, 200us, false, 16, false, 0, 1},
        {"just near", 100, 4999us, false, 16, false, 0, 1},
        {"just far", 100, 5ms, false, 16, false, 16, 1},
        {"far", 1000, 80ms, false, 16, false, 16, 1},
        {"far, a request in its turn", 1000, 80ms, false, 16, true, 15, 1},
        {"host allows one", 100, 20ms, false, 1, false, 0, 1},
        {"host allows one, a request in its turn", 100, 20ms, false, 1, true, 0, 1},
        {"host allows two", 100, 20ms, false, 2, false, 2, 1},
        {"host allows two, a request in its turn", 100, 20ms, false, 2, true, 1, 1},
        {"host allows all", 100, 20ms, false, 96, false, 96, 1},
        {"near, HTTP/2", 1000, 1ms, true, 16, false, 0, 1},
        {"HTTP/2", 64, 80ms, true, 16, false, 100, 1},
        {"HTTP/2, a request in its turn", 64, 80ms, true, 16, true, 100, 1},
        {"HTTP/2, not far enough to spread", 1000, 49ms, true, 16, false, 100, 1},
        {"HTTP/2, spread", 65, 50ms, true, 16, false, 100, 8},
        {"HTTP/2, spread as far as the host allows", 1000, 80ms, true, 3, false, 100, 3},
    };
    for (const WidthRow& row : rows) {
        const AheadPolicy::Situation situation{row.requests, row.latency, row.isMultiplexing, row.limit,
                                               row.isInTurn};
        EXPECT_EQ(AheadPolicy::width(situation, 1, 0), row.width) << row.what;
        EXPECT_EQ(AheadPolicy::connections(situation), row.connections) << row.what;
    }
}

TEST(AheadPolicyTest, connectionThatIsBeingMadeCarriesOneRequest)
{
    const AheadPolicy::Situation situation{1000, 80ms, true, 16};
    EXPECT_EQ(AheadPolicy::width(situation, 1, 7), 107u);
    EXPECT_EQ(AheadPolicy::width(situation, 8, 0), 800u);
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

TEST(AheadPolicyTest, stallIsASecondOrEightTimesAnAnswer)
{
    EXPECT_EQ(AheadPolicy::stallTime(-1us), 1s);
    EXPECT_EQ(AheadPolicy::stallTime(125ms), 1s);
    EXPECT_EQ(AheadPolicy::stallTime(500ms), 4s);
}
