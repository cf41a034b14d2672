#include "tests/catalog/CatalogTest.h"

#include <filesystem>

#include <sys/stat.h>

#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/LockingFStream.h"

using LibraryCatalogUpdate::LibraryCatalogUpdater;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Core-only runs.
class LibraryCatalogUpdaterInstall : public test::CatalogTest
{
protected:
    LibraryCatalogUpdaterInstall() { mArguments.coreOnly = true; }

    std::string urlOf(const std::string& name) const
    {
        return "http://service.test/content?key=1&library=" + name + "&product=Orv&version=7";
    }
};

/// Deletes a file when the library asks for the core folder.
class LosingPaths : public RootPathUtils
{
public:
    LosingPaths(const fileString& root, const fileString& file) : RootPathUtils(root), mFile(file) {}

    fileString getCoreLibraryDatabasePath() const override
    {
        std::remove(mFile.toNativeString().c_str());
        return RootPathUtils::getCoreLibraryDatabasePath();
    }

private:
    fileString mFile;
};

} // namespace

TEST_F(LibraryCatalogUpdaterInstall, aCoreCatalogIsHandedToTheHost)
{
    changed("Doors.orvlib");
    mRecorder->swapsIn = false;
    run();
    EXPECT_THAT(mRecorder->argumentsOf("onCatalogUpdatedEvent"),
                ElementsAre(path("core/Doors.orvlib").toNativeString() + ", " +
                            download("core", "Doors.orvlib").toNativeString()));
    EXPECT_EQ(test::readFile(download("core", "Doors.orvlib")), kNew);
    EXPECT_EQ(test::modeOf(download("core", "Doors.orvlib")), 0644u);
    EXPECT_EQ(content("core/Doors.orvlib"), kOld) << "the host puts it into place";
    EXPECT_EQ(content("core/catalog_hash.txt"), "Doors.orvlib:new\n");
    EXPECT_EQ(mRecorder->texts().back(), "closeCatalogUpdateEvent(2, 0x10369189, [Doors])");
    EXPECT_EQ(logText(), "");
}

TEST_F(LibraryCatalogUpdaterInstall, theDownloadIsConditionalAndGoesToATemporaryName)
{
    std::vector<std::string> targets;
    changed("Doors.orvlib").afterDownload = [&](const fileString& target) {
        targets.push_back(target.toNativeString());
    };
    run();
    EXPECT_EQ(mCurl.requests.back(), "GET " + urlOf("Doors.orvlib"));
    EXPECT_THAT(mCurl.requestHeaders.back(), ElementsAre("If-None-Match: \"old\""));
    EXPECT_THAT(targets, ElementsAre(download("core", "Doors.download").toNativeString()));
}

TEST_F(LibraryCatalogUpdaterInstall, eachCatalogIsAnnouncedByItsStem)
{
    changed("b.orvlib");
    changed("T\xc3\xbcr a.orvlib");
    run();
    const auto texts = mRecorder->argumentsOf("onSetText");
    ASSERT_GE(texts.size(), 2u);
    EXPECT_EQ(texts[texts.size() - 2], "#8709 T\xfcr a");
    EXPECT_EQ(texts.back(), "#8709 b");
    EXPECT_THAT(mRecorder->closingData()->updatedCatalogs, ElementsAre("T\xfcr a", "b"))
        << "in the order of Windows-1252 bytes";
}

TEST_F(LibraryCatalogUpdaterInstall, aReferencedArchiveReplacesTheOldOneAndIsLookedUpAnew)
{
    changed("Tex.zip");
    run();
    EXPECT_EQ(content("referenced/Tex.zip"), kNew);
    EXPECT_EQ(test::modeOf(path("referenced/Tex.zip")), 0644u);
    EXPECT_FALSE(download("core", "Tex.zip").pathExists());
    EXPECT_THAT(mHost.resetFolders(), ElementsAre(path("referenced/").toNativeString()));
    EXPECT_EQ(mRecorder->count("onCatalogUpdatedEvent"), 0u);
    EXPECT_EQ(mRecorder->texts().back(), "closeCatalogUpdateEvent(2, 0x10369189, [Tex])");
    EXPECT_EQ(content("core/catalog_hash.txt"), "Tex.zip:new\n");
}

