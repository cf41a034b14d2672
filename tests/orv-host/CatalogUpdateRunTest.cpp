#include "OrvHost/update/CatalogUpdateRun.h"

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include "OrvHost/update/CheckHistory.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ContentService.h"
#include "tests/support/SampleDatabase.h"
#include "tests/support/SlotRecorder.h"

namespace {

constexpr int kTimeoutMilliseconds = 30000;
/// The closing data of a successful run.
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
    QObject object; ///< has none of the slots
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

TEST_F(CatalogUpdateRunTest, answersStayOnlyForWhatWasNotAskedFor)
{
    for (const bool coreOnly : {true, false}) {
        OrvHost::CheckHistory before(host.root());
        before.noteAnswer("Gone.orvlib", 200, QDateTime::currentDateTimeUtc());
        before.noteAnswer("Garden.orvlibz", 200, QDateTime::currentDateTimeUtc());
        before.save();
        OrvHost::CatalogUpdateRun::Request asked = request();
        asked.coreOnly = coreOnly;
        OrvHost::CatalogUpdateRun run(asked);
        QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
        run.start(object);
        ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
        run.finish(kGood, host.root());
        const auto answers = OrvHost::CheckHistory(host.root()).answers();
        EXPECT_EQ(answers.count("Doors.orvlib"), 1U);
        EXPECT_EQ(answers.count("Gone.orvlib"), 0U);
        EXPECT_EQ(answers.count("Garden.orvlibz"), coreOnly ? 1U : 0U);
    }
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

TEST_F(CatalogUpdateRunTest, exceptionOfTheUpdaterReachesTheCaller)
{
    Application* const former = Application::install(nullptr);
    OrvHost::CatalogUpdateRun run(request());
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(object);
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    EXPECT_THROW(run.finish(std::nullopt, host.root()), NullPointerError);
    Application::install(former);
}

TEST_F(CatalogUpdateRunTest, newCatalogsAreLookedAtBeforeTheHostHearsOfThem)
{
    test::ArchiveBuilder packed;
    packed.add("Party.orvlib", test::sampleDatabase("party"));
    service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\nRoofs.orvlib\n");
    service.offer("Doors.orvlib", test::sampleDatabase("doors"));
    service.offer("Roofs.orvlib", std::string(5000, 'r'));
    service.offer("Party.orvlibz", packed.bytes());
    OrvHost::CatalogUpdateRun::Request asked = request();
    asked.checksDatabases = true;
    asked.bonus = {"Party.orvlib"};
    OrvHost::CatalogUpdateRun run(asked);
    test::SlotRecorder recorder;
    recorder.swapsIn = false;
    std::map<std::string, bool> swapped;
    recorder.onEvent = [&](std::size_t) {
        if (recorder.events().back().slot != "onCatalogUpdatedEvent")
            return;
        // A check that reads the files only after this point finds the opposite results.
        const auto& [destination, newFile] = recorder.updatedFiles().back();
        const std::string name = destination.stem().toNativeString();
        test::writeFile(newFile.toNativeString(), name == "Roofs" ? test::sampleDatabase("roofs") : "a page");
        swapped[name] = run.swapper().swapIn(destination, newFile);
    };
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(recorder);
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    EXPECT_THAT(swapped, testing::ElementsAre(std::pair("Doors", true), std::pair("Party", true),
                                              std::pair("Roofs", false)));
    const OrvHost::UpdateOutcome outcome = run.finish(recorder.closingData(), host.root());
    EXPECT_EQ(OrvHost::UpdateOutcome::Kind::Incomplete, outcome.kind);
    ASSERT_EQ(1U, outcome.failed.size());
    EXPECT_EQ("the new file is no database", outcome.failed[0].reason);
}

TEST_F(CatalogUpdateRunTest, hostHearsWhatTheUpdaterSaysInItsOrder)
{
    service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\nRoofs.orvlib\n");
    service.offer("Roofs.orvlib", std::string(7000, 'r'));
    test::SlotRecorder alone, relayed;
    LibraryCatalogUpdate::LibraryCatalogUpdater updater(alone, {}, {}, {}, "P", "1", service.redirect(),
                                                        false);
    std::thread([&] { updater(); }).join();
    QCoreApplication::sendPostedEvents(&alone);
    ASSERT_EQ(2U, alone.count("onCatalogUpdatedEvent"));
    ASSERT_EQ(1U, alone.closings());

    std::filesystem::remove_all(folder.path() + "/root/core");
    OrvHost::CatalogUpdateRun run(request());
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(relayed);
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    EXPECT_EQ(alone.texts(), relayed.texts());
}

TEST_F(CatalogUpdateRunTest, hostObjectThatIsGoneHearsNothing)
{
    service.spoil("Doors.orvlib", test::FaultReply::ok(std::string(5000, 'd')).silentAt(300));
    auto recorder = std::make_unique<test::SlotRecorder>();
    OrvHost::CatalogUpdateRun run(request());
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    run.start(*recorder);
    ASSERT_TRUE(service.waitUntilFetched("Doors.orvlib"));
    recorder.reset();
    OrvHost::CatalogUpdateRun::cancel();
    EXPECT_TRUE(finished.wait(kTimeoutMilliseconds));
}

TEST_F(CatalogUpdateRunTest, cancelIsHeardThatComesWhileLeftCatalogsAreLookedAt)
{
    folder.write("root/temp/orv-library.downloads.core/Roofs.orvlib", test::slowDatabase());
    OrvHost::CatalogUpdateRun::Request asked = request();
    asked.checksDatabases = true;
    OrvHost::CatalogUpdateRun run(asked);
    test::SlotRecorder recorder;
    QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
    QElapsedTimer timer;
    timer.start();
    run.start(recorder);
    EXPECT_LT(timer.elapsed(), 1000) << "the host's thread waits for the check";
    OrvHost::CatalogUpdateRun::cancel();
    ASSERT_TRUE(finished.wait(kTimeoutMilliseconds));
    EXPECT_GE(timer.elapsed(), 1000) << "the check ended early";
    EXPECT_EQ(1U, recorder.count("onClose"));
    EXPECT_THAT(service.takeAsked(), testing::IsEmpty());
    EXPECT_EQ(OrvHost::UpdateOutcome::Kind::Cancelled, run.finish(std::nullopt, host.root()).kind);
    EXPECT_EQ(test::slowDatabase(), test::readFile(folder.file("root/core/Roofs.orvlib")));
}

TEST_F(CatalogUpdateRunTest, runThatIsOverDoesNotWatchItsHostObject)
{
    class Host : public QObject
    {
    public:
        int watchers() const { return receivers(SIGNAL(destroyed(QObject*))); }
    };
    Host watched;
    {
        OrvHost::CatalogUpdateRun run(request());
        QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
        run.start(watched);
        EXPECT_GT(watched.watchers(), 0);
        EXPECT_TRUE(finished.wait(kTimeoutMilliseconds));
    }
    EXPECT_EQ(0, watched.watchers());
}
