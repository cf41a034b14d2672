#include "OrvHost/history/VersionKeeper.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"
#include "tests/support/StubServices.h"

using OrvHost::CatalogCategory;
using OrvHost::CatalogHistory;
using OrvHost::CatalogPins;
using OrvHost::CatalogPlace;
using OrvHost::VersionKeeper;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const CatalogPlace kDoors{CatalogCategory::Core, "Doors.orvlib"};
const CatalogPlace kGarden{CatalogCategory::Bonus, "Garden.orvlib"};
const CatalogPlace kGardenFiles{CatalogCategory::Referenced, "Garden.zip"};

std::string urlOf(const std::string& name)
{
    return "http://service.example/c?&library=" + name + "&product=P&version=1";
}

/// Gives every header request the same answer, and every download its address as body.
class OneAnswer : public test::DeadCurl
{
public:
    Answer answer{200, "HTTP/1.1 200 OK\r\nETag: \"new\"\r\n\r\n", "", ""};
    std::vector<std::string> fetched;

    bool getURLHeader(const std::string&, const std::vector<std::string>&, std::string& headerText,
                      std::int64_t& status) override
    {
        headerText = answer.headerText;
        status = answer.status;
        return status != 0;
    }
    Answer lastAnswer() override { return answer; }
    using DeadCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>&, void*, ProgressFunction, std::string&,
                              int&) override
    {
        fetched.push_back(url);
        test::writeFile(target.toNativeString(), url);
        return true;
    }
};

class VersionKeeperTest : public test::HostedTest
{
protected:
    VersionKeeperTest()
    {
        for (const CatalogPlace& place : {kDoors, kGarden, kGardenFiles})
            folder.write("root/" + place.key(), "former");
    }

    void answerWith(const std::string& lines)
    {
        service.answer.headerText = "HTTP/1.1 200 OK\r\n" + lines + "\r\n";
    }
    /// The status of a header request for a catalog and that of its last answer, such as "200 200".
    std::string ask(VersionKeeper& keeper, const CatalogPlace& place)
    {
        const std::string name = place.name + (place.category == CatalogCategory::Bonus ? "z" : "");
        return askFor(keeper, name);
    }
    std::string askFor(VersionKeeper& keeper, const std::string& name)
    {
        std::string text;
        std::int64_t status = 0;
        const bool isAnswered = keeper.getURLHeader(urlOf(name), {"X: 1"}, text, status);
        return isAnswered ? std::to_string(status) + " " + std::to_string(keeper.lastAnswer().status)
                          : "none";
    }
    bool fetch(VersionKeeper& keeper, const std::string& name)
    {
        int number = 0;
        return keeper.download_to_location(urlOf(name), folder.file("target"), {}, nullptr, nullptr, reason,
                                           number);
    }
    bool resume(VersionKeeper& keeper, const std::string& name)
    {
        int number = 0;
        return keeper.downloadResumable({urlOf(name), {}, folder.file("target"), {}, {}}, nullptr, nullptr,
                                        reason, number);
    }

    CatalogPins pins{host.root()};
    OneAnswer service;
    std::string reason;
};

} // namespace

TEST_F(VersionKeeperTest, heldCatalogIsToldToBeCurrentAndItsNewVersionNoted)
{
    pins.hold(kDoors, {"old", ""});
    VersionKeeper keeper(service, pins);
    EXPECT_EQ(ask(keeper, kDoors), "304 304");
    ASSERT_THAT(keeper.offers(), SizeIs(1));
    EXPECT_EQ(keeper.offers()[0].place, kDoors);
    EXPECT_EQ(keeper.offers()[0].version, "new");
    EXPECT_EQ(keeper.offers()[0].url, urlOf("Doors.orvlib"));
    EXPECT_THAT(keeper.offers()[0].headerLines, ElementsAre("X: 1"));
    EXPECT_EQ(ask(keeper, kGarden), "200 200");
    EXPECT_THAT(keeper.offers(), SizeIs(1));
}

TEST_F(VersionKeeperTest, heldVersionThatIsMissingIsFetchedAgain)
{
    pins.hold(kDoors, {"new", ""});
    VersionKeeper keeper(service, pins);
    EXPECT_EQ(ask(keeper, kDoors), "200 200");
    EXPECT_THAT(keeper.offers(), IsEmpty());
}

TEST_F(VersionKeeperTest, catalogIsHeldWithItsArchive)
{
    pins.hold(kGardenFiles, {"old", ""});
    VersionKeeper keeper(service, pins);
    EXPECT_EQ(ask(keeper, kGarden), "304 304");
    EXPECT_EQ(ask(keeper, kGardenFiles), "304 304");
    EXPECT_EQ(ask(keeper, kDoors), "200 200");
}

