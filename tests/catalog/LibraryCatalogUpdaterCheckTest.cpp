#include "tests/catalog/CatalogTest.h"

#include <QCoreApplication>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A core-only run over one catalog "a.orvlib" whose stored tag is "stored".
class LibraryCatalogUpdaterCheck : public test::CatalogTest
{
protected:
    LibraryCatalogUpdaterCheck()
    {
        mArguments.coreOnly = true;
        mArguments.core = {installed("core/a.orvlib", "x")};
        installed("core/catalog_hash.txt", "a.orvlib:stored\n");
    }

    test::ScriptedFile& answer(std::int64_t status, const std::string& headerLines)
    {
        test::ScriptedFile& file = serve("a.orvlib", std::string(5000, 'n'), "new");
        file.status = status;
        file.headerLines = headerLines;
        return file;
    }

    /// The total that was set for the progress bar, in kilobytes; empty if none was set.
    std::string total() const
    {
        const auto ranges = mRecorder->argumentsOf("onSetRangeInGauge");
        return mRecorder->count("onSetUnits") == 0 ? std::string() : ranges.back();
    }
};

struct TagRow
{
    const char* lines;
    const char* stored;
};

struct LengthRow
{
    const char* value;
    const char* total;
};

} // namespace

TEST_F(LibraryCatalogUpdaterCheck, everyRecordIsAskedForWithItsTag)
{
    serve("a.orvlib", "x", "stored");
    run();
    EXPECT_EQ(mCurl.requests.back(),
              "HEAD http://service.test/content?key=1&library=a.orvlib&product=Orv&version=7");
    EXPECT_THAT(mCurl.requestHeaders.back(), ElementsAre("If-None-Match: \"stored\""));
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterCheck, theHostIsToldTheNumberAndEachName)
{
    mArguments.core.insert(installed("core/T\xc3\xbcren.orvlib", "x"));
    run();
    const std::vector<std::string> events = mRecorder->texts();
    ASSERT_EQ(events.size(), 12u);
    EXPECT_THAT(std::vector<std::string>(events.begin() + 6, events.end()),
                ElementsAre("onSetRangeInGauge(2)", "onSetText(#8727 T\xfcren.orvlib)", "onUpdateInGauge()",
                            "onSetText(#8727 a.orvlib)", "onUpdateInGauge()",
                            "closeCatalogUpdateEvent(3, 0x10369189, [])"));
}

TEST_F(LibraryCatalogUpdaterCheck, aFailedRequestIsAnErrorAndTheNextIsMade)
{
    mArguments.core.insert(installed("core/b.orvlib", "x"));
    serve("a.orvlib", "new content", "new").headerFails = true;
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("a.orvlib", "b.orvlib"));
    EXPECT_THAT(mCurl.asked("GET"), IsEmpty());
    EXPECT_EQ(mRecorder->count("onUpdateInGauge"), 4u);
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x10369189);
}

TEST_F(LibraryCatalogUpdaterCheck, onlyAn200BringsADownload)
{
    for (const int status : {100, 201, 204, 206, 300, 301, 304, 400, 403, 404, 410, 500, 503, 599, 0, -1}) {
        mRecorder = std::make_unique<test::SlotRecorder>();
        mCurl.requests.clear();
        answer(status, "ETag: \"new\"\r\nContent-Length: 5000\r\n");
        run();
        EXPECT_THAT(mCurl.asked("GET"), IsEmpty()) << status;
        EXPECT_EQ(result(), 3) << status << ": an answer is no error";
        EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:stored\n") << status;
    }
}

TEST_F(LibraryCatalogUpdaterCheck, tagsLoseTheirQuotes)
{
    const TagRow rows[] = {
        {"ETag: \"abc\"\r\n", "abc"},
        {"ETag: W/\"abc\"\r\n", "abc"},
        {"ETag: abc\r\n", "abc"},
        {"etag: \"abc\"\r\n", "abc"},
        {"ETag: \"abc\r\n", "abc"},
        {"ETag: \"\"\r\n", "\""},
        {"ETag: W/\"\"\r\n", "\""},
        {"ETag: \"\"\"\r\n", "\""},
        {"ETag: \"a\"b\"\r\n", "a\"b"},
        {"ETag: \"a\" junk\r\n", "a"},
        {"ETag: \"one\"\r\nETag: \"two\"\r\n", "two"},
        {"ETag: \"a b\"\r\n", "a b"},
    };
    for (const TagRow& row : rows) {
        mRecorder = std::make_unique<test::SlotRecorder>();
        installed("core/catalog_hash.txt", "a.orvlib:stored\n");
        answer(200, std::string(row.lines) + "Content-Length: 5000\r\n");
        run();
        EXPECT_EQ(result(), 2) << row.lines;
        EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:" + std::string(row.stored) + "\n")
            << row.lines;
    }
}