TEST_F(LibraryCatalogUpdaterInstall, aCatalogAndAnArchiveOfOneStemDoNotMeet)
{
    changed("Same.orvlib");
    changed("Same.zip").body = std::string(6000, 'z');
    run();
    EXPECT_EQ(content("core/Same.orvlib"), kNew);
    EXPECT_EQ(content("referenced/Same.zip"), std::string(6000, 'z'));
    EXPECT_EQ(result(), 2);
}

TEST_F(LibraryCatalogUpdaterInstall, aFileOfTheIndexThatIsNewIsInstalled)
{
    serveIndex("Fresh.orvlib\n");
    serve("Fresh.orvlib", kNew, "tag");
    run();
    EXPECT_EQ(content("core/Fresh.orvlib"), kNew);
    EXPECT_EQ(content("core/catalog_hash.txt"), "Fresh.orvlib:tag\n");
}

TEST_F(LibraryCatalogUpdaterInstall, aNameThatLeavesTheFolderIsInstalledInsideIt)
{
    installed("Outside.orvlib", kOld);
    installed("core/catalog_hash.txt", "../Outside.orvlib:old\n");
    mArguments.core = {installed("core/Other.orvlib", kOld)};
    serve("Outside.orvlib", kNew, "new");
    run();
    EXPECT_EQ(content("Outside.orvlib"), kOld);
    EXPECT_EQ(content("core/Outside.orvlib"), kNew);
}

TEST_F(LibraryCatalogUpdaterInstall, whenAllChangesAreTinyNothingIsDownloaded)
{
    changed("a.orvlib").body = std::string(999, 'n');
    changed("b.orvlib").body = std::string(10, 'n');
    run();
    EXPECT_THAT(mCurl.asked("GET"), IsEmpty());
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\nb.orvlib:old\n");
    EXPECT_EQ(result(), 3);
    EXPECT_EQ(mRecorder->count("onSetUnits"), 0u);
}

TEST_F(LibraryCatalogUpdaterInstall, aTinyChangeTravelsWithALargerOne)
{
    changed("a.orvlib").body = std::string(10, 'n');
    changed("b.orvlib");
    run();
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlib", "b.orvlib"));
}

TEST_F(LibraryCatalogUpdaterInstall, aFailedDownloadIsLoggedAndTheNextIsTried)
{
    changed("a.orvlib").failure = "HTTP 503";
    changed("b.orvlib");
    changed("c.orvlib").failure = "timeout";
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Failed To Download File:  a   Reason:  HTTP 503\n"
                                           "Failed To Download File:  c   Reason:  timeout\n"))
        << "one entry for the whole loop";
    EXPECT_FALSE(download("core", "a.download").pathExists());
    EXPECT_EQ(content("core/a.orvlib"), kOld);
    EXPECT_EQ(content("core/b.orvlib"), kNew);
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\nb.orvlib:new\nc.orvlib:old\n");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x10369189);
}

TEST_F(LibraryCatalogUpdaterInstall, anEndpointThatIsLostBeforeTheDownloadIsTheReason)
{
    changed("a.orvlib");
    mCurl.onRequest = [this](const std::string& request) {
        if (request.rfind("HEAD", 0) != 0)
            return;
        LibraryCatalogUpdate::kApiEndpoint.clear();
        mCurl.endpoint.clear();
    };
    run();
    EXPECT_THAT(mCurl.asked("GET"), IsEmpty());
    EXPECT_THAT(logMessages(),
                ElementsAre("Unable to determine api endpoint\n",
                            "Failed To Download File:  a   Reason:  No API endpoint found.\n"));
    EXPECT_EQ(messageCode(), 0x1036918b);
}

TEST_F(LibraryCatalogUpdaterInstall, anEmptyDownloadStopsTheLoop)
{
    changed("a.orvlib").body.clear();
    mCurl.files.at("a.orvlib").headerLines = "ETag: \"new\"\r\nContent-Length: 5000\r\n";
    changed("b.orvlib");
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Empty Download File:  " +
                                           download("core", "a.download").toNativeString() + "\n"));
    EXPECT_FALSE(download("core", "a.download").pathExists());
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlib"));
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\nb.orvlib:old\n");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x10369189);
}

