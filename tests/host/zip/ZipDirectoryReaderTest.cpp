#include "OrvLibrary/host/impl/zip/ZipDirectoryReader_p.h"

#include <gmock/gmock.h>

#include "tests/support/ArchiveBuilder.h"

using testing::HasSubstr;

namespace {

class ZipDirectoryReaderTest : public testing::Test
{
protected:
    /// Writes the number of a disk into the directory's first record.
    fileString onDisk(std::uint16_t disk) const
    {
        std::string bytes = mBuilder.bytes();
        std::string number;
        ZipUtils::put16(number, disk);
        bytes.replace(bytes.find("PK\x01\x02") + 34, 2, number);
        return mFolder.write("a.zip", bytes);
    }
    static std::string reasonFor(const fileString& path)
    {
        try {
            const ZipUtils::ZipArchive archive(path);
            return {};
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    test::TempFolder mFolder;
    test::ArchiveBuilder mBuilder;
};

} // namespace

TEST_F(ZipDirectoryReaderTest, memberOfAnotherDiskIsRefused)
{
    mBuilder.add("a", "1");
    EXPECT_EQ(reasonFor(onDisk(0)), "");
    EXPECT_EQ(reasonFor(onDisk(0xFFFF)), ""); // the number is elsewhere
    EXPECT_THAT(reasonFor(onDisk(1)), HasSubstr("\"a\": lies on another disk"));
}

TEST_F(ZipDirectoryReaderTest, directoryLargerThanTheFileIsRefusedBeforeItIsRead)
{
    mBuilder.add("a", "1");
    for (const std::uint64_t size : {10'000ULL, 300ULL << 20U}) {
        mBuilder.directorySize = size;
        EXPECT_THAT(reasonFor(mBuilder.write(mFolder, "a.zip")), HasSubstr(": bad directory size")) << size;
    }
}
