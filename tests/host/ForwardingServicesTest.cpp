#include "tests/support/ForwardingServices.h"

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/host/StringUtils.h"
#include "tests/support/FaultServer.h"
#include "tests/support/ScopedHost.h"

using test::Fault;
using test::InjectedFault;
using test::Service;
using test::ServiceCalls;

namespace {

class ForwardingServicesTest : public testing::Test
{
protected:
    ServiceCalls& calls() { return mServices.calls(); }

    test::ScopedHost mHost;
    test::ForwardingServices mServices;
};

TEST_F(ForwardingServicesTest, callsAreCountedTogetherAndApart)
{
    PathUtils::getObject().getCoreLibraryDatabasePath();
    FileSearch::get().resetFileSearch(fileString("/x"));
    PathUtils::getObject().getTempPath();
    EXPECT_EQ(calls().total(), 3u);
    EXPECT_EQ(calls().count(Service::Paths), 2u);
    EXPECT_EQ(calls().count(Service::FileSearch), 1u);
    EXPECT_EQ(calls().count(Service::Curl), 0u);
    EXPECT_THAT(calls().operations(),
                testing::ElementsAre("PathUtils::getCoreLibraryDatabasePath", "FileSearch::resetFileSearch",
                                     "PathUtils::getTempPath"));
    EXPECT_THAT(mHost.resetFolders(), testing::ElementsAre("/x"));
}

TEST_F(ForwardingServicesTest, aPlannedCallThrowsOnceOrForEver)
{
    calls().planFault(2, Fault::Throw);
    EXPECT_NO_THROW(gApp.load()->name());
    EXPECT_THROW(StringTable::get().text(2749), InjectedFault);
    EXPECT_NO_THROW(StringTable::get().text(2749));
    calls().reset();
    calls().planFault(2, Fault::Throw, ServiceCalls::Repeat::ForEver);
    EXPECT_NO_THROW(gApp.load()->name());
    EXPECT_THROW(StringTable::get().text(2749), InjectedFault);
    EXPECT_THROW(gApp.load()->name(), InjectedFault);
    EXPECT_EQ(calls().faults(), 2u);
}

TEST_F(ForwardingServicesTest, aPlanMayBeForOneServiceAlone)
{
    calls().planFault(Service::Application, 2, Fault::Throw);
    for (int i = 0; i < 3; ++i)
        EXPECT_NO_THROW(PathUtils::getObject().getTempPath());
    EXPECT_NO_THROW(gApp.load()->name());
    EXPECT_THROW(gApp.load()->contentIndexName(), InjectedFault);
}

TEST_F(ForwardingServicesTest, everyOperationThrowsBeforeTheServiceBehindIsAsked)
{
    calls().planFault(1, Fault::Throw, ServiceCalls::Repeat::ForEver);
    EXPECT_THROW(FileSearch::get().resetFileSearch(fileString("/x")), InjectedFault);
    EXPECT_THROW(error::MessagingSystem::control().notify("", 0, error::WarningTrait(), 1, "", "", ""),
                 InjectedFault);
    EXPECT_THROW(PreferenceEngine::getThePrefs().setPrefAs<bool>(254, true), InjectedFault);
    EXPECT_THROW(PreferenceEngine::getThePrefs().getPrefAs<int>(239), InjectedFault);
    EXPECT_THROW(xl8("key"), InjectedFault);
    EXPECT_TRUE(mHost.resetFolders().empty());
    EXPECT_TRUE(mHost.messages().empty());
    calls().reset();
    EXPECT_FALSE(PreferenceEngine::getThePrefs().getPrefAs<bool>(254));
}

TEST_F(ForwardingServicesTest, downloadsFailWithAReasonAndWithoutARequest)
{
    const test::FaultServer server;
    const fileString target = mHost.folder().file("target");
    calls().planFault(1, Fault::Fail, ServiceCalls::Repeat::ForEver);
    std::string reason, text = "untouched";
    int errorNumber = 0;
    std::int64_t status = -5;
    Curl& curl = Curl::get();
    EXPECT_FALSE(curl.downloadable(server.url()));
    EXPECT_TRUE(curl.download(server.url()).empty());
    EXPECT_FALSE(curl.download_to_location(server.url(), target, {}, nullptr, nullptr, reason, errorNumber));
    EXPECT_EQ(reason, "injected failure");
    EXPECT_EQ(errorNumber, 7);
    reason.clear();
    EXPECT_FALSE(curl.download_to_location(server.url(), target, reason));
    EXPECT_EQ(reason, "injected failure");
    EXPECT_FALSE(curl.getURLHeader(server.url(), {}, text, status));
    EXPECT_EQ(text, "untouched");
    EXPECT_EQ(status, -5);
    EXPECT_FALSE(curl.browseURL(server.url(), {}, text, true, 0));
    EXPECT_EQ(curl.urlAfterRedirects(server.url()), "");
    curl.prefetchHeaders({{server.url(), {}}});
    curl.prefetchDownloads({{server.url(), {}, target, 1}});
    EXPECT_TRUE(server.requests().empty());
    EXPECT_EQ(calls().faults(), 9u);
}

TEST_F(ForwardingServicesTest, announcedRequestsReachTheServiceBehind)
{
    struct Announced : OrvHost::ForwardingCurl
    {
        using OrvHost::ForwardingCurl::ForwardingCurl;
        void prefetchHeaders(const std::vector<HeaderRequest>& requests) override
        {
            for (const HeaderRequest& request : requests)
                urls.push_back(request.url);
        }
        void prefetchDownloads(const std::vector<DownloadRequest>& requests) override
        {
            for (const DownloadRequest& request : requests)
                urls.push_back(request.url);
        }
        std::vector<std::string> urls;
    };
    Announced behind(Curl::get());
    test::ForwardingCurl curl(behind, calls());
    curl.prefetchHeaders({{"http://a.test/1", {}}, {"http://a.test/2", {}}});
    curl.prefetchDownloads({{"http://a.test/3", {}, fileString("/x"), 1}});
    EXPECT_THAT(behind.urls, testing::ElementsAre("http://a.test/1", "http://a.test/2", "http://a.test/3"));
    EXPECT_THAT(calls().operations(),
                testing::ElementsAre("Curl::prefetchHeaders", "Curl::prefetchDownloads"));
}

TEST_F(ForwardingServicesTest, textsFailByBeingUnknownAndOthersGoThrough)
{
    calls().planFault(1, Fault::Fail, ServiceCalls::Repeat::ForEver);
    EXPECT_EQ(StringUtils::loadString(2749), "");
    EXPECT_EQ(xl8("key"), "key");
    EXPECT_EQ(gApp.load()->name(), "Orv Test");
}

TEST_F(ForwardingServicesTest, countsFromManyThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 100; ++round)
                gApp.load()->name();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(calls().total(), 400u);
}

TEST(ForwardingServices, formerServicesAreInstalledAgain)
{
    const test::ScopedHost host;
    PathUtils* const paths = &PathUtils::getObject();
    Curl* const curl = &Curl::get();
    Application* const application = gApp;
    {
        const test::ForwardingServices services;
        EXPECT_NE(&PathUtils::getObject(), paths);
        EXPECT_NE(&Curl::get(), curl);
        EXPECT_NE(gApp.load(), application);
    }
    EXPECT_EQ(&PathUtils::getObject(), paths);
    EXPECT_EQ(&Curl::get(), curl);
    EXPECT_EQ(gApp.load(), application);
}

TEST(ForwardingServices, aMissingApplicationObjectStaysMissing)
{
    Application* const former = Application::install(nullptr);
    {
        const test::ForwardingServices services;
        EXPECT_EQ(gApp.load(), nullptr);
    }
    EXPECT_EQ(Application::install(former), nullptr);
}

} // namespace