TEST_F(LibraryCatalogUpdaterInstall, aDownloadOfOneByteIsInstalled)
{
    changed("a.orvlib").body = "x";
    changed("b.orvlib");
    run();
    EXPECT_EQ(content("core/a.orvlib"), "x");
    EXPECT_EQ(result(), 2);
    EXPECT_EQ(logText(), "");
}

TEST_F(LibraryCatalogUpdaterInstall, aLockedDownloadStopsTheLoop)
{
    std::unique_ptr<LockingFStream> lock;
    changed("a.orvlib").afterDownload = [&](const fileString& target) {
        lock = std::make_unique<LockingFStream>(target, std::ios_base::in);
    };
    changed("b.orvlib");
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Download destination file was locked or not writeable:  " +
                                           download("core", "a.download").toNativeString() + "\n"));
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlib"));
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x1036918e);
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\nb.orvlib:old\n");
}

TEST_F(LibraryCatalogUpdaterInstall, aLockedFinalNameStopsTheLoop)
{
    std::unique_ptr<LockingFStream> lock;
    changed("a.orvlib").afterDownload = [&](const fileString&) {
        test::writeFile(download("core", "a.orvlib").toNativeString(), "taken");
        lock = std::make_unique<LockingFStream>(download("core", "a.orvlib"), std::ios_base::in);
    };
    changed("b.orvlib");
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Download final destination file was locked or not writeable:  " +
                                           download("core", "a.orvlib").toNativeString() + "\n"));
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlib"));
    EXPECT_EQ(messageCode(), 0x1036918e);
}

TEST_F(LibraryCatalogUpdaterInstall, aFailedRenameStopsTheLoop)
{
    changed("a.orvlib").afterDownload = [this](const fileString&) {
        std::filesystem::create_directories(download("core", "a.orvlib/sub").toNativeString());
    };
    changed("b.orvlib");
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Unable to rename catalog update file:  " +
                                           download("core", "a.download").toNativeString() + "\n"));
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlib"));
    EXPECT_EQ(messageCode(), 0x1036918e);
    EXPECT_EQ(result(), 1);
}

TEST_F(LibraryCatalogUpdaterInstall, aPackedCoreNameIsUnsupportedAndStopsTheLoop)
{
    changed("a.orvlibz");
    changed("b.orvlib");
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Unsupported file extension:  a.orvlibz\n"));
    EXPECT_TRUE(download("core", "a.orvlibz").pathExists()) << "it stays in the download folder";
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlibz"));
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x10369189);
}

TEST_F(LibraryCatalogUpdaterInstall, aReferencedArchiveThatCannotBeMovedStopsTheLoop)
{
    serveIndex("Tex.zip\n");
    serve("Tex.zip", kNew, "new").afterDownload = [this](const fileString&) {
        std::filesystem::create_directories(path("referenced/Tex.zip/sub").toNativeString());
    };
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Unable to copy referenced file:  " +
                                           download("core", "Tex.zip").toNativeString() + "\n"));
    EXPECT_EQ(content("core/catalog_hash.txt"), "");
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x10369189);
    EXPECT_THAT(mHost.resetFolders(), IsEmpty());
}

TEST_F(LibraryCatalogUpdaterInstall, theStallCounterSurvivesAFailedDownload)
{
    test::ScriptedFile& stalled = changed("a.orvlib");
    stalled.progress.assign(601, 0.0);
    test::ScriptedFile& next = changed("b.orvlib");
    next.progress = {1000, 2000, 2000, 5000};
    test::ScriptedFile& silent = changed("c.orvlib");
    silent.progress = {0, 5000};
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Failed To Download File:  a   Reason:  Callback aborted\n"));
    EXPECT_EQ(messageCode(), 0x1036918a);
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\nb.orvlib:new\nc.orvlib:new\n")
        << "the second transfer brought bytes at once, and a good one starts the count again";
}

TEST_F(LibraryCatalogUpdaterInstall, afterAStallTheNextSilentCallAborts)
{
    changed("a.orvlib").progress.assign(601, 0.0);
    changed("b.orvlib").progress = {0, 5000};
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Failed To Download File:  a   Reason:  Callback aborted\n"
                                           "Failed To Download File:  b   Reason:  Callback aborted\n"));
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\nb.orvlib:old\n");
}

TEST_F(LibraryCatalogUpdaterInstall, theNextRunStartsTheStallCountAgain)
{
    changed("a.orvlib").progress.assign(601, 0.0);
    run();
    mCurl.files.at("a.orvlib").progress = {0, 5000};
    mRecorder = std::make_unique<test::SlotRecorder>();
    run();
    EXPECT_EQ(result(), 2);
}