TEST_F(LibraryCatalogUpdaterCheck, tagsThatLeaveNothingLeaveNoLine)
{
    for (const char* lines : {"ETag: \r\n", "ETag:\r\n", "ETag: abc\"\r\n"}) {
        installed("core/catalog_hash.txt", "a.orvlib:stored\n");
        answer(200, std::string(lines) + "Content-Length: 5000\r\n");
        run();
        EXPECT_EQ(result(), 2) << lines;
        EXPECT_EQ(content("core/catalog_hash.txt"), "") << lines;
    }
}

TEST_F(LibraryCatalogUpdaterCheck, aMissingTagKeepsTheStoredOne)
{
    answer(200, "Content-Length: 5000\r\n");
    run();
    EXPECT_THAT(mCurl.asked("GET"), IsEmpty());
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterCheck, theSameTagIsCurrentWhateverTheLength)
{
    answer(200, "ETag: \"stored\"\r\nContent-Length: 123456789\r\n");
    run();
    EXPECT_EQ(total(), "");
    EXPECT_THAT(mCurl.asked("GET"), IsEmpty());
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterCheck, lengthsAreReadAsAStreamReadsThem)
{
    const LengthRow rows[] = {
        {"5000", "5"},
        {" 7000 ", "7"},
        {"9000bytes", "9"},
        {"5000\r\nContent-Length: 8000", "8"},
        {"0", ""},
        {"999", ""},
        {"1000", "1"},
        {"1999", "1"},
        {"abc", ""},
        {"", ""},
        {"0x5000", ""},
        {"1e9", ""},
        {"12,000", ""},
        {"2147483647999", "2147483647"},
        {"2147483648000", "2147483647"},
        {"18446744073709551615", "2147483647"},
        {"99999999999999999999999", "2147483647"},
        {"-1", "2147483647"},
    };
    for (const LengthRow& row : rows) {
        mRecorder = std::make_unique<test::SlotRecorder>();
        installed("core/catalog_hash.txt", "a.orvlib:stored\n");
        answer(200, "ETag: \"new\"\r\nContent-Length: " + std::string(row.value) + "\r\n");
        run();
        EXPECT_EQ(total(), row.total) << row.value;
        EXPECT_EQ(mRecorder->closings(), 1u);
    }
}

TEST_F(LibraryCatalogUpdaterCheck, aMissingLengthCountsAsNothing)
{
    answer(200, "ETag: \"new\"\r\n");
    run();
    EXPECT_EQ(total(), "");
    EXPECT_THAT(mCurl.asked("GET"), IsEmpty());
}

TEST_F(LibraryCatalogUpdaterCheck, theTotalIsTheSumOfWholeKilobytes)
{
    for (const auto& [name, size] : {std::pair{"b.orvlib", 999}, {"c.orvlib", 1000}, {"d.orvlib", 2500}}) {
        mArguments.core.insert(path("core/" + std::string(name)));
        serve(name, std::string(static_cast<std::size_t>(size), 'n'), "new");
    }
    serve("a.orvlib", "x", "stored");
    run();
    EXPECT_EQ(total(), "3");
    EXPECT_THAT(mRecorder->argumentsOf("onSetUnits"), ElementsAre("#8745 "));
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("b.orvlib", "c.orvlib", "d.orvlib"));
}

TEST_F(LibraryCatalogUpdaterCheck, hugeLengthsDoNotWrapTheTotal)
{
    for (int number = 0; number < 3; ++number) {
        const std::string name = std::to_string(number) + ".orvlib";
        mArguments.core.insert(path("core/" + name));
        serve(name, "x", "new").headerLines = "ETag: \"new\"\r\nContent-Length: 18446744073709551615\r\n";
    }
    run();
    EXPECT_EQ(total(), "2147483647");
}

