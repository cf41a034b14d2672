#include "OrvLibrary/catalog/CatalogDownload_p.h"

#include <cstdlib>
#include <limits>

#include <QCoreApplication>

#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "tests/catalog/CatalogTest.h"

using namespace LibraryCatalogUpdate;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CatalogDownloadProgress : public test::CatalogTest
{
protected:
    CatalogDownloadProgress() : mEvents(CatalogEvents::watch(*mRecorder))
    {
        mContext.events = mEvents.get();
        total_kbytes_read = 0;
        file_kbytes_read = 0;
    }

    int call(double downloaded) { return download_progress_callback(&mContext, 0, downloaded, 0, 0); }

    std::vector<std::string> gauge()
    {
        QCoreApplication::sendPostedEvents(mRecorder.get());
        return mRecorder->argumentsOf("onSetValueInGauge");
    }

    std::shared_ptr<CatalogEvents> mEvents;
    CatalogDownload mContext;
};

} // namespace

TEST_F(CatalogDownloadProgress, theSixHundredAndFirstSilentCallAborts)
{
    for (int number = 1; number <= 600; ++number)
        ASSERT_EQ(call(0), 0) << number;
    EXPECT_EQ(call(0), 1);
    EXPECT_EQ(call(0), 1);
}

TEST_F(CatalogDownloadProgress, aNewByteStartsTheCountAgain)
{
    for (int number = 1; number <= 600; ++number)
        call(0);
    EXPECT_EQ(call(1), 0);
    for (int number = 1; number <= 600; ++number)
        ASSERT_EQ(call(1), 0) << number;
    EXPECT_EQ(call(1), 1);
}

TEST_F(CatalogDownloadProgress, fewerBytesAreAChangeToo)
{
    call(5000);
    diff_zero_count = 600;
    EXPECT_EQ(call(4000), 0);
    EXPECT_EQ(diff_zero_count, 0);
}

TEST_F(CatalogDownloadProgress, aCancelAbortsTheNextCall)
{
    EXPECT_EQ(call(1), 0);
    setDownloadKilled(true);
    EXPECT_EQ(call(2), 1);
}

TEST_F(CatalogDownloadProgress, theGaugeMovesOnTheFiveHundredAndSecondCall)
{
    for (int number = 1; number <= 501; ++number)
        call(number * 1000.0);
    EXPECT_THAT(gauge(), IsEmpty());
    call(502 * 1000.0);
    EXPECT_THAT(gauge(), ElementsAre("502"));
    for (int number = 503; number <= 1003; ++number)
        call(number * 1000.0);
    EXPECT_THAT(gauge(), ElementsAre("502"));
    call(1004 * 1000.0);
    EXPECT_THAT(gauge(), ElementsAre("502", "1004"));
}

// Runs in a new process, because an earlier test may have counted calls already.
TEST(CatalogDownloadOfANewProcess, theGaugeMovesOnTheFiveHundredAndSecondCall)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            CatalogDownload download;
            for (int number = 1; number <= 501; ++number)
                download_progress_callback(&download, 0, number, 0, 0);
            const bool isFull = progress_update_count == 501;
            download_progress_callback(&download, 0, 502, 0, 0);
            std::_Exit(isFull && progress_update_count == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(CatalogDownloadProgress, theGaugesCountGoesOnWithTheNextDownload)
{
    for (int number = 1; number <= 500; ++number)
        call(number);
    mContext = CatalogDownload();
    mContext.events = mEvents.get();
    call(1000);
    EXPECT_THAT(gauge(), IsEmpty());
    call(2000);
    EXPECT_THAT(gauge(), ElementsAre("2"));
}

TEST_F(CatalogDownloadProgress, theGaugeShowsFinishedFilesAsWell)
{
    total_kbytes_read = 40;
    progress_update_count = 501;
    call(2499);
    EXPECT_THAT(gauge(), ElementsAre("42"));
}

TEST_F(CatalogDownloadProgress, kilobytesAreRounded)
{
    struct Row
    {
        double bytes;
        std::uint64_t kilobytes;
    };
    for (const Row& row : {Row{1, 0}, Row{499, 0}, Row{500, 1}, Row{1499, 1}, Row{1500, 2}, Row{-5000, 0}}) {
        call(row.bytes);
        EXPECT_EQ(file_kbytes_read, row.kilobytes) << row.bytes;
    }
}

TEST_F(CatalogDownloadProgress, sumsSaturate)
{
    total_kbytes_read = std::numeric_limits<std::uint64_t>::max();
    progress_update_count = 501;
    EXPECT_EQ(call(5000), 0);
    EXPECT_EQ(call(1e300), 0);
    EXPECT_THAT(gauge(), ElementsAre("2147483647"));
}

TEST_F(CatalogDownloadProgress, noHostObjectIsFine)
{
    mContext.events = nullptr;
    progress_update_count = 501;
    EXPECT_EQ(call(5000), 0);
    EXPECT_EQ(progress_update_count, 0u);
}
