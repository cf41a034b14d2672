#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <gmock/gmock.h>

#include "tests/host/zip/FaultySystem.h"
#include "tests/support/ArchiveBuilder.h"

namespace {

class ZipArchiveTest : public testing::Test
{
protected:
    ZipArchiveTest() { mBuilder.add("a", test::sampleBytes(1000, 1)); }

    test::TempFolder mFolder;
    test::ArchiveBuilder mBuilder;
    fileString mPath = mFolder.file("a.zip");
};

} // namespace

TEST_F(ZipArchiveTest, readsThatAreInterruptedOrCutShortGoOn)
{
    const std::string bytes = mBuilder.bytes();
    mBuilder.write(mFolder, "a.zip");
    const test::FaultySystem system(test::FaultySystem::Call::Pread);
    const ZipUtils::ZipArchive archive(mPath);
    ASSERT_EQ(archive.entries().size(), 1U);
    EXPECT_EQ(archive.entries()[0].name, "a");
    std::string read(bytes.size(), '\0');
    archive.readAt(0, read.data(), read.size());
    EXPECT_TRUE(read == bytes);
}

TEST_F(ZipArchiveTest, endOfTheFileIsNoInterruption)
{
    mBuilder.write(mFolder, "a.zip");
    const ZipUtils::ZipArchive archive(mPath);
    std::filesystem::resize_file(mPath.toNativeString(), 10);
    std::string read(11, '\0');
    errno = EINTR; // of an earlier call
    EXPECT_THAT([&] { archive.readAt(0, read.data(), read.size()); },
                testing::ThrowsMessage<std::runtime_error>(mPath.toNativeString() + ": cut short"));
}

TEST_F(ZipArchiveTest, failedReadIsReportedWithTheSystemsReason)
{
    mBuilder.write(mFolder, "a.zip");
    const ZipUtils::ZipArchive archive(mPath);
    const test::FaultySystem system(test::FaultySystem::Call::Pread, EIO);
    char byte = 0;
    EXPECT_THAT(
        [&] { archive.readAt(0, &byte, 1); },
        testing::ThrowsMessage<std::runtime_error>(mPath.toNativeString() + ": " + std::strerror(EIO)));
}

TEST_F(ZipArchiveTest, missingFileIsReportedWithTheSystemsReason)
{
    EXPECT_THAT(
        [&] { ZipUtils::ZipArchive archive(mPath); },
        testing::ThrowsMessage<std::runtime_error>(mPath.toNativeString() + ": " + std::strerror(ENOENT)));
}
