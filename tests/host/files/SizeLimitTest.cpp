#include "OrvLibrary/host/impl/files/SizeLimit_p.h"

#include <gtest/gtest.h>

namespace {

constexpr std::int64_t kMost = 1'000'000'000;
constexpr std::int64_t kMegabyte = 1'000'000;

} // namespace

TEST(SizeLimitTest, largeDiskAllowsTheMost)
{
    const host::SizeLimit limit(kMost, 0, {100 * kMost, 200 * kMost}, {});
    EXPECT_FALSE(limit.isFromDisk());
    EXPECT_TRUE(limit.allows(kMost));
    EXPECT_FALSE(limit.allows(kMost + 1));
    EXPECT_EQ(limit.reason(1), "file too large");
}

TEST(SizeLimitTest, diskKeepsTheSpareBytesOrAShare)
{
    const host::SpareSpace spare{10 * kMegabyte, 20, 0};
    const host::SizeLimit large(kMost, 0, {50 * kMegabyte, 400 * kMegabyte}, spare);
    EXPECT_TRUE(large.isFromDisk());
    EXPECT_TRUE(large.allows(40 * kMegabyte));
    EXPECT_FALSE(large.allows(40 * kMegabyte + 1));
    const host::SizeLimit small(kMost, 0, {50 * kMegabyte, 100 * kMegabyte}, spare);
    EXPECT_TRUE(small.allows(45 * kMegabyte));
    EXPECT_FALSE(small.allows(45 * kMegabyte + 1));
}

TEST(SizeLimitTest, bytesThatAreThereNeedNoFurtherSpace)
{
    const host::SizeLimit limit(kMost, 7 * kMegabyte, {50 * kMegabyte, 100 * kMegabyte}, {kMegabyte, 20, 0});
    EXPECT_TRUE(limit.allows(56 * kMegabyte));
    EXPECT_FALSE(limit.allows(56 * kMegabyte + 1));
}

TEST(SizeLimitTest, otherFilesGetTheirSpace)
{
    const host::SizeLimit limit(kMost, 0, {50 * kMegabyte, 100 * kMegabyte}, {kMegabyte, 20, 9 * kMegabyte});
    EXPECT_TRUE(limit.allows(40 * kMegabyte));
    EXPECT_FALSE(limit.allows(40 * kMegabyte + 1));
    EXPECT_EQ(limit.reason(36'500), "disk full: 37 KB needed, 50 MB free, 10 MB kept free");
}

TEST(SizeLimitTest, fullDiskAllowsAnEmptyFile)
{
    const host::SizeLimit limit(kMost, 0, {5, 100 * kMegabyte}, {});
    EXPECT_TRUE(limit.allows(0));
    EXPECT_FALSE(limit.allows(1));
    EXPECT_EQ(limit.reason(999), "disk full: 999 bytes needed, 5 bytes free, 5 MB kept free");
    EXPECT_EQ(limit.reason(1000), "disk full: 1 KB needed, 5 bytes free, 5 MB kept free");
}

TEST(SizeLimitTest, unknownSpaceSetsNoLimit)
{
    const host::SizeLimit limit(kMost, 0, {}, {});
    EXPECT_TRUE(limit.allows(kMost));
    EXPECT_FALSE(limit.isFromDisk());
}
