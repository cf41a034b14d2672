// The scale over many files is reached through the check of all catalogs and archives.
#include <filesystem>

#include <gmock/gmock.h>

#include "OrvHost/health/LibraryHealth.h"
#include "OrvLibrary/host/ZipUtils.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RecordingProgress.h"

using testing::ElementsAre;

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kMegabyte = 1U << 20U;

class FilesProgress : public test::HostedTest
{
protected:
    void writeCatalogs(std::initializer_list<std::pair<std::string, std::size_t>> catalogs) const
    {
        std::string hashes;
        for (const auto& [name, size] : catalogs) {
            folder.write("root/core/" + name, std::string(size, 'd'));
            hashes += name + ":" + std::string(40, 'a') + "\n";
        }
        folder.write("root/core/catalog_hash.txt", hashes);
    }
    std::vector<std::uint64_t> toldBytes()
    {
        const auto progress = std::make_shared<test::RecordingProgress>();
        health.checkAll(progress);
        return progress->bytes();
    }

    OrvHost::LibraryHealth health;
};

} // namespace

TEST_F(FilesProgress, eachFileBeginsAnew)
{
    writeCatalogs(
        {{"A.orvlib", 2 * kMegabyte + 5}, {"B.orvlib", 3 * kMegabyte}, {"C.orvlib", 0}, {"D.orvlib", 1}});
    EXPECT_THAT(toldBytes(), ElementsAre(kMegabyte, kMegabyte, 5, kMegabyte, kMegabyte, kMegabyte, 1));
}

TEST_F(FilesProgress, scaleIsShownFromEightMegabytesOn)
{
    for (const std::size_t size : {8 * kMegabyte - 1, 8 * kMegabyte}) {
        writeCatalogs({{"A.orvlib", size}});
        const auto progress = std::make_shared<test::RecordingProgress>();
        health.checkAll(progress);
        const bool isShown = size == 8 * kMegabyte;
        EXPECT_EQ(progress->calls()[0], isShown ? "labels checking | " : "check") << size;
        EXPECT_EQ(progress->calls()[1], isShown ? "total 8388608" : "step A.orvlib | ") << size;
    }
}

TEST_F(FilesProgress, bytesAreToldAtOnce)
{
    writeCatalogs({{"A.orvlib", 1}});
    const auto stopped = std::make_shared<test::RecordingProgress>();
    stopped->isCancelled = [](int check) { return check == 2; };
    EXPECT_THROW(health.checkAll(stopped), ZipUtils::Cancelled);
    EXPECT_THAT(stopped->bytes(), ElementsAre(1));
}

TEST_F(FilesProgress, restOfAFileThatCannotBeReadIsToldInPortions)
{
    folder.write("root/textures/Bath.zip", std::string(20 * kMegabyte, 'x'));
    writeCatalogs({{"A.orvlib", kMegabyte}});
    const auto progress = std::make_shared<test::RecordingProgress>();
    health.checkAll(progress);
    EXPECT_EQ(progress->calls()[1], "total " + std::to_string(21 * kMegabyte));
    EXPECT_THAT(progress->bytes(), ElementsAre(kMegabyte, 8 * kMegabyte, 8 * kMegabyte, 4 * kMegabyte));
    EXPECT_EQ(health.damages().size(), 2U);
    health.checkAll(nullptr);
    EXPECT_EQ(health.damages().size(), 4U);
}

TEST_F(FilesProgress, catalogThatMayNotBeReadCountsWhole)
{
    writeCatalogs({{"A.orvlib", 2 * kMegabyte}});
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(folder.path() + "/root/core/A.orvlib", fs::perms::none);
    const test::ChildEnd end = test::runWithoutRights(
        [this] { return toldBytes() == std::vector<std::uint64_t>{2 * kMegabyte} ? 0 : 1; });
    EXPECT_EQ(end.status, 0);
}

TEST_F(FilesProgress, contentOfAnArchiveCountsAsAShareOfItsSize)
{
    test::ArchiveBuilder archive;
    archive.add("a.txt", std::string(20 * kMegabyte, 'x'));
    archive.add("b.txt", std::string(20 * kMegabyte, 'y'));
    const std::string bytes = archive.bytes();
    ASSERT_LT(bytes.size(), kMegabyte);
    folder.write("root/textures/Bath.zip", bytes);
    std::uint64_t sum = 0;
    const std::vector<std::uint64_t> told = toldBytes();
    for (const std::uint64_t one : told)
        sum += one;
    EXPECT_EQ(sum, bytes.size());
    EXPECT_GE(told.size(), 4U);
    for (const std::uint64_t one : told)
        EXPECT_LT(one, bytes.size() / 3);
}
