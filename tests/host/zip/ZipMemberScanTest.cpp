// The members of an archive that has lost its directory.
#include "OrvLibrary/host/impl/zip/ZipMemberScan_p.h"

#include <fstream>

#include <gmock/gmock.h>

#include "OrvLibrary/host/impl/zip/ZipMember_p.h"
#include "tests/support/ArchiveBuilder.h"

using test::ArchiveBuilder;
using test::ArchiveMember;
using testing::ElementsAre;
using testing::Pair;

namespace {

class ZipMemberScanTest : public testing::Test
{
protected:
    using Contents = std::vector<std::pair<std::string, std::string>>;

    /// Cuts the end off, and reads the members that are found.
    Contents found(const std::string& bytes) const
    {
        std::vector<ZipUtils::DamagedMember> rejected;
        const ZipUtils::ZipArchive archive(mFolder.write("a.zip", bytes.substr(0, bytes.size() - 30)),
                                           rejected);
        EXPECT_EQ(rejected.size(), 1U) << "the directory";
        Contents contents;
        for (const ZipUtils::ZipEntry& entry : archive.entries()) {
            const std::vector<unsigned char> content = ZipUtils::readWholeMember(archive, entry);
            contents.emplace_back(std::string(entry.name), std::string(content.begin(), content.end()));
        }
        return contents;
    }

    /// The bytes that this process has read from files until now.
    static long long bytesRead()
    {
        std::ifstream about("/proc/self/io");
        std::string label;
        long long bytes = -1;
        about >> label >> bytes;
        EXPECT_EQ(label, "rchar:");
        return bytes;
    }

    test::TempFolder mFolder;
    ArchiveBuilder mBuilder;
};

} // namespace

TEST_F(ZipMemberScanTest, dataBeginsBehindTheExtraBlock)
{
    mBuilder.add("short", "1").localExtra = std::string("UT\x05\x00\x01\x10\x20\x30\x40", 9);
    mBuilder.add("long", "2").localExtra = std::string("XX\xFC\x01", 4) + std::string(0x1FC, 'x');
    EXPECT_THAT(found(mBuilder.bytes()), ElementsAre(Pair("short", "1"), Pair("long", "2")));
}

TEST_F(ZipMemberScanTest, manySmallMembersAreNotReadManyTimes)
{
    for (int number = 0; number < 200; ++number) {
        mBuilder.add("plain " + std::to_string(number), "1");
        mBuilder.add("described " + std::to_string(number), "2").flags = 8;
    }
    const std::string large = test::sampleBytes(3'000'000, 1);
    mBuilder.add("large", large);
    mBuilder.add("last", "3");
    const std::string bytes = mBuilder.bytes();
    const long long before = bytesRead();
    const Contents contents = found(bytes);
    EXPECT_EQ(contents.size(), 402U);
    EXPECT_THAT(contents.back(), Pair("last", "3"));
    EXPECT_LT(bytesRead() - before, 40'000'000); // a megabyte for each member would be 400
}

TEST_F(ZipMemberScanTest, zip64FieldHasBothSizes)
{
    const std::string content = test::sampleBytes(1000, 1);
    mBuilder.add("wide", content).zip64 = true;
    mBuilder.add("last", "2");
    EXPECT_THAT(found(mBuilder.bytes()), ElementsAre(Pair("wide", content), Pair("last", "2")));
}

TEST_F(ZipMemberScanTest, zip64FieldThatNoSizeRefersToIsIgnored)
{
    mBuilder.add("a", "1").localExtra = std::string("\x01\0\x10\0", 4) + std::string(16, 'x');
    mBuilder.add("last", "2");
    EXPECT_THAT(found(mBuilder.bytes()), ElementsAre(Pair("a", "1"), Pair("last", "2")));
}

TEST_F(ZipMemberScanTest, checksumBehindTheDataMayFollowASignatureOrNot)
{
    const std::string content = test::sampleBytes(1000, 1);
    mBuilder.add("described", content).flags = 8;
    mBuilder.add("last", "2");
    std::string bytes = mBuilder.bytes();
    const std::size_t descriptor = bytes.find("PK\x07\x08");
    ASSERT_NE(descriptor, std::string::npos);
    EXPECT_THAT(found(bytes), ElementsAre(Pair("described", content), Pair("last", "2")));
    std::string wrong = bytes;
    wrong[descriptor + 4] ^= 1;
    EXPECT_THAT(found(wrong), ElementsAre(Pair("last", "2")));
    bytes.erase(descriptor, 4);
    EXPECT_THAT(found(bytes), ElementsAre(Pair("described", content), Pair("last", "2")));
    bytes[descriptor] ^= 1;
    EXPECT_THAT(found(bytes), ElementsAre(Pair("last", "2")));
}

TEST_F(ZipMemberScanTest, unusableMembersAreLeftOut)
{
    mBuilder.add("encrypted", "1").flags = 1;
    mBuilder.add("foreign method", "1").method = 12;
    mBuilder.add("", "1");
    ArchiveMember& stored = mBuilder.add("stored in another size", "1");
    stored.method = ArchiveMember::kStored;
    stored.size = 2;
    mBuilder.add("bomb", "1").size = 3'000'000'000;
    mBuilder.add("sound", "1");
    EXPECT_THAT(found(mBuilder.bytes()), ElementsAre(Pair("sound", "1")));
}

TEST_F(ZipMemberScanTest, memberCutShortIsLeftOut)
{
    mBuilder.add("sound", "1");
    const std::size_t size = mBuilder.bytes().find("PK\x01\x02");
    mBuilder.add("cut", test::sampleBytes(100, 1)).localExtra =
        std::string("XX\x20\0", 4) + std::string(32, 'x');
    const std::string bytes = mBuilder.bytes();
    // In its header, its name, its extra block, its data.
    for (const std::size_t cut : {29U, 31U, 40U, 80U})
        EXPECT_THAT(found(bytes.substr(0, size + cut + 30)), ElementsAre(Pair("sound", "1"))) << cut;
}
