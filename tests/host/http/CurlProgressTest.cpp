#include "tests/host/http/CurlFixture.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using namespace std::chrono_literals;

namespace test {

namespace {

struct Calls
{
    std::vector<double> counts;
    std::vector<double> totals;
    double abortFrom = -1; ///< aborts once this many bytes have arrived; negative: never
    std::size_t abortAtCall = 0;

    static int record(void* self, double total, double count, double, double)
    {
        auto* calls = static_cast<Calls*>(self);
        calls->counts.push_back(count);
        calls->totals.push_back(total);
        const bool isEnough = calls->abortFrom >= 0 && count >= calls->abortFrom;
        return isEnough || calls->counts.size() == calls->abortAtCall ? 1 : 0;
    }
};

class CurlProgressTest : public CurlFixture
{
protected:
    CurlProgressTest() : CurlFixture(limits()) {}

    static HttpLimits limits()
    {
        HttpLimits limits = shortLimits();
        limits.progressSilence = 100ms;
        limits.progressInterval = 10ms;
        return limits;
    }
    bool fetchTold(const std::string& path) { return fetch(server.url(path), {}, &Calls::record, &calls); }

    Calls calls;
};

} // namespace

TEST_F(CurlProgressTest, everyFourKiBAreToldWithEvenlyRisingCounts)
{
    server.on("/a", FaultReply::ok(std::string(1'000'000, 'x')));
    EXPECT_TRUE(fetchTold("/a"));
    ASSERT_EQ(calls.counts.size(), 1'000'000u / 4096 + 1);
    for (std::size_t i = 0; i + 1 < calls.counts.size(); ++i)
        ASSERT_EQ(calls.counts[i], 4096.0 * static_cast<double>(i + 1));
    EXPECT_EQ(calls.counts.back(), 1'000'000);
    EXPECT_THAT(calls.totals, testing::Each(1'000'000));
}

TEST_F(CurlProgressTest, totalIsNoughtWhenTheLengthIsNotKnown)
{
    server.on("/a", FaultReply::untilClose("12345"));
    EXPECT_TRUE(fetchTold("/a"));
    EXPECT_THAT(calls.totals, ElementsAre(0));
    EXPECT_THAT(calls.counts, ElementsAre(5));
}

TEST_F(CurlProgressTest, smallFileIsToldBeforeSuccessAndCanBeCancelled)
{
    server.on("/a", FaultReply::ok("1"));
    server.on("/empty", FaultReply::ok(""));
    for (const char* path : {"/a", "/empty"}) {
        calls = Calls();
        calls.abortFrom = 0;
        folder.write("a.orvlib", "old");
        EXPECT_FALSE(fetchTold(path));
        EXPECT_EQ(errorNumber, Curl::kAbortedByCallback);
        EXPECT_EQ(calls.counts.size(), 1u);
        EXPECT_EQ(readFile(target()), "old");
        EXPECT_THAT(files(), ElementsAre("a.orvlib"));
    }
}

TEST_F(CurlProgressTest, abortEndsTheTransferAtThatCall)
{
    server.on("/a", FaultReply::ok(std::string(1'000'000, 'x')));
    calls.abortFrom = 100'000;
    EXPECT_FALSE(fetchTold("/a"));
    EXPECT_EQ(errorNumber, 42);
    EXPECT_EQ(reason, "Callback aborted");
    EXPECT_EQ(calls.counts.back(), 102'400);
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlProgressTest, cancelOfASilentServerIsHeard)
{
    server.on("/silent", FaultReply::silence());
    server.on("/head", FaultReply::ok("x").silentAt(12));
    server.on("/body", FaultReply::ok(std::string(10000, 'x')).silentInBodyAt(5000));
    for (const char* path : {"/silent", "/head", "/body"}) {
        calls = Calls();
        calls.abortAtCall = 5;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(fetchTold(path));
        EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
        EXPECT_EQ(errorNumber, 42) << path;
        EXPECT_EQ(calls.counts.size(), 5u);
    }
}

TEST_F(CurlProgressTest, cancelIsHeardWhileAnErrorPageTrickles)
{
    server.on("/a", FaultReply::status(503, std::string(1000, 'x')).trickle(1, 5ms));
    calls.abortAtCall = 2;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(fetchTold("/a"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    EXPECT_EQ(errorNumber, 42);
    EXPECT_THAT(calls.counts, ElementsAre(0, 0));
}

TEST_F(CurlProgressTest, silenceOfTheServerIsToldAtShortIntervalsAndIsNoTimeout)
{
    FaultReply reply = FaultReply::ok("12345678");
    server.on("/a", reply.pauseAt(reply.headSize() + 4, 700ms));
    EXPECT_TRUE(fetchTold("/a")) << reason;
    // About 600 ms remain after the first 100 ms, and calls come every 10 ms.
    EXPECT_THAT(calls.counts.size(), AllOf(Ge(20u), Le(63u)));
    EXPECT_EQ(calls.counts.front(), 4);
    EXPECT_EQ(calls.counts.back(), 8);
}

TEST_F(CurlProgressTest, firstByteInTimeMeansNoCallBeforeIt)
{
    CurlService service; // with its default timeouts
    server.on("/a", FaultReply::ok(std::string(5000, 'x')).pauseAt(0, 300ms));
    EXPECT_TRUE(service.download_to_location(server.url("/a"), target(), {}, &calls, &Calls::record, reason,
                                             errorNumber));
    EXPECT_THAT(calls.counts, ElementsAre(4096, 5000));
}

} // namespace test