TEST_F(LibraryCatalogUpdaterCheck, theRangeIsSetBeforeTheUnit)
{
    serve("a.orvlib", std::string(5000, 'n'), "new");
    run();
    const std::vector<std::string> events = mRecorder->texts();
    const auto unit = std::find(events.begin(), events.end(), "onSetUnits(#8745 )");
    ASSERT_NE(unit, events.end());
    EXPECT_EQ(*(unit - 1), "onSetRangeInGauge(5)");
}

TEST_F(LibraryCatalogUpdaterCheck, withNothingChangedNeitherRangeNorUnitIsSent)
{
    serve("a.orvlib", "x", "stored");
    run();
    EXPECT_THAT(mRecorder->argumentsOf("onSetRangeInGauge"), ElementsAre("1", "1"))
        << "those of gathering and checking";
    EXPECT_EQ(mRecorder->count("onSetUnits"), 0u);
}

TEST_F(LibraryCatalogUpdaterCheck, thePagesOf403And404AreFetchedWithTheSameHeaders)
{
    for (const int status : {403, 404}) {
        mCurl.requests.clear();
        mCurl.requestHeaders.clear();
        answer(status, "ETag: \"new\"\r\nContent-Length: 5000\r\n").page = "Not for you.";
        run();
        ASSERT_EQ(mCurl.requests.size(), 4u) << status;
        EXPECT_EQ(mCurl.requests.back(),
                  "PAGE http://service.test/content?key=1&library=a.orvlib&product=Orv&version=7");
        EXPECT_THAT(mCurl.requestHeaders.back(), ElementsAre("If-None-Match: \"stored\""));
    }
}

TEST_F(LibraryCatalogUpdaterCheck, theRecordKeepsThePageOfTheError)
{
    answer(404, "").page = "No longer sold.";
    auto updater = test::makeUpdater(*mRecorder, mArguments);
    updater.check();
    QCoreApplication::processEvents();
    EXPECT_EQ(updater.catalogs().at(fileString("a.orvlib")).errorText, "No longer sold.");
}

TEST_F(LibraryCatalogUpdaterCheck, otherStatusesFetchNoPage)
{
    for (const int status : {304, 400, 401, 405, 500}) {
        mCurl.requests.clear();
        answer(status, "");
        run();
        EXPECT_THAT(mCurl.asked("PAGE"), ElementsAre("Orv_Core_Content_Index.txt")) << status;
    }
}

TEST_F(LibraryCatalogUpdaterCheck, withoutAnEndpointEveryCatalogFails)
{
    mCurl.endpoint.clear();
    run();
    EXPECT_EQ(logMessages().size(), 3u) << "index address, its failure, and the catalog's address";
    EXPECT_EQ(mRecorder->count("onUpdateInGauge"), 2u);
    EXPECT_EQ(result(), 1);
    EXPECT_EQ(messageCode(), 0x1036918b);
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:stored\n");
}

TEST_F(LibraryCatalogUpdaterCheck, aCancelWhileCheckingFinishesTheChecksAndSavesAllHashFiles)
{
    mArguments.coreOnly = false;
    mArguments.core.insert(installed("core/b.orvlib", "x"));
    mArguments.bonus = {installed("bonus/Lamps.orvlib", "x")};
    mCurl.onRequest = [](const std::string& request) {
        if (request.rfind("HEAD", 0) == 0)
            LibraryCatalogUpdate::LibraryCatalogUpdater::killDownload();
    };
    serve("a.orvlib", std::string(5000, 'n'), "new");
    run();
    EXPECT_THAT(mCurl.asked("HEAD"), ElementsAre("Lamps.orvlibz", "a.orvlib", "b.orvlib"));
    EXPECT_THAT(mCurl.asked("GET"), IsEmpty());
    EXPECT_EQ(mRecorder->count("onSetUnits"), 0u);
    EXPECT_EQ(mRecorder->texts().back(), "onClose()");
    EXPECT_EQ(mRecorder->closings(), 1u);
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:stored\nb.orvlib:" + test::sha1Of("x") + "\n");
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:" + test::sha1Of("x") + "\n");
    EXPECT_EQ(content("manufacturer/catalog_hash.txt"), "");
}

