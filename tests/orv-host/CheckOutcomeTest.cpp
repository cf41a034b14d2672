#include "OrvHost/update/CheckOutcome.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using OrvHost::CatalogCategory;
using OrvHost::CatalogPlace;
using OrvHost::CatalogReport;
using OrvHost::CheckOutcome;
using State = OrvHost::CheckOutcome::State;

namespace {

class CheckOutcomeTest : public test::HostedTest
{
protected:
    /// The outcome for a core catalog, if installed with the tag "old", and this report of the service.
    CheckOutcome outcome(bool isInstalled, const CatalogReport& report, bool isHeld = false)
    {
        LibraryCatalogUpdate::CatalogMap records;
        LibraryCatalogUpdate::CatalogUpdateData& record = records[fileString("Doors.orvlib")];
        record.localHash = isInstalled ? "old" : "";
        record.serverETag = report.tag.value_or("");
        record.responseStatus = report.status;
        if (isInstalled) {
            folder.write("root/core/Doors.orvlib", "x");
            folder.write("root/core/catalog_hash.txt", "Doors.orvlib:old\n");
        }
        OrvHost::ServiceReport service;
        if (!report.asked.empty())
            service.catalogs = {report};
        return CheckOutcome::of(
            records, service, [isHeld](const CatalogPlace&) { return isHeld; }, host.root());
    }
    static CatalogReport report(std::int64_t status, const std::string& tag = "",
                                std::optional<std::int64_t> length = std::nullopt)
    {
        CatalogReport report;
        report.asked = "Doors.orvlib";
        report.status = status;
        if (!tag.empty())
            report.tag = tag;
        report.length = length;
        return report;
    }
    void expect(const CheckOutcome& found, State state, const std::string& why, CheckOutcome::Kind kind)
    {
        ASSERT_EQ(1U, found.catalogs.size());
        EXPECT_STREQ(CheckOutcome::stateName(state), CheckOutcome::stateName(found.catalogs[0].state));
        EXPECT_EQ(why, found.catalogs[0].why);
        EXPECT_EQ(kind, found.kind);
    }
};

constexpr auto kCurrent = CheckOutcome::Kind::Current;
constexpr auto kWaiting = CheckOutcome::Kind::Waiting;
constexpr auto kFailed = CheckOutcome::Kind::Failed;

} // namespace

TEST_F(CheckOutcomeTest, unansweredCatalogsAreUnknownWithTheirReason)
{
    expect(outcome(true, {}), State::Unknown, "it was not asked for", kFailed);
    expect(outcome(true, report(500)), State::Unknown, "HTTP 500", kFailed);
    CatalogReport silent = report(0);
    silent.reason = "timed out";
    expect(outcome(true, silent), State::Unknown, "timed out", kFailed);
    expect(outcome(true, report(200)), State::Unknown, "the service did not tell its version", kFailed);
    EXPECT_FALSE(outcome(true, {}).isServiceReached);
    EXPECT_FALSE(outcome(true, silent).isServiceReached);
    EXPECT_TRUE(outcome(true, report(500)).isServiceReached);
}

TEST_F(CheckOutcomeTest, missingCatalogsAreNewUnchangedOrGone)
{
    expect(outcome(false, report(304)), State::Unknown, "HTTP 304", kFailed);
    for (const int status : {404, 410})
        expect(outcome(false, report(status)), State::Gone,
               "the service does not have it (HTTP " + std::to_string(status) + ")", kCurrent);
    expect(outcome(false, report(200, "new", 5000)), State::Missing,
           "it is not installed; the service has new", kWaiting);
}

TEST_F(CheckOutcomeTest, installedCatalogsAreCurrentOrHaveAnotherVersion)
{
    expect(outcome(true, report(304)), State::Current, "the service says that it has not changed", kCurrent);
    expect(outcome(true, report(200, "old", 5000)), State::Current, "same tag as installed: old", kCurrent);
    const CheckOutcome waiting = outcome(true, report(200, "0123456789abc", 5000));
    expect(waiting, State::New, "tag differs: had old, service has 0123456789ab...", kWaiting);
    EXPECT_EQ(5000, waiting.bytes);
    EXPECT_EQ(3, waiting.exitStatus());
    EXPECT_EQ("old", waiting.catalogs[0].installed);
    EXPECT_EQ("0123456789abc", waiting.catalogs[0].offered);
    expect(outcome(true, report(200, "0123456789ab", 5000)), State::New,
           "tag differs: had old, service has 0123456789ab", kWaiting);
}

TEST_F(CheckOutcomeTest, catalogsThatAnUpdateWouldLeaveHaveAReason)
{
    const std::string why = "tag differs: had old, service has new";
    expect(outcome(true, report(200, "new")), State::New,
           why + "; an update does not fetch it, because the service does not tell its length", kWaiting);
    expect(outcome(true, report(200, "new", 999)), State::New,
           why + "; an update does not fetch it: 999 bytes in all, no file of a kilobyte", kWaiting);
    expect(outcome(true, report(200, "new", 1000)), State::New, why, kWaiting);
}

TEST_F(CheckOutcomeTest, rootThatIsGoneHasNoFreeSpace)
{
    const auto isHeld = [](const auto&) { return false; };
    EXPECT_EQ(CheckOutcome::of({}, {}, isHeld, folder.file("missing")).free, 0);
}

TEST_F(CheckOutcomeTest, aHeldCatalogDoesNotWait)
{
    expect(outcome(true, report(200, "new", 5000), true), State::Held,
           "held at its version; the service has another one", kCurrent);
    expect(outcome(true, report(304), true), State::Held, "held at its version", kCurrent);
    expect(outcome(true, report(500), true), State::Unknown, "HTTP 500", kFailed);
    expect(outcome(true, report(404), true), State::Gone, "the service does not have it (HTTP 404)",
           kCurrent);
}

TEST_F(CheckOutcomeTest, aComplaintNamesSomeAndCountsTheOthers)
{
    CheckOutcome outcome;
    EXPECT_EQ("", outcome.complaint());
    CheckOutcome::Catalog catalog;
    catalog.place = {CatalogCategory::Core, "Doors.orvlib"};
    catalog.why = std::string(399 - 14, 'w');
    outcome.catalogs = {catalog};
    EXPECT_EQ("Doors.orvlib: " + catalog.why, outcome.complaint());
    outcome.catalogs = {catalog, catalog};
    EXPECT_EQ("Doors.orvlib: " + catalog.why + "; Doors.orvlib: " + catalog.why, outcome.complaint());
    catalog.why += 'w'; // 400 characters altogether
    outcome.catalogs = {catalog, catalog, catalog};
    EXPECT_EQ("Doors.orvlib: " + catalog.why + "; and 2 more", outcome.complaint());
    outcome.error = "no service";
    EXPECT_EQ("no service", outcome.complaint());
}
