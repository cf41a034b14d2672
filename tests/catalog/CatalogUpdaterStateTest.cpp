#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"

#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include "OrvLibrary/LibraryCatalogUpdater.h"

using namespace LibraryCatalogUpdate;

TEST(CatalogUpdaterState, killDownloadSetsTheFlag)
{
    setDownloadKilled(false);
    EXPECT_FALSE(isDownloadKilled());
    LibraryCatalogUpdater::killDownload();
    EXPECT_TRUE(isDownloadKilled());
    setDownloadKilled(false);
}

TEST(CatalogUpdaterState, theMutexIsFreeAfterEachAccess)
{
    setDownloadKilled(false);
    EXPECT_FALSE(isDownloadKilled());
    ASSERT_TRUE(kill_download_mutex.try_lock());
    kill_download_mutex.unlock();
}

TEST(CatalogUpdaterState, sumsSaturateInsteadOfWrapping)
{
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(addSaturating(1, 2), 3u);
    EXPECT_EQ(addSaturating(kLargest - 1, 1), kLargest);
    EXPECT_EQ(addSaturating(kLargest, 1), kLargest);
    EXPECT_EQ(addSaturating(kLargest, kLargest), kLargest);
}

TEST(CatalogUpdaterState, anyThreadMayCancelWhileTheRunLooks)
{
    setDownloadKilled(false);
    std::thread canceller(LibraryCatalogUpdater::killDownload);
    while (!isDownloadKilled())
        std::this_thread::yield();
    canceller.join();
    setDownloadKilled(false);
}
