#include "OrvHost/update/UpdateOutcome.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using LibraryCatalogUpdate::UpdateData;
using OrvHost::CatalogCategory;
using OrvHost::CatalogReport;
using OrvHost::CatalogSwapper;
using OrvHost::CheckOutcome;
using OrvHost::ServiceReport;
using OrvHost::UpdateOutcome;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Kind = UpdateOutcome::Kind;

constexpr const char* kDoors = "Doors.orvlib";

class UpdateOutcomeTest : public test::HostedTest
{
protected:
    UpdateOutcomeTest() { service.endpoint = service.index = {true, true, 200, ""}; }

    /// A catalog with another version of 5,000 bytes, which was not fetched.
    static CatalogReport offered(const std::string& name = kDoors)
    {
        CatalogReport catalog;
        catalog.asked = name;
        catalog.status = 200;
        catalog.tag = "new";
        catalog.length = 5000;
        return catalog;
    }
    static CatalogReport fetched(const std::string& name = kDoors)
    {
        CatalogReport catalog = offered(name);
        catalog.isDownloadTried = catalog.isDownloaded = true;
        return catalog;
    }
    static CatalogReport answered(std::int64_t status, const std::string& reason = "",
                                  const std::string& name = kDoors)
    {
        CatalogReport catalog;
        catalog.asked = name;
        catalog.status = status;
        catalog.reason = reason;
        return catalog;
    }

    UpdateOutcome outcome(std::int32_t result = LibraryCatalogUpdate::kResultCurrent) const
    {
        UpdateData closing;
        closing.result = result;
        closing.updatedCatalogs = updated;
        return UpdateOutcome::of(service, swapper, closing);
    }
    /// Each failure as "catalog status reason".
    static std::vector<std::string> texts(const UpdateOutcome& outcome)
    {
        std::vector<std::string> all;
        for (const UpdateOutcome::Failure& failure : outcome.failed)
            all.push_back(failure.catalog.value_or("index") + " " +
                          (failure.status ? std::to_string(*failure.status) : "none") + " " + failure.reason);
        return all;
    }
    /// The failures of a run that asked for one catalog only.
    std::vector<std::string> failuresOf(const CatalogReport& catalog)
    {
        service.catalogs = {catalog};
        return texts(outcome());
    }
    void swapIn(const std::string& name)
    {
        swapper.setDatabaseCheck(false);
        EXPECT_TRUE(swapper.swapIn(folder.file("root/core/" + name), folder.write("new", "sound")));
    }
    void refuse(const std::string& name)
    {
        swapper.setDatabaseCheck(true);
        EXPECT_FALSE(swapper.swapIn(folder.file("root/core/" + name), folder.write("new", "a web page")));
    }
    static CheckOutcome::Catalog found(const std::string& name, CheckOutcome::State state)
    {
        CheckOutcome::Catalog catalog;
        catalog.place = {CatalogCategory::Core, name};
        catalog.state = state;
        return catalog;
    }

    ServiceReport service;
    CatalogSwapper swapper;
    std::set<std::string> updated;
};

} // namespace

TEST_F(UpdateOutcomeTest, catalogThatTheServiceDoesNotHaveFailsOnlyIfTheIndexNamesIt)
{
    EXPECT_THAT(failuresOf(answered(404, "HTTP 404")), IsEmpty());
    service.indexNames = {kDoors};
    EXPECT_THAT(failuresOf(answered(404, "HTTP 404")), ElementsAre("Doors.orvlib 404 HTTP 404"));
    EXPECT_THAT(failuresOf(answered(410, "HTTP 410")), ElementsAre("Doors.orvlib 410 HTTP 410"));
}

TEST_F(UpdateOutcomeTest, failedRequestsTellTheirStatusAndReason)
{
    EXPECT_THAT(failuresOf(answered(304)), IsEmpty());
    EXPECT_THAT(failuresOf(answered(503, "HTTP 503")), ElementsAre("Doors.orvlib 503 HTTP 503"));
    EXPECT_THAT(failuresOf(answered(0, "no answer")), ElementsAre("Doors.orvlib none no answer"));
    CatalogReport broken = offered();
    broken.isDownloadTried = true;
    broken.bodyStatus = 502;
    broken.reason = "HTTP 502";
    EXPECT_THAT(failuresOf(broken), ElementsAre("Doors.orvlib 502 HTTP 502"));
    CatalogReport untried = offered();
    untried.reason = "disk full";
    EXPECT_THAT(failuresOf(untried), ElementsAre("Doors.orvlib 200 disk full"));
}

