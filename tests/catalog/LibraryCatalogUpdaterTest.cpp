#include "OrvLibrary/LibraryCatalogUpdater.h"

#include <cstdio>
#include <set>
#include <thread>
#include <type_traits>

#include <QCoreApplication>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "tests/catalog/CatalogTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ForwardingServices.h"

using LibraryCatalogUpdate::LibraryCatalogUpdater;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using LibraryCatalogUpdaterRun = test::CatalogTest;

struct ResultRow
{
    bool hadError;
    bool coreOnly;
    bool isInstalled;
    int result;
};

} // namespace

static_assert(std::is_base_of<LibraryProgressBase, LibraryCatalogUpdater>::value, "base");
static_assert(std::is_copy_constructible<LibraryCatalogUpdater>::value, "handed to a thread by value");
static_assert(std::is_copy_assignable<LibraryCatalogUpdater>::value, "kept by value");

TEST_F(LibraryCatalogUpdaterRun, aFullRunReportsEveryStepInOrder)
{
    mArguments.bonus = {installed("bonus/Lamps.orvlib", "x")};
    serve("Lamps.orvlibz", "x", test::sha1Of("x"));
    serveIndex("Doors.orvlib\n");
    serve("Doors.orvlib", kNew, "new");
    run();
    EXPECT_THAT(mRecorder->texts(),
                ElementsAre("onSetText(#8717 )", "onSetRangeInGauge(1)", "onSetText(#8723 Doors.orvlib)",
                            "onUpdateInGauge()", "onSetText(#8717 )", "onSetRangeInGauge(1)",
                            "onSetText(#8723 Lamps.orvlib)", "onUpdateInGauge()", "onSetRangeInGauge(2)",
                            "onSetText(#8727 Doors.orvlib)", "onUpdateInGauge()",
                            "onSetText(#8727 Lamps.orvlib)", "onUpdateInGauge()", "onSetRangeInGauge(5)",
                            "onSetUnits(#8745 )", "onSetText(#8709 Doors)",
                            "onCatalogUpdatedEvent(" + path("core/Doors.orvlib").toNativeString() + ", " +
                                download("core", "Doors.orvlib").toNativeString() + ")",
                            "closeCatalogUpdateEvent(2, 0x10369189, [Doors])"));
}

TEST_F(LibraryCatalogUpdaterRun, theOutcomeFollowsErrorsKindAndInstallations)
{
    const ResultRow rows[] = {
        {false, false, true, 2}, {false, true, true, 2},  {false, false, false, 3}, {false, true, false, 3},
        {true, false, true, 0},  {true, false, false, 0}, {true, true, true, 1},    {true, true, false, 1},
    };
    for (const ResultRow& row : rows) {
        mRecorder = std::make_unique<test::SlotRecorder>();
        mArguments.coreOnly = row.coreOnly;
        mArguments.core = {path("core/a.orvlib"), path("core/b.orvlib")};
        serve("a.orvlib", kNew, "new").status = row.isInstalled ? 200 : 304;
        serve("b.orvlib", kNew, "new").status = 304;
        mCurl.files.at("b.orvlib").headerFails = row.hadError;
        installed("core/catalog_hash.txt", "");
        run();
        EXPECT_EQ(result(), row.result) << row.hadError << row.coreOnly << row.isInstalled;
    }
}

TEST_F(LibraryCatalogUpdaterRun, theReferencedFilesFolderIsCreated)
{
    ASSERT_EQ(std::remove(path("referenced").toNativeString().c_str()), 0);
    run();
    EXPECT_TRUE(exists("referenced"));
}

TEST_F(LibraryCatalogUpdaterRun, leftoversOfAnEarlierRunAreDiscarded)
{
    for (const char* kind : {"core", "bonus", "manufacturer"})
        test::writeFile(download(kind, "left/over.download").toNativeString(), "x");
    installed("temp/other", "x");
    mArguments.coreOnly = true;
    run();
    EXPECT_THAT(test::listTree(path("temp").toNativeString()), ElementsAre("other"));
}

TEST_F(LibraryCatalogUpdaterRun, foldersThatAnEarlierRunLeftProtectedAreDiscarded)
{
    mArguments.coreOnly = true;
    const fileString folder = download("core", "left");
    ASSERT_EQ(rmdir(path("temp").toNativeString().c_str()), 0);
    ASSERT_EQ(chmod(path("").toNativeString().c_str(), 0777), 0);
    const auto end = test::runWithoutRights([&] {
        test::writeFile(folder.toNativeString() + "/over", "x");
        if (chmod(folder.toNativeString().c_str(), 0500) != 0)
            return 1;
        run();
        return folder.pathExists() ? 2 : 0;
    });
    EXPECT_EQ(end.status, 0);
}

