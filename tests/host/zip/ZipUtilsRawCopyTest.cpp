// The properties of a member that a raw copy preserves, and the members that it refuses.
#include "tests/host/zip/RawCopyTest.h"

using test::ArchiveBuilder;
using test::ArchiveMember;
using test::copyAll;
using test::copyFirstAs;
using test::readArchive;
using test::ReadMember;

namespace {

class ZipUtilsRawCopyTest : public test::RawCopyTest
{
};

ArchiveMember& addOddMember(ArchiveBuilder& builder, const std::string& name)
{
    ArchiveMember& member = builder.add(name, test::sampleBytes(3000, 7));
    member.versionMadeBy = 0x0A3F;
    member.versionNeeded = 0x0115;
    member.internalAttributes = 1;
    member.externalAttributes = 0xA1FF0021;
    member.comment = "a comment \xC3\xBC";
    member.extra = std::string("UT\x05\x00\x01\x10\x20\x30\x40", 9);
    member.localExtra = std::string("UT\x09\x00\x03\x10\x20\x30\x40\x50\x60\x70\x80", 13);
    return member;
}

void expectSameMember(const ReadMember& copy, const ReadMember& original)
{
    EXPECT_EQ(copy.name, original.name);
    EXPECT_EQ(copy.content, original.content);
    EXPECT_EQ(copy.versionMadeBy, original.versionMadeBy);
    EXPECT_EQ(copy.versionNeeded, original.versionNeeded);
    EXPECT_EQ(copy.flags, original.flags & ~8U);
    EXPECT_EQ(copy.method, original.method);
    EXPECT_EQ(copy.dosDate, original.dosDate);
    EXPECT_EQ(copy.checksum, original.checksum);
    EXPECT_EQ(copy.compressedSize, original.compressedSize);
    EXPECT_EQ(copy.internalAttributes, original.internalAttributes);
    EXPECT_EQ(copy.externalAttributes, original.externalAttributes);
    EXPECT_EQ(copy.comment, original.comment);
}

} // namespace

TEST_F(ZipUtilsRawCopyTest, keepsAllThatTheDirectorySays)
{
    addOddMember(mSource, "plain");
    addOddMember(mSource, "described").flags = 8;
    addOddMember(mSource, "\xC3\xBC.png").flags = 0x0800;
    addOddMember(mSource, "stored").method = ArchiveMember::kStored;
    addOddMember(mSource, "for any version").versionNeeded = 0;
    const fileString source = writeSource();
    EXPECT_EQ(copyAll(source, target()), std::vector<bool>(5, true));
    const std::vector<ReadMember> originals = readArchive(source);
    const std::vector<ReadMember> copies = readArchive(target());
    ASSERT_EQ(copies.size(), originals.size());
    for (std::size_t i = 0; i < copies.size(); ++i) {
        expectSameMember(copies[i], originals[i]);
        EXPECT_EQ(copies[i].extra, std::string("UT\x05\x00\x01\x10\x20\x30\x40", 9));
    }
}

TEST_F(ZipUtilsRawCopyTest, keepsTheExtraFieldsOfBothHeaders)
{
    for (const bool described : {false, true}) {
        ArchiveBuilder builder;
        addOddMember(builder, "a").flags = described ? 8 : 0;
        copyAll(builder.write(mFolder, "extra.zip"), mFolder.file(described ? "1.zip" : "0.zip"));
        const std::string bytes = test::readFile(mFolder.file(described ? "1.zip" : "0.zip"));
        EXPECT_NE(bytes.find(std::string("UT\x09\x00\x03\x10\x20\x30\x40\x50\x60\x70\x80", 13)),
                  std::string::npos);
    }
}

TEST_F(ZipUtilsRawCopyTest, localHeaderThatDiffersFromTheDirectoryIsMadeAnew)
{
    mSource.add("a", "content");
    const std::string bytes = mSource.bytes();
    copyAll(mFolder.write("source.zip", bytes), target());
    const std::string expected = test::readFile(target());
    for (const std::size_t at : {4U, 6U, 10U, 12U}) { // version, flags, time, date
        std::string differing = bytes;
        differing[at] ^= 4;
        const fileString copy = mFolder.file("copy" + std::to_string(at));
        copyAll(mFolder.write("source.zip", differing), copy);
        EXPECT_TRUE(test::readFile(copy) == expected) << at;
    }
}

