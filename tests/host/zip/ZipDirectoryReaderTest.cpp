#include "OrvLibrary/host/impl/zip/ZipDirectoryReader_p.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "tests/support/ArchiveBuilder.h"

using testing::EndsWith;
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

TEST_F(ZipDirectoryReaderTest, directoryOf256MegabytesIsTheLargest)
{
    constexpr std::uint64_t kMost = 256U << 20U;
    for (const std::uint64_t size : {kMost, kMost + 1}) {
        test::ArchiveBuilder builder;
        builder.directorySize = size;
        builder.directoryOffset = 1; // it begins at 0, so this is the next fault
        // The directory is a hole in the file.
        const fileString path = mFolder.write("a.zip", "");
        std::filesystem::resize_file(path.toNativeString(), size);
        std::ofstream(path.toNativeString(), std::ios::app) << builder.bytes();
        EXPECT_THAT(reasonFor(path),
                    EndsWith(size == kMost ? ": bad directory offset" : ": bad directory size"));
    }
}

TEST_F(ZipDirectoryReaderTest, memberBehindTheDirectoryIsRefused)
{
    test::ArchiveBuilder behind;
    behind.add("a", "content");
    const std::string bytes = behind.bytes();
    mBuilder.comment = bytes.substr(0, bytes.find("PK\x01\x02"));
    mBuilder.add("a", "content").headerOffset = bytes.size(); // the comment begins there
    EXPECT_THAT(reasonFor(mBuilder.write(mFolder, "a.zip")), HasSubstr("\"a\": lies outside the archive"));
}

TEST_F(ZipDirectoryReaderTest, dataEndBeforeTheDirectory)
{
    test::ArchiveMember& member = mBuilder.add("a", "content");
    member.rawData = test::deflated("content");
    EXPECT_EQ(reasonFor(mBuilder.write(mFolder, "a.zip")), "");
    member.compressedSize = member.rawData->size() + 1;
    EXPECT_THAT(reasonFor(mBuilder.write(mFolder, "a.zip")), HasSubstr("\"a\": lies outside the archive"));
}

TEST_F(ZipDirectoryReaderTest, localHeaderThatDisagreesInOneFieldIsRefused)
{
    mBuilder.add("a", "content");
    const std::string bytes = mBuilder.bytes();
    ASSERT_EQ(reasonFor(mFolder.write("a.zip", bytes)), "");
    // Whether it is encrypted, method, checksum, both sizes, name.
    for (const std::size_t at : {6U, 8U, 14U, 18U, 22U, 26U, 30U}) {
        std::string wrong = bytes;
        wrong[at] ^= 1;
        EXPECT_THAT(reasonFor(mFolder.write("a.zip", wrong)),
                    EndsWith("differs between local header and directory"))
            << at;
    }
}

TEST_F(ZipDirectoryReaderTest, numbersOfDisksMayBothBeElsewhere)
{
    mBuilder.add("a", "1");
    const std::string bytes = mBuilder.bytes();
    const std::size_t end = bytes.size() - 22;
    const auto with = [&](std::size_t at, std::size_t size) {
        return mFolder.write("a.zip", std::string(bytes).replace(end + at, size, size, '\xFF'));
    };
    EXPECT_EQ(reasonFor(with(4, 4)), "");
    for (const std::size_t at : {4U, 6U})
        EXPECT_THAT(reasonFor(with(at, 2)), HasSubstr("spans several disks"));
}

TEST_F(ZipDirectoryReaderTest, endRecordsThatDisagreeInOneFieldAreRefused)
{
    mBuilder.add("a", "content");
    mBuilder.zip64End = true;
    const std::string bytes = mBuilder.bytes();
    const std::size_t end = bytes.size() - 22;
    const std::size_t wide = end - 20 - 56;
    struct Field
    {
        std::size_t inShort, inWide, size;
    };
    for (const Field& field : {Field{10, 32, 2}, Field{12, 40, 4}, Field{16, 48, 4}}) {
        // This field is in both records, the others are in the wide one.
        std::string both = bytes;
        both.replace(end + field.inShort, field.size, bytes, wide + field.inWide, field.size);
        both.replace(end + 8, 2, both, end + 10, 2);
        EXPECT_EQ(reasonFor(mFolder.write("a.zip", both)), "") << field.inShort;
        both[wide + field.inWide] ^= 1;
        both[wide + 24] = both[wide + 32];
        EXPECT_THAT(reasonFor(mFolder.write("a.zip", both)), EndsWith("the two end records disagree"));
    }
}

TEST_F(ZipDirectoryReaderTest, zip64FieldThatNoSizeRefersToIsIgnored)
{
    test::ArchiveMember& member = mBuilder.add("a", "content");
    member.localExtra = member.extra = std::string("\x01\0\x10\0", 4) + std::string(16, 'x');
    const ZipUtils::ZipArchive archive(mBuilder.write(mFolder, "a.zip"));
    EXPECT_EQ(archive.entries().at(0).size, 7U);
}

TEST_F(ZipDirectoryReaderTest, recordOfTheDirectoryMustBeWhole)
{
    mBuilder.add("", "content"); // a name may be empty
    const std::string bytes = mBuilder.bytes();
    ASSERT_EQ(reasonFor(mFolder.write("a.zip", bytes)), "");
    const std::size_t record = bytes.find("PK\x01\x02");
    // Its signature, and the sizes of name, extra block and comment.
    for (const std::size_t at : {0U, 28U, 30U, 32U}) {
        std::string wrong = bytes;
        wrong[record + at] ^= 1;
        EXPECT_THAT(reasonFor(mFolder.write("a.zip", wrong)), EndsWith(": bad directory record")) << at;
    }
}
