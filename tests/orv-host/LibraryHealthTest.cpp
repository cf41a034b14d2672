#include "OrvHost/health/LibraryHealth.h"

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>

#include "OrvLibrary/host/SHA1.h"
#include "OrvLibrary/host/ZipUtils.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/RecordingProgress.h"

using OrvHost::LibraryHealth;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// A core catalog of 20 MB and two texture archives, the first of which is damaged.
class LibraryHealthTest : public test::HostedTest
{
protected:
    LibraryHealthTest()
    {
        const fileString catalog = folder.write("root/core/Doors.orvlib", test::sampleBytes(20000000, 1));
        folder.write("root/core/catalog_hash.txt",
                     "Doors.orvlib:" + SHA1::fileContentsToSHA1Hex(catalog) + "\n");
        writeArchive("Bath.zip", 2);
        writeArchive("Kitchen.zip", 3);
        std::string bytes = test::readFile(folder.file("root/textures/Bath.zip"));
        bytes[bytes.size() / 4] = static_cast<char>(~bytes[bytes.size() / 4]);
        folder.write("root/textures/Bath.zip", bytes);
    }

    void writeArchive(const std::string& name, unsigned seed) const
    {
        test::ArchiveBuilder archive;
        archive.add("large.jpg", test::sampleBytes(12000000, seed));
        archive.add("long.txt", std::string(3000000, 'x'));
        folder.write("root/textures/" + name, archive.bytes());
    }

    std::uint64_t sizeOfFiles() const
    {
        std::uint64_t size = 0;
        for (const char* file : {"core/Doors.orvlib", "textures/Bath.zip", "textures/Kitchen.zip"})
            size += test::readFile(folder.file(std::string("root/") + file)).size();
        return size;
    }

    std::shared_ptr<test::RecordingProgress> progress = std::make_shared<test::RecordingProgress>();
    LibraryHealth health;
};

} // namespace

TEST_F(LibraryHealthTest, oneScaleCountsTheBytesOfAllFiles)
{
    health.checkAll(progress);
    EXPECT_EQ(health.checkedCount(), 3U);
    ASSERT_EQ(health.damages().size(), 1U);
    EXPECT_EQ(health.damages()[0].name, "Bath.zip");
    EXPECT_THAT(health.damages()[0].text, HasSubstr("large.jpg"));
    std::vector<std::string> told = progress->calls();
    told.erase(std::remove(told.begin(), told.end(), "check"), told.end());
    EXPECT_THAT(told, ElementsAre("labels checking | ", "total " + std::to_string(sizeOfFiles()),
                                  "step Doors.orvlib | ", "step Bath.zip | ", "step Kitchen.zip | "));
    EXPECT_EQ(progress->sumOfBytes(), sizeOfFiles());
    for (const std::uint64_t bytes : progress->bytes())
        EXPECT_LE(bytes, 8U << 20U);
    EXPECT_GT(progress->bytes().size(), 15U);
}

TEST_F(LibraryHealthTest, scaleIsShownFromEightMegabytesOn)
{
    constexpr std::size_t kWorthShowing = 8U << 20U;
    std::filesystem::remove_all(folder.path() + "/root/textures");
    for (const std::size_t size : {kWorthShowing - 1, kWorthShowing}) {
        folder.write("root/core/Doors.orvlib", std::string(size, 'd'));
        const auto watching = std::make_shared<test::RecordingProgress>();
        health.checkAll(watching);
        const auto total = "total " + std::to_string(size);
        EXPECT_EQ(std::count(watching->calls().begin(), watching->calls().end(), total),
                  size == kWorthShowing ? 1 : 0);
    }
}

TEST_F(LibraryHealthTest, nobodyNeedsToWatch)
{
    health.checkAll(nullptr);
    EXPECT_EQ(health.checkedCount(), 3U);
    EXPECT_EQ(health.damages().size(), 1U);
}

TEST_F(LibraryHealthTest, cancelEndsItInsideOfEachFile)
{
    health.checkAll(progress);
    const int checks = progress->checks();
    ASSERT_GT(checks, 20);
    for (int at = 1; at <= checks; ++at) {
        const auto stopped = std::make_shared<test::RecordingProgress>();
        stopped->isCancelled = [at](int check) { return check >= at; };
        LibraryHealth again;
        EXPECT_THROW(again.checkAll(stopped), ZipUtils::Cancelled) << at;
        EXPECT_EQ(stopped->checks(), at) << "nothing is done after the answer";
        EXPECT_LT(again.checkedCount(), 3U) << at;
    }
}