TEST_F(LibraryCatalogUpdaterCheck, requestsAreAnnouncedExactlyAsTheyAreMade)
{
    for (const char* name : {"a.orvlib", "b.orvlib", "c.orvlib", "d.orvlib"}) {
        mArguments.core.insert(installed(std::string("core/") + name, "x"));
        serve(name, "x", "stored");
    }
    run();
    ASSERT_EQ(mCurl.announcements.size(), 2u);
    std::vector<std::string> made;
    std::vector<std::vector<std::string>> madeWith;
    std::size_t headersBefore = 0;
    for (std::size_t i = 0, withHeaders = 0; i < mCurl.requests.size(); ++i) {
        if (mCurl.requests[i].rfind("REDIRECT", 0) == 0)
            continue;
        if (i >= mCurl.announcements[0].first && mCurl.requests[i].rfind("HEAD ", 0) == 0) {
            made.push_back(mCurl.requests[i].substr(5));
            madeWith.push_back(mCurl.requestHeaders[withHeaders]);
        } else if (mCurl.requests[i].rfind("HEAD ", 0) == 0) {
            ++headersBefore;
        }
        ++withHeaders;
    }
    // The first header request finds the endpoint. The others are announced after it.
    EXPECT_LE(headersBefore, 1u);
    ASSERT_EQ(mCurl.announcements[0].second.size(), made.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(mCurl.announcements[0].second[i].url, made[i]);
        EXPECT_EQ(mCurl.announcements[0].second[i].headerLines, madeWith[i]);
    }
    EXPECT_TRUE(mCurl.announcements[1].second.empty());
}

TEST_F(LibraryCatalogUpdaterCheck, serviceThatCannotBeToldAheadIsAskedInTurn)
{
    serve("a.orvlib", "x", "stored");
    mCurl.onAnnouncement = [] { throw std::runtime_error("not this one"); };
    run();
    EXPECT_EQ(result(), 3);
}

TEST_F(LibraryCatalogUpdaterCheck, nothingIsAnnouncedWithoutAnEndpoint)
{
    mCurl.endpoint.clear();
    run();
    EXPECT_TRUE(mCurl.announcements.empty());
}

TEST_F(LibraryCatalogUpdaterCheck, checkAloneAsksTheSameAndChangesNothing)
{
    changed("b.orvlib");
    installed("core/catalog_hash.txt", "a.orvlib:stored\nb.orvlib:old\n\nkept:as it is\n");
    serve("a.orvlib", "x", "stored");
    serve("c.orvlib", std::string(3000, 'c'), "first");
    serveIndex("c.orvlib\n");
    const fileString waiting = installed("temp/Orv Test.downloads.core/Left.orvlib", "whole");

    auto updater = test::makeUpdater(*mRecorder, mArguments);
    updater.check();
    QCoreApplication::processEvents();
    const std::vector<std::string> requests = mCurl.requests;
    EXPECT_EQ(mRecorder->count("onClose"), 1u);
    EXPECT_EQ(mRecorder->count("closeCatalogUpdateEvent"), 0u);
    EXPECT_EQ(mRecorder->count("onSetUnits"), 0u);
    EXPECT_EQ(mRecorder->argumentsOf("onSetRangeInGauge"), (std::vector<std::string>{"3", "3"}));
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:stored\nb.orvlib:old\n\nkept:as it is\n");
    EXPECT_TRUE(waiting.pathExists());
    EXPECT_FALSE(exists("core/c.orvlib"));

    const auto& records = updater.catalogs();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_FALSE(records.at(fileString("a.orvlib")).needsUpdate());
    EXPECT_EQ(records.at(fileString("b.orvlib")).localHash, "old");
    EXPECT_EQ(records.at(fileString("b.orvlib")).serverETag, "new");
    EXPECT_TRUE(records.at(fileString("c.orvlib")).needsUpdate());
    EXPECT_EQ(records.at(fileString("c.orvlib")).contentLength, 3000u);

    mCurl.requests.clear();
    run();
    ASSERT_GT(mCurl.requests.size(), requests.size());
    mCurl.requests.resize(requests.size());
    EXPECT_EQ(mCurl.requests, requests);
}
