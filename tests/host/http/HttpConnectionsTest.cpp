#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

#include "tests/host/http/CurlDownloadsFixture.h"
#include "tests/host/http/TransferLibrary.h"

using namespace std::chrono_literals;

namespace test {

namespace {

class HttpConnectionsTest : public CurlDownloadsFixture
{
};

} // namespace

TEST_F(HttpConnectionsTest, waitingForAServerTakesFewSteps)
{
    curl.setConnectionLimit(2);
    const Downloads downloads = serve(6);
    announce(downloads);
    server.on("/late", FaultReply::ok("").pauseAt(0, 200ms));
    for (int i = 0; i < 6; ++i)
        server.on(nameOf(i), FaultReply::ok(bodyOf(i)).pauseAt(0, 200ms));
    // A step every 10 ms makes a few hundred. The 3,000th would fail.
    const TransferLibraryFault fault(TransferLibraryFault::Call::MoveOn, 3'000);
    EXPECT_TRUE(header(server.url("/late"))) << "it waits for a connection, and then for its answer";
    for (const auto& download : downloads)
        EXPECT_TRUE(get(download)) << reason;
    EXPECT_FALSE(fault.hasFailed());
}

} // namespace test
