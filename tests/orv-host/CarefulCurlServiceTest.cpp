// The careful download service on top of the library's service, against a real server.
#include "OrvHost/update/CarefulCurl.h"

#include <algorithm>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ContentService.h"

using OrvHost::CarefulCurl;
using test::FaultReply;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string kName = "Doors.orvlib";

class CarefulCurlService : public test::HostedTest
{
protected:
    CarefulCurlService() : curl(Curl::get(), settings())
    {
        Curl::forgetFailures();
        service.offer(kName, content);
    }

    CarefulCurl::Settings settings() const
    {
        CarefulCurl::Settings all;
        all.partialFolder = folder.file("partial");
        all.retries.retries = 12;
        all.retries.firstPause = std::chrono::milliseconds(1);
        return all;
    }
    std::string url() { return service.server().url("/content?&library=" + kName + "&product=P&version=1"); }
    fileString target() const { return folder.file("target"); }
    bool askHeader()
    {
        std::string text;
        std::int64_t status = 0;
        return curl.getURLHeader(url(), {}, text, status);
    }
    bool fetch()
    {
        int number = 0;
        counts.clear();
        const auto count = [](void* list, double, double downloaded, double, double) {
            static_cast<std::vector<double>*>(list)->push_back(downloaded);
            return 0;
        };
        return curl.download_to_location(url(), target(), {}, &counts, count, reason, number);
    }
    std::vector<std::string> ranges()
    {
        std::vector<std::string> all;
        for (const test::FaultRequest& request : service.server().requests()) {
            if (request.method == "GET")
                all.push_back(request.header("Range"));
        }
        return all;
    }

    test::ContentService service;
    const std::string content = test::sampleBytes(100'000, 7);
    CarefulCurl curl;
    std::string reason;
    std::vector<double> counts;
};

} // namespace

TEST_F(CarefulCurlService, bodyCutAtAPlaceThatMovesIsPutTogether)
{
    service.cutBodiesInTurn({1000, 7, 30'000, 0, 1, 20'000});
    ASSERT_TRUE(askHeader());
    ASSERT_TRUE(fetch()) << reason;
    EXPECT_EQ(content, test::readFile(target()));
    EXPECT_THAT(ranges(), ElementsAre("", "bytes=1000-", "bytes=1007-", "bytes=31007-", "bytes=31007-",
                                      "bytes=31008-", "bytes=51008-"));
    EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end())) << "progress never goes back";
    EXPECT_EQ(100'000, curl.report().catalogs[0].bytes);
    EXPECT_THAT(test::listTree(folder.path() + "/partial"), IsEmpty());
}

TEST_F(CarefulCurlService, bodyThatChangesBetweenTwoPiecesIsFetchedWholeAndRefused)
{
    service.cutBodiesInTurn({1000});
    ASSERT_TRUE(askHeader());
    service.spoilWith([this](const FaultReply& sound, const test::FaultRequest& request) {
        if (request.header("Range").empty())
            return sound;
        return FaultReply::file(request, std::string(100'000, 'n'), "\"newer\"");
    });
    EXPECT_FALSE(fetch());
    EXPECT_THAT(reason, HasSubstr("another version than announced: tag newer"));
    EXPECT_FALSE(target().pathExists());
}

TEST_F(CarefulCurlService, headerWithoutALengthAnnouncesNone)
{
    service.spoilHeader(kName, FaultReply::untilClose("", {"ETag: \"x\""}));
    EXPECT_TRUE(askHeader());
    EXPECT_EQ(std::nullopt, curl.report().catalogs[0].length);
    EXPECT_EQ("x", curl.report().catalogs[0].tag);
    EXPECT_EQ("", curl.report().catalogs[0].reason);
}

TEST_F(CarefulCurlService, bodyWithoutALengthIsJudgedByTheAnnouncedOne)
{
    ASSERT_TRUE(askHeader());
    service.spoil(kName, FaultReply::untilClose(content));
    EXPECT_TRUE(fetch()) << reason;
    service.spoil(kName, FaultReply::chunked({content.substr(0, 5), content.substr(5)}));
    EXPECT_TRUE(fetch()) << reason;
    EXPECT_EQ(content, test::readFile(target()));
    // The body is cut off, but the transfer cannot detect it.
    service.spoil(kName, FaultReply::untilClose(content.substr(0, 500)));
    EXPECT_FALSE(fetch());
    EXPECT_EQ("another version than announced: 500 bytes instead of 100,000", reason);
    EXPECT_FALSE(target().pathExists());
}

TEST_F(CarefulCurlService, endpointThatWasNotFoundOnceStaysSo)
{
    service.server().onInTurn("/redirect",
                              {FaultReply::redirect("ftp://x/"), FaultReply::redirect("/content?")});
    EXPECT_EQ("", curl.urlAfterRedirects(service.redirect()));
    EXPECT_NE("", curl.urlAfterRedirects(service.redirect()));
    EXPECT_FALSE(curl.report().endpoint.isGood);
    EXPECT_THAT(curl.report().endpoint.reason, HasSubstr("forbidden"));
}
