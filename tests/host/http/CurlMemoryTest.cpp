// libcurl runs out of memory.
#include <thread>

#include <curl/curl.h>

#include "tests/host/http/CurlDownloadsFixture.h"
#include "tests/host/http/TransferLibrary.h"

using testing::ElementsAre;
using testing::SizeIs;
using namespace std::chrono_literals;
using Call = test::TransferLibraryFault::Call;

namespace test {

namespace {

constexpr std::size_t kFiles = 6;

class CurlMemoryTest : public CurlDownloadsFixture
{
protected:
    CurlMemoryTest() : CurlDownloadsFixture(patientLimits()) {}

    /// Downloads all files one after the other and expects their contents.
    void expectAllArrive(const Downloads& downloads)
    {
        for (std::size_t i = 0; i < downloads.size(); ++i) {
            ASSERT_TRUE(get(downloads[i])) << i << reason;
            EXPECT_EQ(readFile(downloads[i].target), bodyOf(static_cast<int>(i)));
        }
    }
    /// Runs a whole update with these downloads. Returns how many handles are kept for the next run.
    int handlesOfARun(const Downloads& downloads)
    {
        announce(downloads);
        expectAllArrive(downloads);
        curl.prefetchDownloads({});
        return TransferLibraryFault::handles();
    }
    /// Makes one call fail while the downloads are announced. Expects that each download still arrives with
    /// one request, and that no handle is lost.
    void sweepAnnouncement(Call call)
    {
        const Downloads downloads = serve(kFiles);
        const int handles = handlesOfARun(downloads);
        for (std::size_t number = 1; number <= kFiles; ++number) {
            SCOPED_TRACE(number);
            learnLatency();
            {
                const TransferLibraryFault fault(call, number);
                curl.prefetchDownloads(downloads);
                ASSERT_TRUE(fault.hasFailed());
            }
            expectAllArrive(downloads);
            EXPECT_EQ(server.requests().size(), requestsBefore + kFiles);
            curl.prefetchDownloads({});
            EXPECT_EQ(TransferLibraryFault::handles(), handles);
            EXPECT_THAT(files(), SizeIs(kFiles)); // no temporary files are left
        }
        EXPECT_EQ(handlesOfARun(downloads), handles);
    }
};

} // namespace

TEST_F(CurlMemoryTest, downloadThatCannotBePreparedAheadIsMadeInItsTurn)
{
    sweepAnnouncement(Call::AddHeaderLine);
}

TEST_F(CurlMemoryTest, downloadThatCannotBeStartedAheadIsMadeInItsTurn)
{
    sweepAnnouncement(Call::AddTransfer);
}

TEST_F(CurlMemoryTest, downloadWithoutAHandleAheadIsMadeInItsTurn)
{
    const Downloads downloads = serve(kFiles);
    // A new thread has no handles yet.
    std::thread([&] {
        learnLatency();
        const int handles = TransferLibraryFault::handles();
        {
            const TransferLibraryFault fault(Call::NewHandle, 2);
            curl.prefetchDownloads(downloads);
            EXPECT_TRUE(fault.hasFailed());
        }
        EXPECT_EQ(TransferLibraryFault::handles(), handles + 1);
        expectAllArrive(downloads);
    }).join();
    EXPECT_EQ(server.requests().size(), requestsBefore + kFiles);
    EXPECT_THAT(files(), SizeIs(kFiles));
}

TEST_F(CurlMemoryTest, downloadThatCannotMoveOnInItsTurnIsAskedForAnew)
{
    const Downloads downloads = serve(kFiles);
    const int handles = handlesOfARun(downloads);
    server.on(nameOf(0), FaultReply::ok(bodyOf(0)).silentAt(0));
    announce(downloads);
    moveOnWhile([&] { return server.requestsFor(nameOf(0)).size() < 2; });
    ASSERT_THAT(server.requestsFor(nameOf(0)), SizeIs(2));
    server.on(nameOf(0), FaultReply::ok(bodyOf(0)));
    {
        // The first call serves all transfers; in the second one the download waits for its own transfer.
        const TransferLibraryFault fault(Call::MoveOn, 2);
        EXPECT_TRUE(get(downloads[0])) << reason;
        EXPECT_TRUE(fault.hasFailed());
    }
    EXPECT_THAT(server.requestsFor(nameOf(0)), SizeIs(3));
    expectAllArrive(downloads);
    curl.prefetchDownloads({});
    EXPECT_EQ(TransferLibraryFault::handles(), handles);
    EXPECT_THAT(files(), SizeIs(kFiles));
}

TEST_F(CurlMemoryTest, downloadThatCannotMoveOnAfterItWasToldOfFails)
{
    const Downloads downloads = serve(kFiles);
    server.on(nameOf(0), FaultReply::ok(bodyOf(0)).pauseAt(9'000, 300ms));
    announce(downloads);
    std::unique_ptr<TransferLibraryFault> fault;
    Listener listener;
    listener.onCall = [&] {
        fault = fault ? std::move(fault) : std::make_unique<TransferLibraryFault>(Call::MoveOn, 1);
    };
    EXPECT_FALSE(get(downloads[0], &listener));
    EXPECT_EQ(errorNumber, CURLE_OUT_OF_MEMORY);
    EXPECT_EQ(reason, "Out of memory");
    EXPECT_THAT(listener.counts, ElementsAre(4096, 8192));
    fault.reset();
    EXPECT_FALSE(downloads[0].target.pathExists());
    for (std::size_t i = 1; i < kFiles; ++i)
        EXPECT_TRUE(get(downloads[i])) << reason;
    EXPECT_EQ(server.requests().size(), requestsBefore + kFiles);
    curl.prefetchDownloads({});
    EXPECT_THAT(files(), SizeIs(kFiles - 1));
}

TEST_F(CurlMemoryTest, requestInItsTurnFailsAndTheNextOneGoesWell)
{
    server.on("/a", FaultReply::ok("body"));
    ASSERT_TRUE(fetch(server.url("/a")));
    const int handles = TransferLibraryFault::handles();
    for (const Call call : {Call::AddHeaderLine, Call::AddTransfer, Call::MoveOn}) {
        SCOPED_TRACE(static_cast<int>(call));
        {
            const TransferLibraryFault fault(call, 1);
            EXPECT_FALSE(fetch(server.url("/a"), {"X-Line: a"}));
            EXPECT_TRUE(fault.hasFailed());
        }
        EXPECT_EQ(errorNumber, CURLE_OUT_OF_MEMORY);
        EXPECT_NE(reason, "");
        EXPECT_EQ(readFile(target()), "body"); // the old content
        EXPECT_TRUE(fetch(server.url("/a"), {"X-Line: a"}));
        EXPECT_EQ(TransferLibraryFault::handles(), handles);
        EXPECT_THAT(files(), SizeIs(1));
    }
}

} // namespace test