TEST_F(LibraryCatalogUpdaterRun, aCoreOnlyRunLeavesTheOthersAlone)
{
    mArguments.coreOnly = true;
    mArguments.bonus = {installed("bonus/Lamps.orvlib", "x")};
    mArguments.manufacturer = {installed("manufacturer/Acme.orvlib", "x")};
    installed("bonus/catalog_hash.txt", "Lamps.orvlib:1\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), IsEmpty());
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:1\n");
    EXPECT_FALSE(exists("manufacturer/catalog_hash.txt"));
}

TEST_F(LibraryCatalogUpdaterRun, aCoreOnlyRunRemembersWhetherItFailed)
{
    mArguments.coreOnly = true;
    mHost.prefs().setPrefAs<bool>(PrefId::kLastCoreUpdateHadError, true);
    run();
    EXPECT_FALSE(mHost.prefs().getPrefAs<bool>(PrefId::kLastCoreUpdateHadError));
    EXPECT_EQ(result(), 3);

    mCurl.endpoint.clear();
    run();
    EXPECT_TRUE(mHost.prefs().getPrefAs<bool>(PrefId::kLastCoreUpdateHadError));
}

TEST_F(LibraryCatalogUpdaterRun, anOutcomeThatCannotBeRememberedIsAnError)
{
    mArguments.coreOnly = true;
    test::ForwardingServices services;
    services.calls().planFault(test::Service::Preferences, 1, test::Fault::Throw,
                               test::ServiceCalls::Repeat::ForEver);
    run();
    ASSERT_EQ(logMessages().size(), 1u);
    EXPECT_EQ(logMessages()[0].rfind("Unable to remember the outcome of the update   Reason:  ", 0), 0u);
    EXPECT_EQ(mRecorder->closings(), 1u);
    EXPECT_EQ(result(), 1);
}

TEST_F(LibraryCatalogUpdaterRun, eachStepThatThrowsSaysInTheLogWhichItWas)
{
    std::set<std::string> steps;
    for (const test::Service service :
         {test::Service::Paths, test::Service::Preferences, test::Service::Strings, test::Service::Curl}) {
        bool isReached = true;
        for (std::size_t call = 1; isReached; ++call) {
            SCOPED_TRACE(std::string(test::serviceName(service)) + " " + std::to_string(call));
            mRecorder = std::make_unique<test::SlotRecorder>();
            std::remove(path("user/errors.log").toNativeString().c_str());
            mArguments.bonus = {installed("bonus/Lamps.orvlib", "x")};
            serve("Lamps.orvlibz", "x", test::sha1Of("x"));
            changed("Doors.orvlib");
            test::ForwardingServices services;
            services.calls().planFault(service, call, test::Fault::Throw);
            run();
            isReached = services.calls().faults() > 0;
            const std::vector<std::string> messages = logMessages();
            EXPECT_EQ(result() == 0, !messages.empty());
            for (const std::string& message : messages)
                steps.insert(message.substr(0, message.find("   Reason:  ")));
        }
    }
    for (const char* step :
         {"Unable to create the referenced files folder", "Unable to empty a download folder",
          "Unable to read a preference", "Unable to read a hash file", "Unable to load a text",
          "Unable to check:  Doors.orvlib", "Unable to list the downloads",
          "Unable to install:  Doors.orvlib\n", "Failed To Download File:  Doors",
          "Unable to save a hash file"})
        EXPECT_EQ(steps.count(step), 1u) << step << " in " << testing::PrintToString(steps);
}

TEST_F(LibraryCatalogUpdaterRun, aFullRunDoesNotTouchThatMemory)
{
    mHost.prefs().setPrefAs<bool>(PrefId::kLastCoreUpdateHadError, true);
    run();
    EXPECT_TRUE(mHost.prefs().getPrefAs<bool>(PrefId::kLastCoreUpdateHadError));
}

TEST_F(LibraryCatalogUpdaterRun, aFullRunMayExcludeTheCore)
{
    mHost.prefs().setPrefAs<bool>(PrefId::kExcludeCoreContent, true);
    mArguments.core = {installed("core/a.orvlib", "x")};
    installed("core/catalog_hash.txt", "a.orvlib:1\n");
    mArguments.bonus = {installed("bonus/Lamps.orvlib", "x")};
    run();
    EXPECT_THAT(mCurl.asked("PAGE"), ElementsAre("Lamps.orvlibz")) << "no index; the page is that of a 404";
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("Lamps.orvlibz"));
    EXPECT_EQ(content("core/catalog_hash.txt"), "") << "written anew from no record";
}

