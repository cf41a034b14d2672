#include "OrvLibrary/host/impl/zip/ZipDirectoryCache_p.h"

#include <ctime>

#include <gtest/gtest.h>

using ZipUtils::ZipDirectory;
namespace DirectoryCache = ZipUtils::DirectoryCache;

namespace {

/// A file of a whole second, as some file systems store it.
struct stat makeStatus(ino_t number)
{
    struct stat status = {};
    status.st_dev = 1;
    status.st_ino = number;
    status.st_size = 100;
    status.st_mtim = {1'600'000'000, 0};
    status.st_ctim = {1'600'000'000, 0};
    return status;
}

} // namespace

TEST(ZipDirectoryCache, sameFileIsFoundUntilAnyPartOfItsTimesChanges)
{
    const auto directory = std::make_shared<ZipDirectory>();
    const struct stat kept = makeStatus(11);
    DirectoryCache::keep(kept, directory);
    EXPECT_EQ(DirectoryCache::find(kept), directory);
    for (timespec stat::*time : {&stat::st_mtim, &stat::st_ctim}) {
        struct stat later = kept;
        ++(later.*time).tv_sec;
        EXPECT_FALSE(DirectoryCache::find(later));
        later = kept;
        ++(later.*time).tv_nsec;
        EXPECT_FALSE(DirectoryCache::find(later));
    }
}

TEST(ZipDirectoryCache, otherFilesAreNotFound)
{
    const struct stat kept = makeStatus(12);
    DirectoryCache::keep(kept, std::make_shared<ZipDirectory>());
    struct stat other = kept;
    ++other.st_size;
    EXPECT_FALSE(DirectoryCache::find(other));
    other = kept;
    ++other.st_dev;
    EXPECT_FALSE(DirectoryCache::find(other));
    EXPECT_FALSE(DirectoryCache::find(makeStatus(13)));
}

TEST(ZipDirectoryCache, fileThatChangedJustNowIsNotKept)
{
    for (timespec stat::*time : {&stat::st_mtim, &stat::st_ctim}) {
        struct stat file = makeStatus(14);
        file.*time = {std::time(nullptr), 0};
        DirectoryCache::keep(file, std::make_shared<ZipDirectory>());
        EXPECT_FALSE(DirectoryCache::find(file));
    }
}

TEST(ZipDirectoryCache, lastTwoFilesAreKept)
{
    for (const ino_t number : {15U, 16U, 17U})
        DirectoryCache::keep(makeStatus(number), std::make_shared<ZipDirectory>());
    EXPECT_FALSE(DirectoryCache::find(makeStatus(15)));
    EXPECT_TRUE(DirectoryCache::find(makeStatus(16)));
    EXPECT_TRUE(DirectoryCache::find(makeStatus(17)));
}

TEST(ZipDirectoryCache, veryLargeDirectoryIsNotKept)
{
    const auto directory = std::make_shared<ZipDirectory>();
    directory->bytes.resize((16U << 20U) + 1);
    DirectoryCache::keep(makeStatus(18), directory);
    EXPECT_FALSE(DirectoryCache::find(makeStatus(18)));
}
