// How soon a cancel ends a run over a real connection.
#include "tests/catalog/CatalogTest.h"

#include <chrono>
#include <thread>

#include "tests/support/FaultServer.h"

using Clock = std::chrono::steady_clock;

namespace {

class LibraryCatalogUpdaterCancel : public test::CatalogTest
{
protected:
    LibraryCatalogUpdaterCancel()
    {
        Curl::install(nullptr);
        mArguments.coreOnly = true;
        mArguments.redirect = server.url("/redirect");
        server.on("/redirect", test::FaultReply::redirect("/content?"));
        server.on(target("Orv_Core_Content_Index.txt"), test::FaultReply::ok("a.orvlib\n"));
    }
    ~LibraryCatalogUpdaterCancel() override { Curl::install(&mCurl); }

    static std::string target(const std::string& name)
    {
        return "/content?&library=" + name + "&product=Orv&version=7";
    }

    /// Runs an update and cancels it as soon as the service has received `requests` requests.
    /// @return the time from the cancel to the end of the run
    Clock::duration runAndCancelAfter(std::size_t requests)
    {
        Clock::time_point cancelled;
        std::thread user([&] {
            server.waitForRequests(requests);
            cancelled = Clock::now();
            LibraryCatalogUpdate::LibraryCatalogUpdater::killDownload();
        });
        run();
        const Clock::time_point closed = Clock::now();
        user.join();
        return closed - cancelled;
    }

    test::FaultServer server;
};

} // namespace

TEST_F(LibraryCatalogUpdaterCancel, isHeardWithinASecondWhileATransferIsSilent)
{
    test::FaultReply reply = test::FaultReply::ok(std::string(5000, 'a'), {"ETag: \"1\""});
    server.onInTurn(target("a.orvlib"), {reply, reply.silentInBodyAt(300)});
    const Clock::duration time = runAndCancelAfter(5); // redirect, endpoint, index, header, file
    EXPECT_LT(time, std::chrono::seconds(2)) << "a second of silence, and some patience with the machine";
    EXPECT_EQ(mRecorder->count("onClose"), 1u);
    EXPECT_EQ(mRecorder->count("closeCatalogUpdateEvent"), 0u);
    EXPECT_THAT(logMessages(),
                testing::ElementsAre("Failed To Download File:  a   Reason:  Callback aborted\n"));
    EXPECT_FALSE(download("core", "a.download").pathExists());
    EXPECT_TRUE(exists("core/catalog_hash.txt"));
}

TEST_F(LibraryCatalogUpdaterCancel, endsEveryKindOfRequestAndSendsNoFurtherOne)
{
    using test::FaultReply;
    const std::string index = target("Orv_Core_Content_Index.txt");
    const std::string catalog = target("a.orvlib");
    struct Case
    {
        std::string silent;
        std::size_t requests;
    };
    std::size_t closings = 0;
    for (const Case& next : {Case{"/redirect", 1}, Case{"/content?", 2}, Case{index, 3}, Case{catalog, 4}}) {
        test::FaultServer fresh;
        mArguments.redirect = fresh.url("/redirect");
        fresh.on("/redirect", FaultReply::redirect("/content?"));
        fresh.on(index, FaultReply::ok("a.orvlib\nb.orvlib\n"));
        fresh.on("/content?", FaultReply::ok(""));
        fresh.on(next.silent, FaultReply::silence());
        std::thread user([&] {
            fresh.waitForRequests(next.requests);
            LibraryCatalogUpdate::LibraryCatalogUpdater::killDownload();
        });
        run();
        user.join();
        EXPECT_EQ(fresh.requests().size(), next.requests) << next.silent;
        EXPECT_EQ(mRecorder->count("onClose"), ++closings) << next.silent;
        EXPECT_TRUE(exists("core/catalog_hash.txt")) << next.silent;
    }
}
