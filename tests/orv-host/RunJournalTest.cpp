// Runs updates and checks and reads the records that they leave in the list of runs.
#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include "OrvHost/update/CatalogUpdateRun.h"
#include "OrvHost/update/LastCheck.h"
#include "OrvHost/update/RunRecords.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ContentService.h"

using LibraryCatalogUpdate::UpdateData;
using OrvHost::CatalogUpdateRun;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class RunJournal : public test::HostedTest
{
protected:
    RunJournal()
    {
        Curl::forgetFailures();
        service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\nRoofs.orvlib\nWalls.orvlib\n");
        for (const char* name : {"Doors.orvlib", "Roofs.orvlib", "Walls.orvlib"}) {
            service.offer(name, std::string(5000, *name));
            folder.write(std::string("root/core/") + name, std::string(5000, *name));
        }
        service.offer("Doors.orvlib", std::string(6000, 'n'));
    }

    /// Runs an update or a check to its end and returns its record.
    QJsonObject run(bool onlyChecks, const std::optional<UpdateData>& closing = UpdateData())
    {
        CatalogUpdateRun::Request request;
        request.url = service.redirect();
        request.product = "P";
        request.productVersion = "1";
        request.checksDatabases = false;
        request.retries = 0;
        request.onlyChecks = onlyChecks;
        CatalogUpdateRun run(request);
        QSignalSpy finished(&run, &CatalogUpdateRun::finished);
        run.start(object);
        EXPECT_TRUE(finished.wait(30000));
        if (onlyChecks)
            run.finishCheck(!closing, host.root());
        else
            notes = run.finish(closing, host.root()).notes;
        const QJsonArray runs = OrvHost::RunRecords::list(host.root());
        return runs.isEmpty() ? QJsonObject()
                              : OrvHost::RunRecords::show(host.root(), runs[0].toObject()["number"].toInt());
    }
    void failForWalls()
    {
        service.spoilWith([](const test::FaultReply& sound, const test::FaultRequest& request) {
            return request.target.find("Walls") == std::string::npos ? sound : test::FaultReply::status(503);
        });
    }
    /// Each failure as "catalog status reason".
    static std::vector<std::string> failures(const QJsonObject& record)
    {
        std::vector<std::string> texts;
        for (const QJsonValue& value : record["failed"].toArray()) {
            const QJsonObject failure = value.toObject();
            texts.push_back(failure["catalog"].toString("index").toStdString() + " " +
                            std::to_string(failure["status"].toInt(-1)) + " " +
                            failure["reason"].toString().toStdString());
        }
        return texts;
    }
    /// Each catalog as "name state status bytes".
    static std::vector<std::string> catalogs(const QJsonObject& record)
    {
        std::vector<std::string> texts;
        for (const QJsonValue& value : record["catalogs"].toArray()) {
            const QJsonObject catalog = value.toObject();
            texts.push_back(catalog["name"].toString().toStdString() + " " +
                            catalog["state"].toString().toStdString() + " " +
                            std::to_string(catalog["status"].toInt(-1)) + " " +
                            std::to_string(catalog["bytes"].toInt(-1)));
        }
        return texts;
    }

    test::ContentService service;
    QObject object;
    std::vector<std::string> notes;
};

const test::FaultReply kBusy = test::FaultReply::status(503);

} // namespace

TEST_F(RunJournal, updateIsRecordedWithItsCatalogs)
{
    failForWalls();
    UpdateData closing{LibraryCatalogUpdate::kResultUpdated, {"Doors"}, LibraryCatalogUpdate::kMessageNone};
    const QJsonObject record = run(false, closing);
    EXPECT_EQ(record["kind"].toString().toStdString(), "update");
    EXPECT_EQ(record["outcome"].toString().toStdString(), "incomplete");
    EXPECT_EQ(record["asked"].toInt(), 3);
    EXPECT_EQ(record["fetched"].toInt(), 1);
    EXPECT_EQ(record["bytes"].toInt(), 6000);
    EXPECT_THAT(failures(record), ElementsAre("Walls.orvlib 503 HTTP 503"));
    EXPECT_THAT(catalogs(record), ElementsAre("Doors.orvlib updated 200 6000", "Roofs.orvlib current 304 0",
                                              "Walls.orvlib unknown 503 0"));
    EXPECT_TRUE(OrvHost::LastCheck::load(host.root()));
}