TEST_F(UpdateOutcomeTest, newCatalogThatWasNotFetchedSaysWhy)
{
    CatalogReport catalog = offered();
    catalog.length = {};
    EXPECT_THAT(
        failuresOf(catalog),
        ElementsAre("Doors.orvlib 200 the service did not tell its length, so that it was not fetched"));
    catalog = offered();
    catalog.tag = {};
    EXPECT_THAT(
        failuresOf(catalog),
        ElementsAre("Doors.orvlib 200 the service did not tell its version, so that it was not fetched"));
    catalog = offered();
    catalog.length = 1000;
    EXPECT_THAT(failuresOf(catalog),
                ElementsAre("Doors.orvlib 200 it was not fetched, because an installation before it failed"));
    catalog.length = 999;
    EXPECT_THAT(
        failuresOf(catalog),
        ElementsAre("Doors.orvlib 200 less than a kilobyte has changed in all, which is not fetched"));
    service.verdict = "this is a login page";
    EXPECT_THAT(failuresOf(catalog), ElementsAre("Doors.orvlib 200 this is a login page"));
}

TEST_F(UpdateOutcomeTest, unchangedCatalogDoesNotCountAsAKilobyteThatHasChanged)
{
    CatalogReport small = offered("Roofs.orvlib");
    small.length = 999;
    CatalogReport unchanged = answered(304);
    unchanged.length = 5000;
    service.catalogs = {small, unchanged};
    EXPECT_THAT(
        texts(outcome()),
        ElementsAre("Roofs.orvlib 200 less than a kilobyte has changed in all, which is not fetched"));
    service.catalogs.push_back(fetched());
    service.catalogs.back().sentTag = "new"; // the download of a held version
    EXPECT_THAT(
        texts(outcome()),
        ElementsAre("Roofs.orvlib 200 less than a kilobyte has changed in all, which is not fetched"));
}

TEST_F(UpdateOutcomeTest, nothingThatWasNotFetchedHasFailedAfterACancel)
{
    service.catalogs = {offered()};
    const UpdateOutcome cancelled = UpdateOutcome::of(service, swapper, std::nullopt);
    EXPECT_THAT(cancelled.failed, IsEmpty());
    EXPECT_EQ(cancelled.kind, Kind::Cancelled);
    EXPECT_FALSE(cancelled.result);
    service.verdict = "this is a login page";
    EXPECT_EQ(UpdateOutcome::of(service, swapper, std::nullopt).error, "");
}

TEST_F(UpdateOutcomeTest, fetchedCatalogMustBeInstalled)
{
    const auto notInstalled = ElementsAre("Doors.orvlib 200 it could not be installed");
    EXPECT_THAT(failuresOf(fetched()), notInstalled);
    updated = {"Roofs"};
    EXPECT_THAT(failuresOf(fetched()), notInstalled);
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:old\nRoofs.orvlib:new\n");
    EXPECT_THAT(failuresOf(fetched()), notInstalled);
    CatalogReport held = fetched();
    held.sentTag = "new";
    EXPECT_THAT(failuresOf(held), IsEmpty());
}

TEST_F(UpdateOutcomeTest, fetchedCatalogThatTheLibraryReportsIsInstalled)
{
    updated = {"Doors"};
    EXPECT_THAT(failuresOf(fetched()), IsEmpty());
}

TEST_F(UpdateOutcomeTest, fetchedCatalogWithItsHashLineIsInstalled)
{
    folder.write("root/bonus/catalog_hash.txt", "Garden.orvlib:new\n");
    EXPECT_THAT(failuresOf(fetched("Garden.orvlibz")), IsEmpty());
    CatalogReport untagged = fetched("Garden.orvlibz");
    untagged.tag = {};
    EXPECT_THAT(failuresOf(untagged), ElementsAre("Garden.orvlib 200 it could not be installed"));
    service.indexNames = {"Garden.orvlibz"};
    EXPECT_THAT(failuresOf(fetched("Garden.orvlibz")),
                ElementsAre("Garden.orvlibz 200 it could not be installed"));
}

