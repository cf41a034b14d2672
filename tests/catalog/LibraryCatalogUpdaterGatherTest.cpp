#include "tests/catalog/CatalogTest.h"

#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "tests/support/FolderWatch.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LibraryCatalogUpdaterGather : public test::CatalogTest
{
protected:
    LibraryCatalogUpdaterGather() { mArguments.coreOnly = true; }
};

} // namespace

TEST_F(LibraryCatalogUpdaterGather, theIndexIsAskedForLikeACoreCatalog)
{
    run();
    EXPECT_THAT(mCurl.requests,
                ElementsAre("REDIRECT http://service.test/redirect",
                            "PAGE http://service.test/content?key=1&library=Orv_Core_Content_Index.txt"
                            "&product=Orv&version=7"));
    EXPECT_THAT(mCurl.requestHeaders, ElementsAre(IsEmpty()));
}

TEST_F(LibraryCatalogUpdaterGather, catalogsOfTheIndexAreCheckedInTheOrderOfTheirNames)
{
    serveIndex("b.orvlib\na.orvlibz\nc.zip\na.orvlib");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("a.orvlib", "a.orvlibz", "b.orvlib", "c.zip"));
}

TEST_F(LibraryCatalogUpdaterGather, windowsLineEndsMakeNoDifference)
{
    serveIndex("b.orvlib\r\na.orvlib\r\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("a.orvlib", "b.orvlib"));
}

TEST_F(LibraryCatalogUpdaterGather, aCarriageReturnAnywhereIsRemoved)
{
    serveIndex("\ra.or\rvlib\r\r\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("a.orvlib"));
}

TEST_F(LibraryCatalogUpdaterGather, blankLinesDoNotEndTheIndex)
{
    serveIndex("\n\na.orvlib\n\r\n\nb.orvlib\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("a.orvlib", "b.orvlib"));
}

TEST_F(LibraryCatalogUpdaterGather, strayLinesAreIgnoredInSilence)
{
    serveIndex("# core content\nreadme.txt\nA.ORVLIB\n.orvlib\na.orvlib \na.orvlib.bak\n"
               "<html>\na.zipx\n\xef\xbb\xbf"
               "first.orvlib\nreal.orvlib\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("real.orvlib", "\xef\xbb\xbf"
                                                                "first.orvlib"));
    EXPECT_EQ(logText(), "");
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterGather, aDoubledLineIsOneCatalog)
{
    serveIndex("a.orvlib\na.orvlib\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("a.orvlib"));
}

TEST_F(LibraryCatalogUpdaterGather, aZipOfTheIndexLiesInTheReferencedFilesFolder)
{
    const std::string archive = "archive";
    installed("referenced/Tex.zip", archive);
    installed("core/Tex.zip", "something else");
    serveIndex("Tex.zip\n");
    run();
    EXPECT_EQ(mCurl.requestHeaders.back().at(0), "If-None-Match: \"" + test::sha1Of(archive) + "\"");
}

TEST_F(LibraryCatalogUpdaterGather, namesThatLeaveTheFolderAreAskedForByTheirLastPart)
{
    serveIndex("../up.orvlib\n/etc/abs.orvlib\nsub/in.orvlib\nC:\\drive.orvlib\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("C:\\drive.orvlib", "abs.orvlib", "in.orvlib", "up.orvlib"));
}

TEST_F(LibraryCatalogUpdaterGather, theServiceLearnsNothingOfFilesOutsideTheFolders)
{
    installed("outside.orvlib", "private");
    installed("bonus/foreign.orvlib", "private");
    installed("outside.zip", "private");
    installed("core/sub/in.orvlib", "x");
    for (const char* name : {"foreign.orvlib", "in.orvlib", "outside.orvlib", "outside.zip"})
        serve(name, "new", "1");
    serveIndex(
        "../outside.orvlib\n/../bonus/foreign.orvlib\nsub/../../outside.zip\nsub/./../sub/in.orvlib\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"),
                ElementsAre("foreign.orvlib", "in.orvlib", "outside.orvlib", "outside.zip"));
    EXPECT_EQ(mCurl.requestHeaders.at(1).at(0), "If-None-Match: \"\"");
    EXPECT_EQ(mCurl.requestHeaders.at(2).at(0), "If-None-Match: \"" + test::sha1Of("x") + "\"");
    EXPECT_EQ(mCurl.requestHeaders.at(3).at(0), "If-None-Match: \"\"");
    EXPECT_EQ(mCurl.requestHeaders.at(4).at(0), "If-None-Match: \"\"");
}

TEST_F(LibraryCatalogUpdaterGather, filesWhoseHashIsNotNeededAreNotRead)
{
    const fileString outside = installed("outside.orvlib", "private");
    const fileString known = installed("core/known.orvlib", "x");
    const fileString second = installed("core/twice.orvlib", "second");
    installed("core/a/twice.orvlib", "first");
    installed("core/catalog_hash.txt", "known.orvlib:stored\n");
    // While this thread hashes the last one, the other thread has time for those before it.
    const fileString large = installed("core/zlarge.orvlib", std::string(32 << 20, 'x'));
    serveIndex("../outside.orvlib\na/twice.orvlib\nknown.orvlib\ntwice.orvlib\nzlarge.orvlib\n");
    test::FolderWatch root(path("").toNativeString()), core(path("core").toNativeString());
    run();
    EXPECT_EQ(root.opened(outside), 0);
    EXPECT_EQ(core.opened(known), 0);
    EXPECT_EQ(core.opened(second), 0);
    EXPECT_EQ(core.opened(large), 1);
}

TEST_F(LibraryCatalogUpdaterGather, theHostsOwnFilesAreHashedWhereverTheyLie)
{
    mArguments.core = {installed("elsewhere/own.orvlib", "x")};
    run();
    EXPECT_EQ(mCurl.requestHeaders.back().at(0), "If-None-Match: \"" + test::sha1Of("x") + "\"");
}

TEST_F(LibraryCatalogUpdaterGather, anIndexThatCannotBeFetchedIsLogged)
{
    mCurl.files.at("Orv_Core_Content_Index.txt").status = 500;
    mArguments.core = {installed("core/Own.orvlib", "x")};
    run();
    EXPECT_THAT(logMessages(),
                ElementsAre("Failed to Download Core Library Index File:  "
                            "http://service.test/content?key=1&library=Orv_Core_Content_Index.txt"
                            "&product=Orv&version=7\n"));
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("Own.orvlib")) << "the host's own files are still gathered";
    EXPECT_EQ(result(), 1);
}

TEST_F(LibraryCatalogUpdaterGather, withoutAnEndpointTheIndexFailsWithAnEmptyAddress)
{
    mCurl.endpoint.clear();
    run();
    EXPECT_THAT(logMessages(), ElementsAre("Unable to determine api endpoint\n",
                                           "Failed to Download Core Library Index File:  \n"));
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x1036918b);
}

TEST_F(LibraryCatalogUpdaterGather, gatheringTellsHeadingRangeAndEachCatalog)
{
    mArguments.core = {installed("core/b.orvlib", "x")};
    serveIndex("T\xc3\xbcren.orvlib\n");
    run();
    const std::vector<std::string> events = mRecorder->texts();
    ASSERT_GE(events.size(), 6u);
    EXPECT_THAT(std::vector<std::string>(events.begin(), events.begin() + 6),
                ElementsAre("onSetText(#8717 )", "onSetRangeInGauge(2)", "onSetText(#8723 T\xfcren.orvlib)",
                            "onUpdateInGauge()", "onSetText(#8723 b.orvlib)", "onUpdateInGauge()"))
        << "names are Windows-1252";
}

TEST_F(LibraryCatalogUpdaterGather, anEmptySetSendsNothingAndReadsNoHashFile)
{
    mArguments.coreOnly = false;
    installed("bonus/Lamps.orvlib", "x");
    installed("bonus/catalog_hash.txt", "Lamps.orvlib:1\n");
    run();
    EXPECT_THAT(mRecorder->argumentsOf("onSetText"), IsEmpty());
    EXPECT_THAT(mCurl.asked("HEAD"), IsEmpty());
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "") << "and it is written anew all the same";
}

