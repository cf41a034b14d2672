// An update checks what the service sends before it replaces a file, and reports every failure.
#include <filesystem>

#include <QJsonArray>
#include <QJsonDocument>

#include <gmock/gmock.h>

#include "OrvHost/update/HashFile.h"
#include "OrvLibrary/OrvLibraryVersion.h"
#include "tests/orv-library/Program.h"
#include "tests/support/BrokenService.h"
#include "tests/support/ContentService.h"
#include "tests/support/SampleDatabase.h"

namespace fs = std::filesystem;

using test::FaultReply;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kIndex = "Orv_Core_Content_Index.txt";
const std::string kPage = test::loginPage().body();
const std::vector<std::string> kHtml = {"Content-Type: text/html; charset=utf-8"};

/// Two installed catalogs with newer versions on the service.
class UpdateTruth : public testing::Test
{
protected:
    UpdateTruth()
    {
        service.offer(kIndex, "Doors.orvlib\nRoofs.orvlib\n");
        offer("Doors", "former doors");
        offer("Roofs", "former roofs");
        EXPECT_EQ(0, update().status);
        oldDoors = content("core/Doors.orvlib");
        offer("Doors", "new doors");
        offer("Roofs", "new roofs");
        fs::remove(path("update-history.json"));
    }

    void offer(const std::string& stem, const std::string& text, std::size_t bytes = 3000)
    {
        service.offer(stem + ".orvlib", test::sampleDatabase(text, bytes));
    }
    std::vector<std::string> arguments(const std::vector<std::string>& more) const
    {
        std::vector<std::string> all = {"--json", "--progress", "none",
                                        "update", "--url",      service.redirect()};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    test::ProgramResult update(const std::vector<std::string>& more = {"--retries", "0"}) const
    {
        return program.run(arguments(more));
    }

    std::string path(const std::string& name) const { return program.root() + "/" + name; }
    std::string content(const std::string& name) const { return test::readFile(path(name)); }
    QJsonObject status() const { return program.run({"--json", "status"}).json(); }
    std::size_t downloadsOf(const std::string& name)
    {
        std::size_t count = 0;
        for (const test::FaultRequest& request : service.server().requests())
            count += request.method == "GET" && request.target.find("library=" + name) != std::string::npos
                         ? 1
                         : 0;
        return count;
    }

    /// Expects that only Doors failed and kept its old file, and that Roofs was updated.
    void expectOnlyDoorsFailed(const test::ProgramResult& result, const QJsonValue& answer,
                               const std::string& reason)
    {
        EXPECT_EQ(1, result.status);
        const QJsonObject document = result.json();
        EXPECT_EQ("incomplete", document["outcome"].toString().toStdString());
        EXPECT_FALSE(document.contains("error"));
        ASSERT_EQ(1, document["failed"].toArray().size()) << result.out;
        const QJsonObject failed = document["failed"].toArray()[0].toObject();
        EXPECT_EQ("Doors.orvlib", failed["catalog"].toString().toStdString());
        EXPECT_EQ(answer, failed["status"]) << result.out;
        EXPECT_THAT(failed["reason"].toString().toStdString(), HasSubstr(reason));
        EXPECT_THAT(result.err, AllOf(HasSubstr("Doors.orvlib"), HasSubstr(reason)));
        EXPECT_EQ(oldDoors, content("core/Doors.orvlib"));
        EXPECT_EQ(test::sampleDatabase("new roofs", 3000), content("core/Roofs.orvlib"));
        EXPECT_TRUE(status()["lastGoodCheck"].isNull());
        EXPECT_TRUE(status()["lastAttempt"].isString());
        EXPECT_THAT(program.run({"status"}).out, HasSubstr("Doors.orvlib: "));
    }

    void expectNoCatalogService(const test::ProgramResult& result)
    {
        EXPECT_EQ(1, result.status);
        const QJsonObject document = result.json();
        EXPECT_EQ("failed", document["outcome"].toString().toStdString());
        EXPECT_EQ(service.redirect() + " answers with web pages (a login page?), not as a catalog service",
                  document["error"].toString().toStdString());
        EXPECT_EQ("orv-library: " + document["error"].toString().toStdString() + "\n", result.err);
        EXPECT_THAT(document["swappedIn"].toArray(), IsEmpty());
        EXPECT_FALSE(document["failed"].toArray().isEmpty());
        EXPECT_EQ(oldDoors, content("core/Doors.orvlib"));
        EXPECT_TRUE(status()["lastGoodCheck"].isNull());
    }

    test::ContentService service;
    test::Program program;
    std::string oldDoors;
};

} // namespace