TEST_F(RunJournal, catalogThatCouldNotBeFetchedHasFailed)
{
    service.spoil("Doors.orvlib", kBusy);
    const QJsonObject record = run(false);
    EXPECT_EQ(record["fetched"].toInt(), 0);
    EXPECT_THAT(failures(record), ElementsAre("Doors.orvlib 503 HTTP 503"));
    EXPECT_THAT(catalogs(record), ElementsAre("Doors.orvlib failed 200 0", "Roofs.orvlib current 304 0",
                                              "Walls.orvlib current 304 0"));
}

TEST_F(RunJournal, checkIsRecordedWithWhatIsNotKnown)
{
    failForWalls();
    const QJsonObject record = run(true);
    EXPECT_EQ(record["kind"].toString().toStdString(), "check");
    EXPECT_EQ(record["outcome"].toString().toStdString(), "failed");
    EXPECT_EQ(record["asked"].toInt(), 3);
    EXPECT_EQ(record["fetched"].toInt(), 0);
    ASSERT_EQ(failures(record).size(), 1U);
    EXPECT_THAT(failures(record)[0], testing::StartsWith("Walls.orvlib 503 "));
    EXPECT_THAT(catalogs(record), ElementsAre("Doors.orvlib new 200 0", "Roofs.orvlib current 304 0",
                                              "Walls.orvlib unknown 503 0"));
    EXPECT_TRUE(OrvHost::LastCheck::load(host.root()));
}

TEST_F(RunJournal, packedCatalogIsRecordedUnderItsInstalledName)
{
    service.offer("Garden.orvlibz", "packed");
    folder.write("root/bonus/Garden.orvlib", "former");
    const QJsonObject record = run(true);
    EXPECT_EQ(record["asked"].toInt(), 4);
    EXPECT_THAT(catalogs(record), testing::Contains("Garden.orvlib new 200 0"));
}

TEST_F(RunJournal, checkWithoutAnIndexHasFailed)
{
    service.spoil("Orv_Core_Content_Index.txt", kBusy);
    EXPECT_THAT(failures(run(true)), testing::Contains("index 503 HTTP 503"));
}

TEST_F(RunJournal, checkWithoutAServiceHasFailed)
{
    service.spoilAll(kBusy);
    EXPECT_THAT(failures(run(true)), testing::Contains(testing::StartsWith("index ")));
}

TEST_F(RunJournal, serviceThatIsNotThereIsTheOnlyFailure)
{
    service.server().stopListening();
    EXPECT_THAT(failures(run(false)), ElementsAre(testing::StartsWith("index -1 ")));
    const QJsonObject record = run(true);
    EXPECT_THAT(failures(record), ElementsAre(testing::StartsWith("index -1 ")));
    for (const char* member : {"asked", "fetched", "bytes"})
        EXPECT_EQ(record[member].toInt(-1), 0) << member;
    EXPECT_THAT(catalogs(record), ElementsAre("Doors.orvlib unknown -1 0", "Roofs.orvlib unknown -1 0",
                                              "Walls.orvlib unknown -1 0"));
}

TEST_F(RunJournal, cancelledRunIsNoCheck)
{
    for (const bool onlyChecks : {false, true}) {
        const QJsonObject record = run(onlyChecks, std::nullopt);
        EXPECT_EQ(record["outcome"].toString().toStdString(), "cancelled");
        EXPECT_FALSE(OrvHost::LastCheck::load(host.root()));
    }
}

TEST_F(RunJournal, listThatCannotBeWrittenIsNotedOnce)
{
    folder.write("root/runs.json/in the way", "");
    folder.write("root/last-check.json/in the way", "");
    UpdateData closing{LibraryCatalogUpdate::kResultUpdated, {"Doors"}, LibraryCatalogUpdate::kMessageNone};
    CatalogUpdateRun::Request request;
    request.url = service.redirect();
    request.product = "P";
    request.productVersion = "1";
    request.checksDatabases = false;
    CatalogUpdateRun updating(request);
    QSignalSpy finished(&updating, &CatalogUpdateRun::finished);
    updating.start(object);
    ASSERT_TRUE(finished.wait(30000));
    EXPECT_THAT(updating.finish(closing, host.root()).notes, ElementsAre(testing::HasSubstr("runs.json")));
}