TEST_F(VersionKeeperTest, onlyAnswersWithAVersionAreChanged)
{
    pins.hold(kDoors, {"old", ""});
    VersionKeeper keeper(service, pins);
    for (const char* lines :
         {"", "ETag: \"\"\r\n", "ETag: \"new\"\r\nContent-Type: text/html; charset=x\r\n"}) {
        answerWith(lines);
        EXPECT_EQ(ask(keeper, kDoors), "200 200") << lines;
    }
    for (const char* lines : {"ETag: new\r\n", "ETag: \"new\"\r\nContent-Type: xtext/html\r\n",
                              "ETag: W/\"new\"\r\n", "ETag: \"old\"\r\nETag: \"new\"\r\n"}) {
        answerWith(lines);
        EXPECT_EQ(ask(keeper, kDoors), "304 304") << lines;
        EXPECT_EQ(keeper.offers().back().version, "new") << lines;
    }
    answerWith("ETag: \"new\r\n");
    EXPECT_EQ(ask(keeper, kDoors), "304 304");
    EXPECT_EQ(keeper.offers().back().version, "\"new");
    for (const std::int64_t status : {304, 404, 503}) {
        service.answer.status = status;
        const std::string expected = std::to_string(status) + " " + std::to_string(status);
        EXPECT_EQ(ask(keeper, kDoors), expected);
    }
    service.answer.status = 0;
    EXPECT_EQ(ask(keeper, kDoors), "none");
}

TEST_F(VersionKeeperTest, catalogThatIsNotInstalledIsNotHeld)
{
    pins.hold({CatalogCategory::Core, ""}, {"old", ""});
    pins.hold({CatalogCategory::Core, "Roofs.orvlib"}, {"old", ""});
    VersionKeeper keeper(service, pins);
    EXPECT_EQ(askFor(keeper, "Roofs.orvlib"), "200 200");
    EXPECT_EQ(askFor(keeper, "Index.txt"), "200 200");
    EXPECT_THAT(keeper.offers(), IsEmpty());
}

TEST_F(VersionKeeperTest, versionThatTheUserHasLeftIsNotBroughtAgain)
{
    pins.setRestored(kDoors, {"v1", "0a", {"v2", "new"}});
    VersionKeeper keeper(service, pins);
    EXPECT_EQ(ask(keeper, kDoors), "304 304");
    EXPECT_THAT(keeper.offers(), IsEmpty());
    EXPECT_EQ(ask(keeper, kGarden), "200 200");
    answerWith("ETag: \"v3\"\r\n");
    EXPECT_EQ(ask(keeper, kDoors), "200 200");
}

TEST_F(VersionKeeperTest, onlyTheLastAnswerIsReplaced)
{
    pins.hold(kDoors, {"old", ""});
    VersionKeeper keeper(service, pins);
    EXPECT_EQ(ask(keeper, kDoors), "304 304");
    service.answer.status = 503;
    EXPECT_EQ(keeper.lastAnswer().status, 503) << "it belongs to another request";
    service.answer.status = 200;
    EXPECT_EQ(ask(keeper, kGarden), "200 200");
    for (const bool isResumed : {false, true}) {
        EXPECT_EQ(ask(keeper, kDoors), "304 304");
        EXPECT_TRUE(isResumed ? resume(keeper, "Roofs.orvlib") : fetch(keeper, "Roofs.orvlib"));
        EXPECT_EQ(keeper.lastAnswer().status, 200) << isResumed;
    }
}

TEST_F(VersionKeeperTest, formerArchiveIsKeptBeforeTheDownload)
{
    VersionKeeper keeper(service, pins);
    ASSERT_TRUE(fetch(keeper, "Doors.orvlib"));
    EXPECT_FALSE(CatalogHistory::folder().pathExists()) << "it has no archive";
    ASSERT_TRUE(fetch(keeper, "Garden.orvlibz"));
    EXPECT_EQ(test::readFile(CatalogHistory().newest(kGardenFiles)), "former");
    folder.write("root/referenced/Tiles.zip", "tiles");
    ASSERT_TRUE(resume(keeper, "Tiles.zip"));
    EXPECT_EQ(test::readFile(CatalogHistory().newest({CatalogCategory::Referenced, "Tiles.zip"})), "tiles");
    EXPECT_THAT(service.fetched, SizeIs(3));
}

TEST_F(VersionKeeperTest, nothingIsFetchedIfTheArchiveCannotBeKept)
{
    folder.write("root/history/referenced", "in the way");
    VersionKeeper keeper(service, pins);
    EXPECT_FALSE(fetch(keeper, "Garden.orvlibz"));
    EXPECT_NE(reason, "");
    EXPECT_FALSE(resume(keeper, "Garden.orvlibz"));
    EXPECT_THAT(service.fetched, IsEmpty());
}