TEST_F(UpdateTruth, loginPageForEveryAddressIsNoCatalogService)
{
    service.spoilAll(FaultReply::ok(kPage, kHtml));
    expectNoCatalogService(update());
}

TEST_F(UpdateTruth, redirectToALoginPageIsNoCatalogService)
{
    service.spoilAll(FaultReply::redirect(test::kLoginPath));
    expectNoCatalogService(update());
}

TEST_F(UpdateTruth, indexThatIsMarkupIsNoneWhateverItsType)
{
    service.spoil(kIndex, FaultReply::ok("\n<!DOCTYPE html>" + kPage, {"Content-Type: text/plain"}));
    expectNoCatalogService(update());
}

TEST_F(UpdateTruth, loginPagesInPlaceOfHeadersEndTheRun)
{
    service.spoilHeader("Doors.orvlib", FaultReply::ok(kPage, kHtml));
    expectNoCatalogService(update());
}

TEST_F(UpdateTruth, loginThatExpiresBetweenHeaderAndBodyEndsTheRun)
{
    service.spoil("Doors.orvlib", FaultReply::ok(kPage, kHtml));
    expectNoCatalogService(update());
    EXPECT_EQ(0U, downloadsOf("Roofs.orvlib") - 1) << "only the download before the expiry";
}

TEST_F(UpdateTruth, catalogsAfterALoginPageAreLeftOutForItsSake)
{
    service.spoil("Doors.orvlib", FaultReply::ok(kPage, kHtml));
    const test::ProgramResult result = update();
    expectNoCatalogService(result);
    const QJsonArray failed = result.json()["failed"].toArray();
    ASSERT_EQ(2, failed.size()) << result.out;
    EXPECT_EQ("a web page instead of a catalog", failed[0].toObject()["reason"].toString());
    EXPECT_EQ("Roofs.orvlib", failed[1].toObject()["catalog"].toString());
    EXPECT_EQ(result.json()["error"], failed[1].toObject()["reason"]);
}

TEST_F(UpdateTruth, noFormOfALoginPageReplacesACatalogOrCountsAsAGoodCheck)
{
    const std::string newDoors = test::sampleDatabase("new doors", 3000);
    for (const test::Behaviour& form : test::loginPages()) {
        for (const std::string kind : {"redirect", "library=Orv_Core", "HEAD", "GET", "/"}) {
            SCOPED_TRACE(form.name + (" in place of " + kind));
            service.spoilWith([&](const FaultReply& sound, const test::FaultRequest& request) {
                const bool isSpoilt = (request.method + " " + request.target).find(kind) != std::string::npos;
                return isSpoilt ? form.spoil(sound, request) : sound;
            });
            EXPECT_EQ(1, update().status);
            const std::string doors = content("core/Doors.orvlib");
            EXPECT_TRUE(doors == oldDoors || doors == newDoors) << "it holds something else";
            EXPECT_TRUE(status()["lastGoodCheck"].isNull());
        }
    }
    service.spoilWith(nullptr);
    EXPECT_EQ(0, update().status);
    EXPECT_TRUE(newDoors == content("core/Doors.orvlib"));
}

TEST_F(UpdateTruth, errorPageMayBeAWebPage)
{
    service.spoilHeader("Doors.orvlib", FaultReply::status(500, kPage, kHtml));
    expectOnlyDoorsFailed(update(), 500, "HTTP 500");
}

TEST_F(UpdateTruth, bodyOfAnotherLengthIsRefused)
{
    service.spoil("Doors.orvlib", FaultReply::ok(std::string(70, 'x')));
    expectOnlyDoorsFailed(update(), 200, "70 bytes instead of 8,192");
}