TEST_F(LibraryCatalogUpdaterGather, aStoredHashIsKept)
{
    mArguments.core = {installed("core/a.orvlib", "x")};
    installed("core/catalog_hash.txt", "a.orvlib:stored\n");
    run();
    EXPECT_EQ(mCurl.requestHeaders.back().at(0), "If-None-Match: \"stored\"");
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:stored\n");
}

TEST_F(LibraryCatalogUpdaterGather, aFileWithoutAnEntryIsHashed)
{
    mArguments.core = {installed("core/a.orvlib", "x")};
    run();
    EXPECT_EQ(mCurl.requestHeaders.at(1).at(0), "If-None-Match: \"" + test::sha1Of("x") + "\"");
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:" + test::sha1Of("x") + "\n");
}

TEST_F(LibraryCatalogUpdaterGather, aFileThatIsNotThereHasAnEmptyHash)
{
    serveIndex("new.orvlib\n");
    run();
    EXPECT_EQ(mCurl.requestHeaders.at(1).at(0), "If-None-Match: \"\"");
    EXPECT_EQ(content("core/catalog_hash.txt"), "") << "and gets no line";
}

TEST_F(LibraryCatalogUpdaterGather, entriesOfTheSetAreTaggedAgain)
{
    mArguments.coreOnly = false;
    mArguments.bonus = {installed("bonus/Lamps.orvlib", "x")};
    mArguments.manufacturer = {installed("manufacturer/Acme.orvlib", "x")};
    installed("bonus/catalog_hash.txt", "Lamps.orvlib:1\n");
    installed("manufacturer/catalog_hash.txt", "Acme.orvlib:2\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("Acme.orvlibz", "Lamps.orvlibz"));
    EXPECT_EQ(content("core/catalog_hash.txt"), "");
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:1\n");
    EXPECT_EQ(content("manufacturer/catalog_hash.txt"), "Acme.orvlib:2\n");
}

TEST_F(LibraryCatalogUpdaterGather, entriesOfNoSetMoveToTheCoreHashFile)
{
    mArguments.coreOnly = false;
    mArguments.bonus = {installed("bonus/Lamps.orvlib", "x")};
    installed("bonus/Extra.orvlib", "x");
    installed("bonus/catalog_hash.txt", "Extra.orvlib:9\nLamps.orvlib:1\n");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("Extra.orvlib", "Lamps.orvlibz"));
    EXPECT_EQ(content("core/catalog_hash.txt"), "Extra.orvlib:9\n");
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:1\n");
}

TEST_F(LibraryCatalogUpdaterGather, aNameInTwoSetsBelongsToTheLastGathered)
{
    mArguments.coreOnly = false;
    mArguments.bonus = {installed("bonus/Same.orvlib", "bonus")};
    mArguments.manufacturer = {installed("manufacturer/Same.orvlib", "manufacturer")};
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("Same.orvlibz"));
    EXPECT_EQ(content("manufacturer/catalog_hash.txt"), "Same.orvlib:" + test::sha1Of("bonus") + "\n");
}

TEST_F(LibraryCatalogUpdaterGather, aCancelStopsItBeforeTheNextFile)
{
    mArguments.core = {installed("core/a.orvlib", "x"), installed("core/b.orvlib", "x")};
    mCurl.onRequest = [](const std::string& request) {
        if (request.rfind("PAGE", 0) == 0)
            LibraryCatalogUpdate::LibraryCatalogUpdater::killDownload();
    };
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), IsEmpty());
    EXPECT_THAT(mRecorder->texts(), ElementsAre("onSetRangeInGauge(0)", "onClose()"));
}
