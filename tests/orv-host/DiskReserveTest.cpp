// The user wants to keep more disk space free than the download service does.
#include <limits>

#include <gmock/gmock.h>

#include "OrvHost/update/CarefulCurl.h"
#include "tests/support/StubServices.h"
#include "tests/support/TempFolder.h"

using OrvHost::CarefulCurl;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

constexpr std::int64_t kMoreThanAnyDisk = std::int64_t{1} << 60;
const std::string kUrl = "http://service.example/c?&library=Doors.orvlib&product=P&version=1";

/// Serves one catalog of four bytes and records the requests.
class SmallService : public test::DeadCurl
{
public:
    bool getURLHeader(const std::string& url, const std::vector<std::string>&, std::string& headerText,
                      std::int64_t& status) override
    {
        asked.push_back("header of " + url);
        headerText = answer.headerText;
        status = answer.status;
        return true;
    }
    using DeadCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>&, void*, ProgressFunction, std::string&,
                              int&) override
    {
        asked.push_back("body of " + url);
        test::writeFile(target.toNativeString(), "door");
        return true;
    }
    void prefetchDownloads(const std::vector<DownloadRequest>& requests) override
    {
        ahead.clear();
        for (const DownloadRequest& request : requests)
            ahead.push_back(request.url);
    }
    Answer lastAnswer() override { return answer; }

    Answer answer{200, "HTTP/1.1 200 OK\r\nETag: \"new\"\r\nContent-Length: 4\r\n\r\n", "", ""};
    std::vector<std::string> asked;
    std::vector<std::string> ahead;
};

class DiskReserveTest : public testing::Test
{
protected:
    CarefulCurl careful(std::int64_t reserve)
    {
        CarefulCurl::Settings settings;
        settings.diskReserve = reserve;
        return CarefulCurl(service, settings);
    }
    bool fetch(CarefulCurl& curl)
    {
        std::string header;
        std::int64_t status = 0;
        curl.getURLHeader(kUrl, {}, header, status);
        service.asked.clear();
        return curl.download_to_location(kUrl, target, {}, nullptr, nullptr, reason, number);
    }

    test::TempFolder folder;
    SmallService service;
    const fileString target = folder.file("Doors.orvlib.download");
    std::string reason;
    int number = 0;
};

} // namespace

TEST_F(DiskReserveTest, bodyThatWouldNotLeaveItIsNotAskedFor)
{
    CarefulCurl curl = careful(kMoreThanAnyDisk);
    EXPECT_FALSE(fetch(curl));
    EXPECT_THAT(service.asked, IsEmpty());
    EXPECT_THAT(reason, MatchesRegex("disk full: 4 bytes needed, [0-9]+ [KMGT]B free, 1152922 TB kept free"));
    EXPECT_EQ(23, number);
    EXPECT_FALSE(target.pathExists());
    const OrvHost::CatalogReport report = curl.report().catalogs.front();
    EXPECT_EQ(reason, report.reason);
    EXPECT_TRUE(report.isDownloadTried);
    EXPECT_FALSE(report.isDownloaded);
}

TEST_F(DiskReserveTest, bodyThatLeavesItIsFetched)
{
    for (const std::int64_t reserve : {0, 1}) {
        CarefulCurl curl = careful(reserve);
        EXPECT_TRUE(fetch(curl)) << reason;
        EXPECT_THAT(service.asked, ElementsAre("body of " + kUrl));
    }
}

TEST_F(DiskReserveTest, onlyWhatLeavesItIsFetchedAhead)
{
    const std::vector<Curl::DownloadRequest> requests{{"a", {}, folder.file("a"), 1000},
                                                      {"b", {}, folder.file("b"), kMoreThanAnyDisk},
                                                      {"c", {}, folder.file("c"), 0}};
    CarefulCurl with = careful(1), without = careful(0), greedy = careful(kMoreThanAnyDisk);
    with.prefetchDownloads(requests);
    EXPECT_THAT(service.ahead, ElementsAre("a", "c"));
    without.prefetchDownloads(requests);
    EXPECT_THAT(service.ahead, ElementsAre("a", "b", "c"));
    greedy.prefetchDownloads(requests);
    EXPECT_THAT(service.ahead, IsEmpty());
}