TEST_F(UpdateTruth, bodyWithAnotherTagIsRefusedAndFetchedNextTime)
{
    service.spoil("Doors.orvlib",
                  FaultReply::ok(test::sampleDatabase("other doors", 3000), {"ETag: W/\"newer\""}));
    expectOnlyDoorsFailed(update(), 200, "another version than announced");
    offer("Doors", "other doors");
    service.spoil("Doors.orvlib", FaultReply::ok(test::sampleDatabase("other doors", 3000)));
    EXPECT_EQ(0, update().status);
    EXPECT_EQ(test::sampleDatabase("other doors", 3000), content("core/Doors.orvlib"));
}

TEST_F(UpdateTruth, encodedBodyIsRefused)
{
    const std::string body = test::sampleDatabase("new doors", 3000);
    service.spoil("Doors.orvlib", FaultReply::gzipped(body));
    expectOnlyDoorsFailed(update(), 200, "Content-Encoding: gzip");
}

TEST_F(UpdateTruth, catalogWithoutALengthIsToldWhereNothingElseIsFetched)
{
    service.offer(kIndex, "Doors.orvlib\n");
    service.offer("Roofs.orvlib", test::sampleDatabase("former roofs", 3000));
    service.spoilHeader("Doors.orvlib", FaultReply::untilClose("", {"ETag: \"new\""}));
    const test::ProgramResult result = update();
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("incomplete", result.json()["outcome"].toString().toStdString());
    EXPECT_THAT(result.err, HasSubstr("Doors.orvlib: the service did not tell its length"));
}

TEST_F(UpdateTruth, catalogOfTheIndexThatIsNotThereIsToldAndAnUnknownBonusCatalogIsNot)
{
    service.offer(kIndex, "Doors.orvlib\nRoofs.orvlib\nWalls.orvlib\n");
    test::writeFile(path("bonus/Garden.orvlib"), "garden");
    const test::ProgramResult result = update();
    EXPECT_EQ(1, result.status);
    const QJsonArray failed = result.json()["failed"].toArray();
    ASSERT_EQ(1, failed.size());
    EXPECT_EQ((QJsonObject{{"catalog", "Walls.orvlib"}, {"status", 404}, {"reason", "HTTP 404"}}),
              failed[0].toObject());

    service.offer(kIndex, "Doors.orvlib\nRoofs.orvlib\n");
    EXPECT_EQ(0, update().status);
    const QJsonArray warnings = status()["warnings"].toArray();
    ASSERT_EQ(1, warnings.size());
    EXPECT_EQ("Garden.orvlib", warnings[0].toObject()["catalog"].toString().toStdString());
}

TEST_F(UpdateTruth, missingIndexFailsTheRunAlthoughCatalogsWereUpdated)
{
    service.spoil(kIndex, FaultReply::status(503, kPage, kHtml));
    const QJsonObject document = update().json();
    EXPECT_EQ("failed", document["outcome"].toString().toStdString());
    EXPECT_EQ((QJsonObject{{"catalog", QJsonValue()}, {"status", 503}, {"reason", "HTTP 503"}}),
              document["failed"].toArray()[0].toObject());
    EXPECT_THAT(document["error"].toString().toStdString(), HasSubstr("content index"));
}

TEST_F(UpdateTruth, lessThanAKilobyteIsTold)
{
    service.offer(kIndex, "Notes.orvlib\n");
    offer("Doors", "former doors");
    offer("Roofs", "former roofs");
    service.offer("Notes.orvlib", std::string(900, 'n'));
    const test::ProgramResult result = update();
    EXPECT_EQ("incomplete", result.json()["outcome"].toString().toStdString());
    EXPECT_THAT(result.err, HasSubstr("Notes.orvlib: less than a kilobyte"));
}

TEST_F(UpdateTruth, fileThatIsNoDatabaseIsNotSwappedInAndLosesItsHashLine)
{
    service.offer("Doors.orvlib", std::string(5000, 'x'));
    expectOnlyDoorsFailed(update(), 200, "is no database");
    EXPECT_EQ(0U, OrvHost::HashFile::read(fileString(path("core"))).count("Doors.orvlib"));
    EXPECT_EQ(0, update({"--no-database-check"}).status);
    EXPECT_EQ(std::string(5000, 'x'), content("core/Doors.orvlib"));
}

TEST_F(UpdateTruth, busyServiceIsAskedAgain)
{
    service.server().limitRequests(0, FaultReply::status(503, "", {"Retry-After: 1"}));
    const auto running = program.start(arguments({}));
    ASSERT_TRUE(service.server().waitForRequests(service.server().requests().size() + 1));
    service.server().limitRequests(1000, FaultReply::status(503));
    EXPECT_EQ(0, test::Program::finish(*running).status);
}