TEST_F(LibraryCatalogUpdaterRun, aCoreOnlyRunTakesNoNoticeOfThat)
{
    mHost.prefs().setPrefAs<bool>(PrefId::kExcludeCoreContent, true);
    mArguments.coreOnly = true;
    run();
    EXPECT_THAT(mCurl.asked("PAGE"), ElementsAre("Orv_Core_Content_Index.txt"));
}

TEST_F(LibraryCatalogUpdaterRun, aPreferenceOfTheWrongTypeWarnsAndReadsAsFalse)
{
    mHost.prefSet().setPref(PrefId::kExcludeCoreContent, std::string("yes"));
    run();
    EXPECT_THAT(mCurl.asked("PAGE"), ElementsAre("Orv_Core_Content_Index.txt"));
    ASSERT_EQ(mHost.messages().size(), 1u);
    EXPECT_EQ(mHost.messages()[0].text1.rfind("Get pref isA failure: Expected preference '", 0), 0u);
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterRun, withoutAnythingToAskTheEndpointStaysUnknown)
{
    mHost.prefs().setPrefAs<bool>(PrefId::kExcludeCoreContent, true);
    run();
    EXPECT_THAT(mCurl.requests, IsEmpty());
    EXPECT_EQ(result(), 3);
    EXPECT_EQ(messageCode(), 0x1036918b);
}

TEST_F(LibraryCatalogUpdaterRun, aCancelBeforeTheRunCancelsIt)
{
    mArguments.core = {installed("core/a.orvlib", "x")};
    LibraryCatalogUpdater updater = makeUpdater(*mRecorder, mArguments);
    LibraryCatalogUpdater::killDownload();
    test::runUpdate(updater);
    EXPECT_THAT(mRecorder->texts(), ElementsAre("onSetRangeInGauge(0)", "onClose()"));
    EXPECT_TRUE(exists("core/catalog_hash.txt"));
    EXPECT_TRUE(exists("bonus/catalog_hash.txt"));
    EXPECT_TRUE(exists("manufacturer/catalog_hash.txt"));
}

TEST_F(LibraryCatalogUpdaterRun, aCancelBeforeTheConstructorHasNoEffect)
{
    LibraryCatalogUpdater::killDownload();
    run();
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterRun, aCopyDoesNotEndACancel)
{
    LibraryCatalogUpdater updater = makeUpdater(*mRecorder, mArguments);
    LibraryCatalogUpdater::killDownload();
    LibraryCatalogUpdater copy = updater;
    copy = updater;
    test::runUpdate(copy);
    EXPECT_EQ(mRecorder->texts().back(), "onClose()");
}

TEST_F(LibraryCatalogUpdaterRun, theUpdaterIsHandedToAThreadByValue)
{
    std::thread worker(makeUpdater(*mRecorder, mArguments));
    worker.join();
    QCoreApplication::sendPostedEvents(mRecorder.get());
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterRun, aRunWithoutItsHostObjectCompletesInSilence)
{
    serveIndex("a.orvlib\n");
    serve("a.orvlib", kNew, "new");
    LibraryCatalogUpdater updater = makeUpdater(*mRecorder, mArguments);
    mRecorder.reset();
    test::runUpdate(updater);
    EXPECT_EQ(test::readFile(download("core", "a.orvlib")), kNew);
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:new\n");
    EXPECT_EQ(logText(), "");
}

TEST_F(LibraryCatalogUpdaterRun, aMissingApplicationObjectLeavesTheRun)
{
    installed("core/catalog_hash.txt", "a.orvlib:1\n");
    mArguments.core = {installed("core/a.orvlib", kOld)};
    Application* const former = Application::install(nullptr);
    LibraryCatalogUpdater updater = makeUpdater(*mRecorder, mArguments);
    EXPECT_THROW(updater(), NullPointerError);
    EXPECT_THROW(updater.check(), NullPointerError);
    Application::install(former);
    QCoreApplication::sendPostedEvents(mRecorder.get());
    EXPECT_THAT(mRecorder->texts(), IsEmpty());
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:1\n");
}