TEST_F(LibraryCatalogUpdaterInstall, aCancelledDownloadIsRemovedAndTheOthersAreStillTried)
{
    changed("a.orvlib");
    changed("b.orvlib");
    mCurl.onRequest = [](const std::string& request) {
        if (request.rfind("GET", 0) == 0)
            LibraryCatalogUpdater::killDownload();
    };
    run();
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlib", "b.orvlib"));
    EXPECT_FALSE(download("core", "a.download").pathExists());
    EXPECT_FALSE(download("core", "b.download").pathExists());
    EXPECT_THAT(logMessages(), ElementsAre("Failed To Download File:  a   Reason:  Callback aborted\n"
                                           "Failed To Download File:  b   Reason:  Callback aborted\n"));
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\nb.orvlib:old\n");
    EXPECT_EQ(mRecorder->texts().back(), "onClose()");
    EXPECT_EQ(mRecorder->closings(), 1u);
}

TEST_F(LibraryCatalogUpdaterInstall, theGaugeCountsTheFilesOfTheRunTogether)
{
    test::ScriptedFile& first = changed("a.orvlib");
    for (int call = 1; call <= 502; ++call)
        first.progress.push_back(call * 1000.0);
    test::ScriptedFile& second = changed("b.orvlib");
    for (int call = 1; call <= 502; ++call)
        second.progress.push_back(call * 10.0);
    run();
    EXPECT_THAT(mRecorder->argumentsOf("onSetValueInGauge"), ElementsAre("502", "507"));
}

TEST_F(LibraryCatalogUpdaterInstall, theGaugeCountsAFileOnceThoughTheNextMakesNoProgress)
{
    changed("a.orvlib").progress = {4000};
    changed("b.orvlib");
    mCurl.onRequest = [](const std::string& request) {
        if (request.find("GET") == 0 && request.find("b.orvlib") != std::string::npos)
            throw std::runtime_error("no connection");
    };
    test::ScriptedFile& third = changed("c.orvlib");
    for (int call = 1; call <= 502; ++call)
        third.progress.push_back(call * 10.0);
    run();
    EXPECT_THAT(mRecorder->argumentsOf("onSetValueInGauge"), ElementsAre("9"));
}

TEST_F(LibraryCatalogUpdaterInstall, aNewRunCountsItsOwnKilobytes)
{
    test::ScriptedFile& file = changed("a.orvlib");
    for (int call = 1; call <= 502; ++call)
        file.progress.push_back(call * 1000.0);
    run();
    installed("core/catalog_hash.txt", mHashLines);
    mRecorder = std::make_unique<test::SlotRecorder>();
    run();
    EXPECT_THAT(mRecorder->argumentsOf("onSetValueInGauge"), ElementsAre("502"));
}

TEST_F(LibraryCatalogUpdaterInstall, theHostReceivesACatalogWithItsPermissionsSet)
{
    unsigned mode = 0;
    changed("a.orvlib").afterDownload = [](const fileString& target) {
        chmod(target.toNativeString().c_str(), 0600);
    };
    mRecorder->swapsIn = false;
    mRecorder->onEvent = [&](std::size_t) {
        if (mRecorder->events().back().slot == "onCatalogUpdatedEvent")
            mode = test::modeOf(mRecorder->updatedFiles().back().second);
    };
    run();
    EXPECT_EQ(mode, 0644u);
}

TEST_F(LibraryCatalogUpdaterInstall, permissionsThatCannotBeSetAreLoggedWithTheFixedText)
{
    changed("a.orvlib");
    changed("b.orvlib");
    // The file disappears after it was renamed and before its permissions are set.
    LosingPaths paths(fileString(mHost.folder().path()), download("core", "a.orvlib"));
    PathUtils* const former = PathUtils::install(&paths);
    run();
    PathUtils::install(former);
    EXPECT_THAT(logMessages(), ElementsAre("Error setting file permissions: Unknown error\n"));
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("a.orvlib", "b.orvlib")) << "the run goes on";
    EXPECT_EQ(mRecorder->texts().back(), "closeCatalogUpdateEvent(1, 0x10369189, [a, b])");
}