TEST_F(UpdateTruth, longRetryAfterIsGivenUpAndZeroRetriesAskOnce)
{
    service.spoil("Doors.orvlib", FaultReply::status(429, "", {"Retry-After: 31"}));
    const std::size_t before = downloadsOf("Doors.orvlib");
    expectOnlyDoorsFailed(update({}), 429, "HTTP 429");
    EXPECT_EQ(1U, downloadsOf("Doors.orvlib") - before);
    service.spoil("Doors.orvlib", FaultReply::status(429, "", {"Retry-After: 0"}));
    update({"--retries", "0"});
    EXPECT_EQ(2U, downloadsOf("Doors.orvlib") - before);
    update({"--retries", "2"});
    EXPECT_EQ(5U, downloadsOf("Doors.orvlib") - before);
}

TEST_F(UpdateTruth, brokenBodyGoesOnWhereItBrokeInThisRunAndTheNext)
{
    offer("Doors", "new doors", 200'000);
    service.cutBodies(60'000);
    const test::ProgramResult first = update({"--retries", "1"});
    EXPECT_EQ(1, first.status);
    EXPECT_THAT(first.json()["failed"].toArray()[0].toObject()["catalog"].toString().toStdString(),
                "Doors.orvlib");
    EXPECT_THAT(program.run({"status"}).out, HasSubstr("1 unfinished download (120000 bytes)"));
    const test::ProgramResult second = update({"--retries", "1"});
    EXPECT_EQ(0, second.status) << second.out;
    EXPECT_EQ(test::sampleDatabase("new doors", 200'000), content("core/Doors.orvlib"));
    EXPECT_FALSE(fs::exists(path("temp/partial")));
    std::vector<std::string> ranges;
    for (const test::FaultRequest& request : service.server().requests()) {
        if (!request.header("Range").empty())
            ranges.push_back(request.header("Range"));
    }
    EXPECT_THAT(ranges, ElementsAre("bytes=60000-", "bytes=120000-", "bytes=180000-"));
}

TEST_F(UpdateTruth, slowBodyOfTheRedirectDoesNotMatter)
{
    const FaultReply sound = FaultReply::redirect("/content?", 302, std::string(2000, ' '));
    service.server().on("/redirect", FaultReply(sound).silentInBodyAt(10));
    EXPECT_EQ(0, update().status);
}

TEST_F(UpdateTruth, deadProxyAndUnreadableCertificatesAreNamed)
{
    const test::ProgramResult proxy = update({"--retries", "0", "--proxy", "http://127.0.0.1:1"});
    EXPECT_EQ(1, proxy.status);
    EXPECT_EQ("failed", proxy.json()["outcome"].toString().toStdString());
    EXPECT_THAT(proxy.err, AllOf(HasSubstr(service.redirect()), HasSubstr("127.0.0.1 port 1")));
    const test::ProgramResult certificates = update({"--cacert", path("none.pem")});
    EXPECT_EQ(1, certificates.status);
    EXPECT_THAT(certificates.json()["error"].toString().toStdString(), HasSubstr(path("none.pem")));
}

TEST_F(UpdateTruth, serviceIsToldTheProgramUnlessAnotherOneIsNamed)
{
    update();
    EXPECT_THAT(service.server().requests().back().target,
                HasSubstr("&product=orv-library&version=" ORVLIBRARY_VERSION_STRING));
}

TEST_F(UpdateTruth, reservedSpaceOnTheDiskStaysFree)
{
    ASSERT_EQ(0, program.run({"settings", "set", "diskReserve", "9007199254740991"}).status);
    const test::ProgramResult result = update();
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("incomplete", result.json()["outcome"].toString());
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("Doors.orvlib: disk full: 9 KB needed"), HasSubstr("9008 TB kept free")));
    EXPECT_EQ(oldDoors, content("core/Doors.orvlib"));
    ASSERT_EQ(0, program.run({"settings", "set", "diskReserve", "1"}).status);
    EXPECT_EQ(0, update().status);
    EXPECT_NE(oldDoors, content("core/Doors.orvlib"));
}