TEST_F(ZipUtilsRawCopyTest, zip64FieldIsMadeAnewAndGoesWhereItIsNotNeeded)
{
    addOddMember(mSource, "wide").zip64 = true;
    mSource.zip64End = true;
    EXPECT_EQ(copyAll(writeSource(), target()), std::vector<bool>{true});
    const std::vector<ReadMember> copies = readArchive(target());
    ASSERT_EQ(copies.size(), 1U);
    EXPECT_EQ(copies[0].content, test::sampleBytes(3000, 7));
    EXPECT_EQ(copies[0].extra, std::string("UT\x05\x00\x01\x10\x20\x30\x40", 9));
}

TEST_F(ZipUtilsRawCopyTest, memberOfMoreThanFourGigabytesKeepsItsSize)
{
    constexpr std::uint64_t kHuge = 5'000'000'000;
    ArchiveMember& member = mSource.add("huge.bz", "");
    member.method = 12; // the copy does not decompress the data
    member.rawData = test::sampleBytes(5'000'000, 1);
    member.size = kHuge;
    member.zip64 = true;
    EXPECT_EQ(copyAll(writeSource(), target()), std::vector<bool>{true});
    EXPECT_EQ(ZipUtils::getSizeOfArchive(target()), kHuge);
    const std::string bytes = test::readFile(target());
    const std::string size("\x00\xF2\x05\x2A\x01\x00\x00\x00", 8);
    const std::string compressedSize("\x40\x4B\x4C\x00\x00\x00\x00\x00", 8);
    // The zip64 fields: both sizes behind the local header and its name, and at the end of the directory only
    // the size that does not fit into 32 bits.
    EXPECT_EQ(bytes.substr(30 + 7, 20), std::string("\x01\x00\x10\x00", 4) + size + compressedSize);
    EXPECT_EQ(bytes.substr(bytes.size() - 22 - 12, 12), std::string("\x01\x00\x08\x00", 4) + size);
    EXPECT_TRUE(bytes.compare(30 + 7 + 20, member.rawData->size(), *member.rawData) == 0);
}

TEST_F(ZipUtilsRawCopyTest, sizeThatLooksLikeAReferenceGoesIntoAZip64Field)
{
    ArchiveMember& member = mSource.add("a", "");
    member.method = 12; // the copy does not decompress the data
    member.rawData = std::string(5'000'000, 'x');
    member.size = 0xFFFFFFFF;
    member.zip64 = true;
    EXPECT_TRUE(copyFirstAs(writeSource(), target(), "b"));
    EXPECT_EQ(ZipUtils::getSizeOfArchive(target()), 0xFFFFFFFFU);
    const std::string bytes = test::readFile(target());
    EXPECT_EQ(bytes.substr(4, 1), "\x2D"); // needs version 4.5
    EXPECT_EQ(bytes.substr(18, 8), std::string(8, '\xFF'));
    EXPECT_EQ(bytes.substr(30 + 1, 12), std::string("\x01\x00\x10\x00\xFF\xFF\xFF\xFF\x00\x00\x00\x00", 12));
}

TEST_F(ZipUtilsRawCopyTest, copiesForeignMethodsAsTheyAre)
{
    ArchiveMember& member = mSource.add("a.bz", "");
    member.method = 12;
    member.rawData = "what only its method understands";
    member.size = 100;
    member.checksum = 0x12345678;
    EXPECT_EQ(copyAll(writeSource(), target()), std::vector<bool>{true});
    EXPECT_NE(test::readFile(target()).find("what only its method understands"), std::string::npos);
}

TEST_F(ZipUtilsRawCopyTest, encryptedMemberIsCopiedUnlessItHasADescriptor)
{
    ArchiveMember& plain = mSource.add("a", "");
    plain.flags = 1;
    plain.method = ArchiveMember::kStored;
    plain.rawData = "twelve bytesdata";
    plain.size = 4;
    ArchiveMember described = plain;
    mSource.add("b", "") = described;
    EXPECT_EQ(copyAll(writeSource(), target()), (std::vector<bool>{true, true}));

    ArchiveBuilder builder;
    described.flags = 9;
    builder.add("b", "") = described;
    EXPECT_EQ(copyAll(builder.write(mFolder, "b.zip"), mFolder.file("none.zip")), std::vector<bool>{false});
    EXPECT_FALSE(mFolder.file("none.zip").pathExists());
}