TEST_F(UpdateOutcomeTest, catalogThatWasPutIntoPlaceIsInstalled)
{
    swapIn("Roofs.orvlib");
    EXPECT_THAT(failuresOf(fetched()), ElementsAre("Doors.orvlib 200 it could not be installed"));
    swapIn(kDoors);
    EXPECT_THAT(failuresOf(fetched()), IsEmpty());
    EXPECT_EQ(outcome().swappedIn, swapper.swappedIn());
}

TEST_F(UpdateOutcomeTest, refusedCatalogFailsOnceWithTheReasonOfTheSwap)
{
    refuse(kDoors);
    refuse("Left.orvlib");
    updated = {"Doors", "Left", "Roofs"};
    service.catalogs = {answered(304, "", "Roofs.orvlib"), fetched()};
    const std::string reason = " " + swapper.failed().front().reason;
    const UpdateOutcome first = outcome();
    EXPECT_THAT(texts(first), ElementsAre("Doors.orvlib 200" + reason, "Left.orvlib none" + reason));
    EXPECT_THAT(first.updatedCatalogs, ElementsAre("Roofs"));
    updated.clear();
    EXPECT_THAT(texts(outcome()), ElementsAre("Doors.orvlib 200" + reason, "Left.orvlib none" + reason));
    swapIn(kDoors);
    updated = {"Doors"};
    const UpdateOutcome second = outcome();
    EXPECT_THAT(texts(second), ElementsAre("Left.orvlib none" + reason));
    EXPECT_THAT(second.updatedCatalogs, ElementsAre("Doors"));
}

TEST_F(UpdateOutcomeTest, refusedCatalogSaysNothingOfAnother)
{
    refuse("Left.orvlib");
    const std::string reason = " " + swapper.failed().front().reason;
    EXPECT_THAT(failuresOf(fetched()),
                ElementsAre("Doors.orvlib 200 it could not be installed", "Left.orvlib none" + reason));
    EXPECT_THAT(failuresOf(fetched("Left.orvlib")), ElementsAre("Left.orvlib 200" + reason));
}

TEST_F(UpdateOutcomeTest, namesOfTheLibraryBecomeUtf8)
{
    updated = {"G\xE4rten"};
    EXPECT_THAT(outcome().updatedCatalogs, ElementsAre("G\xC3\xA4rten"));
}

TEST_F(UpdateOutcomeTest, requestThatFailedComesFirst)
{
    service.catalogs = {answered(304)};
    service.index = {true, false, 500, "HTTP 500"};
    EXPECT_THAT(texts(outcome()), ElementsAre("index 500 HTTP 500"));
    EXPECT_EQ(outcome().error, "the content index could not be fetched: HTTP 500");
    service.endpoint = {true, false, 0, "no answer"};
    EXPECT_THAT(texts(outcome()), ElementsAre("index none no answer"));
    EXPECT_EQ(outcome().error, "the catalog web service was not found: no answer");
    service.verdict = "this is a login page";
    EXPECT_EQ(outcome().error, "this is a login page");
}

TEST_F(UpdateOutcomeTest, requestWithoutAReasonOrNotMadeIsNoFailure)
{
    service.endpoint = {true, false, 0, ""}; // cancelled
    EXPECT_THAT(outcome().failed, IsEmpty());
    service.endpoint = service.index = {};
    EXPECT_THAT(outcome().failed, IsEmpty());
    EXPECT_EQ(outcome().error, "");
}

TEST_F(UpdateOutcomeTest, runFailsIfNoCatalogCouldBeChecked)
{
    EXPECT_EQ(outcome().error, "");
    service.catalogs = {answered(503, "HTTP 503"), answered(0, "no answer", "Roofs.orvlib")};
    EXPECT_EQ(outcome().error,
              "no catalog could be checked: Doors.orvlib: HTTP 503; Roofs.orvlib: no answer");
    EXPECT_EQ(outcome().kind, Kind::Failed);
    for (const std::int64_t status : {200, 304, 404, 410}) {
        service.catalogs.back().status = status;
        EXPECT_EQ(outcome().error, "") << status;
        EXPECT_EQ(outcome().kind, Kind::Incomplete) << status;
    }
}

