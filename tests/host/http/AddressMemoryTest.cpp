#include "OrvLibrary/host/impl/http/AddressMemory_p.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

class AddressMemoryTest : public testing::Test
{
protected:
    static HttpLimits limitsWith(HttpLimits::Clock::time_point& now)
    {
        HttpLimits limits;
        limits.now = [&now] { return now; };
        return limits;
    }
    void fail(int times)
    {
        for (int i = 0; i < times; ++i)
            memory.note("h:80", HttpAnswer());
    }

    static HttpAnswer answered(std::chrono::microseconds latency = 0us, bool hadCompany = false)
    {
        HttpAnswer answer;
        answer.answered = true;
        answer.latency = latency;
        answer.hadCompany = hadCompany;
        return answer;
    }

    HttpLimits::Clock::time_point now{};
    AddressMemory memory{limitsWith(now)};
};

} // namespace

TEST_F(AddressMemoryTest, threeRequestsInARowWithoutAnswerCloseAnAddress)
{
    fail(2);
    EXPECT_TRUE(memory.known("h:80").isOpen);
    fail(1);
    EXPECT_FALSE(memory.known("h:80").isOpen);
    EXPECT_TRUE(memory.known("h:81").isOpen);
}

TEST_F(AddressMemoryTest, answerInBetweenStartsTheCountAnew)
{
    fail(2);
    memory.note("h:80", answered());
    fail(2);
    EXPECT_TRUE(memory.known("h:80").isOpen);
}

TEST_F(AddressMemoryTest, addressIsTriedAgainAfterAMinute)
{
    fail(3);
    now += 59999ms;
    EXPECT_FALSE(memory.known("h:80").isOpen);
    now += 1ms;
    EXPECT_TRUE(memory.known("h:80").isOpen);
}

TEST_F(AddressMemoryTest, oneMoreSilenceClosesItAgain)
{
    fail(3);
    now += 60s;
    fail(1);
    EXPECT_FALSE(memory.known("h:80").isOpen);
    now += 60s;
    memory.note("h:80", answered());
    fail(1);
    EXPECT_TRUE(memory.known("h:80").isOpen);
}

TEST_F(AddressMemoryTest, openingAllEndsEveryRefusal)
{
    fail(3);
    memory.openAll();
    EXPECT_TRUE(memory.known("h:80").isOpen);
}

TEST_F(AddressMemoryTest, openingAllStartsEveryCountAnew)
{
    fail(3);
    memory.openAll();
    fail(2);
    EXPECT_TRUE(memory.known("h:80").isOpen);
    fail(1);
    EXPECT_FALSE(memory.known("h:80").isOpen);
}

TEST_F(AddressMemoryTest, latencyIsTheShortestOfTheLastThree)
{
    EXPECT_LT(memory.known("h:80").latency, 0us);
    memory.note("h:80", answered(1ms));
    memory.note("h:80", answered(9ms));
    memory.note("h:80", answered(7ms));
    EXPECT_EQ(memory.known("h:80").latency, 1ms);
    memory.note("h:80", answered(8ms));
    EXPECT_EQ(memory.known("h:80").latency, 7ms);
    memory.note("h:80", answered(2ms, true));
    EXPECT_EQ(memory.known("h:80").latency, 7ms) << "others may have delayed that answer";
    EXPECT_LT(memory.known("h:81").latency, 0us);
}

TEST_F(AddressMemoryTest, cancelledRequestSaysNothing)
{
    for (int i = 0; i < 5; ++i)
        memory.note("h:80", HttpAnswer::cancelled());
    EXPECT_TRUE(memory.known("h:80").isOpen);
}

TEST_F(AddressMemoryTest, lastAnswerTellsTheKindOfConnection)
{
    HttpAnswer answer = answered();
    answer.isMultiplexed = true;
    EXPECT_FALSE(memory.known("h:80").isMultiplexing);
    memory.note("h:80", answer);
    EXPECT_TRUE(memory.known("h:80").isMultiplexing);
    memory.note("h:80", answered());
    EXPECT_FALSE(memory.known("h:80").isMultiplexing);
}