TEST_F(ZipUtilsRawCopyTest, refusesUnsafeNamesAndLeavesTheTargetAlone)
{
    mSource.add("a", "content");
    const fileString source = writeSource();
    const std::vector<std::string> names{"",
                                         "/etc/x",
                                         "\\x",
                                         "../x",
                                         "a/../x",
                                         "a/..",
                                         "..",
                                         "a\\..\\b",
                                         "C:",
                                         "C:\\x",
                                         "c:/x",
                                         "a:/x",
                                         "z:/x",
                                         "A:/x",
                                         "Z:/x",
                                         std::string("a\0b", 3),
                                         std::string(4097, 'n')};
    for (const bool exists : {false, true}) {
        if (exists)
            mFolder.write("target.zip", "not an archive");
        for (const std::string& name : names) {
            EXPECT_FALSE(copyFirstAs(source, target(), name)) << name;
            EXPECT_FALSE(copyFirstAs(source, target(), name, false)) << name;
        }
        EXPECT_EQ(target().pathExists(), exists);
    }
    EXPECT_EQ(test::readFile(target()), "not an archive");
    EXPECT_EQ(test::listTree(mFolder.path()), (std::vector<std::string>{"source.zip", "target.zip"}));
}

TEST_F(ZipUtilsRawCopyTest, acceptsNamesThatOnlyLookUnsafe)
{
    mSource.add("a", "content");
    const fileString source = writeSource();
    for (const std::string& name :
         {std::string("..a"), std::string("a.."), std::string("a/...b"), std::string("ab:c"),
          std::string("C:x"), std::string("a::b.png"), std::string(4096, 'n'), std::string("a/"),
          std::string("1:/x"), std::string("`:/x"), std::string("{:/x"), std::string("@:/x"),
          std::string("[:/x")})
        EXPECT_TRUE(copyFirstAs(source, target(), name)) << name;
    EXPECT_EQ(readArchive(target()).size(), 13U);
}

TEST_F(ZipUtilsRawCopyTest, extraBlockThatHasNoRoomForItsSizesIsRefused)
{
    const auto blockOf = [](std::size_t size) {
        std::string block("XX", 2);
        block += static_cast<char>((size - 4) & 0xFF);
        block += static_cast<char>((size - 4) >> 8);
        return block + std::string(size - 4, 'x');
    };
    // The unknown method keeps the copy from checking the size. With a descriptor the local header needs no
    // zip64 field before the copy.
    const auto addLarge = [&](const std::string& name, std::size_t blockSize) {
        ArchiveMember& member = mSource.add(name, "");
        member.method = 99;
        member.flags = 8;
        member.rawData = std::string(5U << 20U, 'x');
        member.size = 0xFFFFFFFF;
        member.extra = std::string("\x01\0\x08\0\0\0\0\x40\x01\0\0\0", 12); // a size of 5 GB
        member.localExtra = blockOf(blockSize);
    };
    mSource.add("small", "1").localExtra = blockOf(65535);
    addLarge("fits", 65535 - 20);
    addLarge("too long", 65535 - 19);
    mSource.add("last", "2");
    EXPECT_EQ(copyAll(writeSource(), target()), (std::vector<bool>{true, true, false, true}));
    EXPECT_EQ(ZipUtils::getSizeOfArchive(target()), (std::uint64_t(5) << 30U) + 2);
}

TEST_F(ZipUtilsRawCopyTest, newNameIsMarkedAsUtf8WhenItIs)
{
    mSource.add("a", "content").extra = std::string("\x75\x70\x06\x00\x01\x00\x00\x00\x00x", 10);
    const fileString source = writeSource();
    EXPECT_TRUE(copyFirstAs(source, target(), "\xC3\xBC"));
    EXPECT_TRUE(copyFirstAs(source, target(), "\xFC"));
    EXPECT_TRUE(copyFirstAs(source, target(), "b"));
    const std::vector<ReadMember> copies = readArchive(target());
    ASSERT_EQ(copies.size(), 3U);
    EXPECT_EQ(copies[0].flags, 0x0800U);
    EXPECT_EQ(copies[0].extra, "");
    EXPECT_EQ(copies[1].flags, 0U);
    EXPECT_EQ(copies[2].flags, 0U);
}