TEST_F(UpdateOutcomeTest, resultOfTheLibraryCountsWhereNothingElseFailed)
{
    service.catalogs = {answered(304)};
    for (const std::int32_t result :
         {LibraryCatalogUpdate::kResultFailed, LibraryCatalogUpdate::kResultCoreFailed}) {
        EXPECT_EQ(outcome(result).error, "an error was written to the log");
        EXPECT_EQ(outcome(result).result, result);
    }
    for (const std::int32_t result :
         {LibraryCatalogUpdate::kResultUpdated, LibraryCatalogUpdate::kResultCurrent})
        EXPECT_EQ(outcome(result).error, "");
    service.catalogs.push_back(answered(503, "HTTP 503", "Roofs.orvlib"));
    EXPECT_EQ(outcome(LibraryCatalogUpdate::kResultFailed).error, "");
}

TEST_F(UpdateOutcomeTest, goodRunIsUpdatedOrCurrent)
{
    EXPECT_EQ(outcome().kind, Kind::Current);
    updated = {"Doors"};
    EXPECT_EQ(outcome().kind, Kind::Updated);
}

TEST_F(UpdateOutcomeTest, messageOfTheLibraryIsKeptIfItHasOne)
{
    UpdateData closing;
    EXPECT_FALSE(UpdateOutcome::of(service, swapper, closing).messageCode);
    closing.messageCode = LibraryCatalogUpdate::kMessageNoEndpoint;
    EXPECT_EQ(UpdateOutcome::of(service, swapper, closing).messageCode,
              LibraryCatalogUpdate::kMessageNoEndpoint);
    service.verdict = "kept";
    EXPECT_EQ(UpdateOutcome::of(service, swapper, closing).service.verdict, "kept");
}

TEST_F(UpdateOutcomeTest, waitingCatalogsOfAMeteredConnectionAreListed)
{
    CheckOutcome check;
    EXPECT_EQ(UpdateOutcome::ofPostponed(service, swapper, check).kind, Kind::Current);
    check.catalogs = {found(kDoors, CheckOutcome::State::New), found("a", CheckOutcome::State::Current),
                      found("Roofs.orvlib", CheckOutcome::State::Missing),
                      found("b", CheckOutcome::State::Held)};
    check.catalogs.front().bytes = 77;
    swapIn("Left.orvlib");
    service.verdict = "";
    service.catalogs = {answered(304)};
    const UpdateOutcome waiting = UpdateOutcome::ofPostponed(service, swapper, check);
    EXPECT_EQ(waiting.kind, Kind::Waiting);
    EXPECT_EQ(waiting.error, "");
    ASSERT_THAT(waiting.postponed, testing::SizeIs(2));
    EXPECT_EQ(waiting.postponed[0].catalog, kDoors);
    EXPECT_EQ(waiting.postponed[0].bytes, 77);
    EXPECT_EQ(waiting.postponed[1].catalog, "Roofs.orvlib");
    EXPECT_FALSE(waiting.postponed[1].bytes);
    EXPECT_EQ(waiting.swappedIn, swapper.swappedIn());
    EXPECT_THAT(waiting.service.catalogs, testing::SizeIs(1));
}

TEST_F(UpdateOutcomeTest, uncheckedCatalogOnAMeteredConnectionFailsOnce)
{
    CheckOutcome check;
    check.catalogs = {found(kDoors, CheckOutcome::State::Unknown),
                      found("Roofs.orvlib", CheckOutcome::State::Unknown),
                      found("Walls.orvlib", CheckOutcome::State::New)};
    check.catalogs[1].status = 500;
    check.catalogs[1].why = "a reason";
    service.catalogs = {answered(503, "HTTP 503"), answered(304, "", "Walls.orvlib")};
    const UpdateOutcome incomplete = UpdateOutcome::ofPostponed(service, swapper, check);
    EXPECT_THAT(texts(incomplete), ElementsAre("Doors.orvlib 503 HTTP 503", "Roofs.orvlib 500 a reason"));
    EXPECT_EQ(incomplete.kind, Kind::Incomplete);
    service.verdict = "this is a login page";
    const UpdateOutcome failed = UpdateOutcome::ofPostponed(service, swapper, check);
    EXPECT_EQ(failed.kind, Kind::Failed);
    EXPECT_EQ(failed.error, "this is a login page");
}
