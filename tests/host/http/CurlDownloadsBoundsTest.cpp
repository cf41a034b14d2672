// How much is fetched ahead, and when the next downloads may start.
#include <numeric>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"
#include "tests/host/http/CurlDownloadsFixture.h"
#include "tests/support/DescriptorLimit.h"

using namespace std::chrono_literals;

namespace test {

namespace {

constexpr std::int64_t kMost = AheadPolicy::kMostBytes;
constexpr std::int64_t kLarge = AheadPolicy::kLarge;

class CurlDownloadsBoundsTest : public CurlDownloadsFixture
{
protected:
    /// Downloads announced with these sizes. The bodies have only a few bytes.
    Downloads serveAs(const std::vector<std::int64_t>& sizes)
    {
        Downloads downloads = serve(static_cast<int>(sizes.size()), 0);
        for (std::size_t i = 0; i < sizes.size(); ++i)
            downloads[i].size = sizes[i];
        return downloads;
    }
    /// Sends the start of the body of `/number` and never the rest.
    void holdBack(int number) { server.on(nameOf(number), FaultReply::ok(bodyOf(number)).silentAt(6'000)); }
    /// The numbers of the downloads that the server has received requests for.
    std::vector<int> asked(const Downloads& downloads) const
    {
        std::vector<int> numbers;
        for (int i = 0; i < static_cast<int>(downloads.size()); ++i) {
            if (!server.requestsFor(nameOf(i)).empty())
                numbers.push_back(i);
        }
        return numbers;
    }
    /// Runs transfers until the server has received requests for `numbers`, then a little longer, and expects
    /// no other requests.
    void expectAsked(const Downloads& downloads, const std::vector<int>& numbers)
    {
        moveOnWhile([&] { return asked(downloads).size() < numbers.size(); });
        for (int i = 0; i < 6; ++i)
            header(server.url("/first")); // takes as long as the server's delay
        EXPECT_EQ(asked(downloads), numbers);
    }
    /// The numbers 0 to `count` - 1.
    static std::vector<int> first(std::size_t count)
    {
        std::vector<int> numbers(count);
        std::iota(numbers.begin(), numbers.end(), 0);
        return numbers;
    }
};

} // namespace

TEST_F(CurlDownloadsBoundsTest, sixtyFourMegabytesStandAheadUntilATurnMakesRoom)
{
    EXPECT_EQ(kMost, 64'000'000);
    const Downloads downloads = serveAs(std::vector<std::int64_t>(10, 8'000'000));
    announce(downloads);
    expectAsked(downloads, first(8));
    EXPECT_TRUE(get(downloads[0]));
    expectAsked(downloads, first(9));
}

TEST_F(CurlDownloadsBoundsTest, oneByteTooManyWaits)
{
    std::vector<std::int64_t> sizes(8, 8'000'000);
    sizes[3] = 7'999'999;
    sizes.insert(sizes.end(), {2, 1});
    const Downloads downloads = serveAs(sizes);
    announce(downloads);
    // The last download would fit, but the order of the list is kept.
    expectAsked(downloads, first(8));
    EXPECT_TRUE(get(downloads[0]));
    expectAsked(downloads, first(10));
}

TEST_F(CurlDownloadsBoundsTest, oneOfSixtyFourMegabytesGoesAloneAndALongerOneInItsTurn)
{
    const Downloads downloads = serveAs({1, kMost + 1, kMost, 1});
    announce(downloads);
    expectAsked(downloads, {0});
    EXPECT_TRUE(get(downloads[0]));
    expectAsked(downloads, {0, 2});
    EXPECT_TRUE(get(downloads[1]));
    expectAsked(downloads, {0, 1, 2});
    EXPECT_TRUE(get(downloads[2]));
    expectAsked(downloads, first(4));
}

TEST_F(CurlDownloadsBoundsTest, oneOfUnknownLengthIsAskedForInItsTurnAndHoldsNobodyUp)
{
    const Downloads downloads = serveAs({0, -1, 100, 100});
    announce(downloads);
    expectAsked(downloads, {2, 3});
    for (const auto& download : downloads)
        EXPECT_TRUE(get(download)) << reason;
}

TEST_F(CurlDownloadsBoundsTest, failureAheadMakesRoom)
{
    const Downloads downloads = serveAs(std::vector<std::int64_t>(10, 8'000'000));
    server.on(nameOf(2), FaultReply::status(404, "gone"));
    server.on(nameOf(5), FaultReply::ok(bodyOf(5)).cutAt(500));
    announce(downloads);
    expectAsked(downloads, first(10));
}

TEST_F(CurlDownloadsBoundsTest, twoMissingFilesInARowDoNotEndTheList)
{
    curl.setConnectionLimit(2);
    const Downloads downloads = serveAs(std::vector<std::int64_t>(20, 1'000));
    for (const int number : {4, 5})
        server.on(nameOf(number), FaultReply::status(404, "gone").pauseAt(0, delay));
    announce(downloads);
    expectAsked(downloads, first(20));
}

TEST_F(CurlDownloadsBoundsTest, requestInAnotherWayMakesRoom)
{
    const Downloads downloads = serveAs(std::vector<std::int64_t>(9, 8'000'000));
    announce(downloads);
    expectAsked(downloads, first(8));
    Curl::DownloadRequest other = downloads[4];
    other.headerLines = {"X-Number: another"};
    EXPECT_TRUE(get(other));
    expectAsked(downloads, first(9));
}

TEST_F(CurlDownloadsBoundsTest, furtherListHasAllTheRoom)
{
    const Downloads downloads = serveAs(std::vector<std::int64_t>(16, 8'000'000));
    for (int i = 0; i < 4; ++i)
        holdBack(i);
    announce({downloads.begin(), downloads.begin() + 8});
    expectAsked(downloads, first(8));
    announce({downloads.begin() + 8, downloads.end()});
    expectAsked(downloads, first(16));
}

TEST_F(CurlDownloadsBoundsTest, twoLargeOnesAreUnderWayAtATimeUntilOneHasArrived)
{
    EXPECT_EQ(kLarge, 8'000'000);
    const Downloads downloads = serveAs(std::vector<std::int64_t>(6, kLarge + 1));
    for (const int number : {0, 3})
        holdBack(number);
    announce(downloads);
    // Each download that arrives lets the next one start, until two large ones are held back.
    expectAsked(downloads, first(4));
}

TEST_F(CurlDownloadsBoundsTest, thoseOfEightMegabytesAreNotLargeYetAndJoinTwoThatAre)
{
    const Downloads downloads = serveAs({kLarge, kLarge, kLarge + 1, kLarge + 1, kLarge, kLarge});
    for (int i = 0; i < 6; ++i)
        holdBack(i);
    announce(downloads);
    expectAsked(downloads, first(6));
}

TEST_F(CurlDownloadsBoundsTest, abortedLargeOneMakesRoomForTheNextAndSmallOnesWaitBehind)
{
    const Downloads downloads = serveAs({kLarge + 1, kLarge + 1, kLarge + 1, 100});
    for (const int number : {0, 1, 2})
        holdBack(number);
    announce(downloads);
    expectAsked(downloads, {0, 1});
    Listener listener;
    listener.abortAt = 4096;
    EXPECT_FALSE(get(downloads[0], &listener));
    expectAsked(downloads, first(4));
}

TEST_F(CurlDownloadsBoundsTest, eachStandsAheadWithAFileOfWhichThereAreFew)
{
    const Downloads downloads = serveAs(std::vector<std::int64_t>(135, 1'000));
    announce(downloads);
    expectAsked(downloads, first(128));
    moveOnWhile([&] { return files().size() < 128; });
    EXPECT_EQ(files().size(), 128u);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(get(downloads[i]));
    expectAsked(downloads, first(131));
    curl.prefetchDownloads({});
    EXPECT_EQ(files().size(), 3u);
}

TEST_F(CurlDownloadsBoundsTest, descriptorsAreLeftForOtherFiles)
{
    const Downloads downloads = serve(100);
    learnLatency();
    const std::size_t open = host::descriptorUse().open;
    const DescriptorLimit limit(2 * open + 80); // so 40 bodies are allowed
    curl.prefetchDownloads(downloads);
    expectAsked(downloads, first(40));
    for (const auto& download : downloads)
        EXPECT_TRUE(get(download)) << reason;
}

} // namespace test
