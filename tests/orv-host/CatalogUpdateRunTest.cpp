#include "OrvHost/update/CatalogUpdateRun.h"

#include <memory>
#include <stdexcept>

#include <QSignalSpy>

#include <gmock/gmock.h>

#include "OrvHost/update/CheckHistory.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ContentService.h"

namespace {

constexpr int kTimeoutMilliseconds = 30000;
/// What a host object would have been told at the end.
const LibraryCatalogUpdate::UpdateData kGood{2, {"Doors"}, LibraryCatalogUpdate::kMessageNone};
const LibraryCatalogUpdate::UpdateData kFailed{0, {}, LibraryCatalogUpdate::kMessageNoEndpoint};

class CatalogUpdateRunTest : public test::HostedTest
{
protected:
    CatalogUpdateRunTest()
    {
        service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\n");
        service.offer("Doors.orvlib", std::string(5000, 'd'));
    }

    OrvHost::CatalogUpdateRun::Request request() const
    {
        OrvHost::CatalogUpdateRun::Request request;
        request.url = service.redirect();
        request.product = "P";
        request.productVersion = "1";
        request.checksDatabases = false;
        request.firstPause = std::chrono::milliseconds(1);
        return request;
    }

    test::ContentService service;
    QObject object; ///< a host object may lack every slot
};

} // namespace

TEST_F(CatalogUpdateRunTest, goodRunIsRememberedWithItsAnswers)
{
    Curl* const former = &Curl::get();
    OrvHost::CatalogUpdateRun run(request());
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(object);
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    const OrvHost::UpdateOutcome outcome = run.finish(kGood, host.root());
    EXPECT_EQ(OrvHost::UpdateOutcome::Kind::Updated, outcome.kind);
    EXPECT_THAT(outcome.notes, testing::IsEmpty());
    EXPECT_TRUE(outcome.start <= outcome.end);
    const OrvHost::CheckHistory history(host.root());
    EXPECT_TRUE(history.lastGoodCheck().isValid());
    EXPECT_EQ(history.lastGoodCheck(), history.lastAttempt());
    EXPECT_EQ(200, history.answers().at("Doors.orvlib").status);
    EXPECT_EQ(former, &Curl::get());
}

TEST_F(CatalogUpdateRunTest, failedRunKeepsTheDateOfTheLastGoodOne)
{
    const QDateTime before = QDateTime::fromString("2026-01-02T03:04:05.000Z", Qt::ISODateWithMs);
    OrvHost::CheckHistory history(host.root());
    history.noteGoodCheck(before);
    history.save();
    service.server().stopListening();
    OrvHost::CatalogUpdateRun run(request());
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(object);
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    EXPECT_EQ(OrvHost::UpdateOutcome::Kind::Failed, run.finish(kFailed, host.root()).kind);
    const OrvHost::CheckHistory after(host.root());
    EXPECT_EQ(before, after.lastGoodCheck());
    EXPECT_TRUE(after.lastAttempt().isValid());
    EXPECT_THAT(after.lastError(), testing::StartsWith("the catalog web service was not found: "));
}

TEST_F(CatalogUpdateRunTest, historyThatCannotBeWrittenIsToldInWords)
{
    folder.write("root/update-history.json/in the way", "x");
    OrvHost::CatalogUpdateRun run(request());
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(object);
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    EXPECT_THAT(run.finish(kGood, host.root()).notes,
                testing::ElementsAre(testing::HasSubstr(folder.path() + "/root/update-history.json")));
}

TEST_F(CatalogUpdateRunTest, destroyedWhileItRunsItCancelsAndGivesTheLockBack)
{
    service.spoil("Doors.orvlib", test::FaultReply::ok(std::string(5000, 'd')).silentAt(300));
    Curl* const former = &Curl::get();
    {
        OrvHost::CatalogUpdateRun run(request());
        run.start(object);
        ASSERT_TRUE(service.waitUntilFetched("Doors.orvlib"));
        EXPECT_THROW(OrvHost::CatalogUpdateRun second(request()), std::runtime_error);
    }
    EXPECT_EQ(former, &Curl::get());
    EXPECT_NO_THROW(OrvHost::CatalogUpdateRun third(request()));
}

TEST_F(CatalogUpdateRunTest, whatLeavesTheUpdaterReachesTheCaller)
{
    Application* const former = Application::install(nullptr);
    OrvHost::CatalogUpdateRun run(request());
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(object);
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    EXPECT_THROW(run.finish(std::nullopt, host.root()), NullPointerError);
    Application::install(former);
}
