// Reading archives: walks, names, sizes, and members as a whole or in pieces.
#include "OrvLibrary/host/ZipUtils.h"

#include <chrono>
#include <ctime>
#include <new>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/ArchiveBuilder.h"

using test::ArchiveBuilder;
using test::ArchiveMember;

namespace {

std::vector<std::string> walkedNames(const fileString& archive)
{
    std::vector<std::string> names;
    ZipUtils::getFilesDataInArchive(archive, [&](const fileString& member, auto&, const auto&) {
        names.push_back(member.toNativeString());
        return true;
    });
    return names;
}

fileString address(const fileString& archive, const std::string& member)
{
    return archive + ZipUtils::getDelimiter() + fileString(member);
}

std::string readWhole(const fileString& memberAddress)
{
    std::string content;
    ZipUtils::writeFileDataFromArchive(memberAddress, [&](const std::vector<unsigned char>& data) {
        content.append(data.begin(), data.end());
    });
    return content;
}

std::string readInPieces(const fileString& memberAddress, std::size_t pieceSize)
{
    ZipUtils::ZipInputStream stream(memberAddress);
    std::string content;
    while (stream.isFileOpen() && !stream.reachedEOF()) {
        const std::vector<unsigned char> piece = stream.readArchivedFile(pieceSize);
        EXPECT_LE(piece.size(), pieceSize);
        content.append(piece.begin(), piece.end());
    }
    EXPECT_TRUE(stream.readArchivedFile(pieceSize).empty());
    return content;
}

/// The message of the exception that `function` throws, or an empty string.
template <typename Function>
std::string reasonOf(Function function)
{
    try {
        function();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

class ZipUtilsTest : public testing::Test
{
protected:
    test::TempFolder mFolder;
    ArchiveBuilder mBuilder;
};

} // namespace

TEST_F(ZipUtilsTest, extensionIsZipWithItsDot)
{
    EXPECT_EQ(ZipUtils::getExtension().toNativeString(), ".zip");
}

TEST_F(ZipUtilsTest, walkGoesInArchiveOrder)
{
    mBuilder.add("b.png", "bbb");
    mBuilder.add("a/", "").method = ArchiveMember::kStored;
    mBuilder.add("a/c.png", "c");
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    const std::vector<std::string> expected{"b.png", "a/", "a/c.png"};
    EXPECT_EQ(walkedNames(archive), expected);
    std::vector<std::string> names;
    for (const fileString& name : ZipUtils::getFilenamesInArchive(archive))
        names.push_back(name.toNativeString());
    EXPECT_EQ(names, expected);
    EXPECT_EQ(ZipUtils::getSizeOfArchive(archive), 4U);
}

TEST_F(ZipUtilsTest, walkStopsWhenTheCallbackReturnsFalse)
{
    for (const char* name : {"a", "b", "c"})
        mBuilder.add(name, name);
    int calls = 0;
    ZipUtils::getFilesDataInArchive(mBuilder.write(mFolder, "a.zip"),
                                    [&](const fileString&, auto&, const auto&) { return ++calls < 2; });
    EXPECT_EQ(calls, 2);
}

TEST_F(ZipUtilsTest, walkHandsOutDoubledNamesEachTime)
{
    mBuilder.add("a", "1");
    mBuilder.add("a", "2");
    EXPECT_EQ(walkedNames(mBuilder.write(mFolder, "a.zip")), (std::vector<std::string>{"a", "a"}));
}

TEST_F(ZipUtilsTest, emptyArchiveOf22BytesHasNoMembers)
{
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    EXPECT_EQ(test::readFile(archive).size(), 22U);
    EXPECT_TRUE(walkedNames(archive).empty());
    EXPECT_TRUE(ZipUtils::getFilenamesInArchive(archive).empty());
    EXPECT_EQ(ZipUtils::getSizeOfArchive(archive), 0U);
}

TEST_F(ZipUtilsTest, exceptionOfTheCallbackPassesThrough)
{
    mBuilder.add("a", "1");
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    EXPECT_THROW(
        ZipUtils::getFilesDataInArchive(
            archive, [](const fileString&, auto&, const auto&) -> bool { throw std::domain_error("mine"); }),
        std::domain_error);
}

TEST_F(ZipUtilsTest, wholeMemberAndPiecesGiveTheSameBytes)
{
    const std::string big = test::sampleBytes(1500000, 1);
    const std::string bigger = test::sampleBytes(9000000, 2); // may be read into large memory pages
    mBuilder.add("bigger", bigger);
    mBuilder.add("deflated", big);
    mBuilder.add("stored", big).method = ArchiveMember::kStored;
    mBuilder.add("described", big).flags = 8;
    mBuilder.add("empty", "");
    mBuilder.add("emptyStored", "").method = ArchiveMember::kStored;
    mBuilder.add("wide", big).zip64 = true;
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    EXPECT_TRUE(readWhole(address(archive, "bigger")) == bigger);
    EXPECT_TRUE(readInPieces(address(archive, "bigger"), 700001) == bigger);
    for (const char* name : {"deflated", "stored", "described", "wide"}) {
        EXPECT_TRUE(readWhole(address(archive, name)) == big) << name;
        EXPECT_TRUE(readInPieces(address(archive, name), 700001) == big) << name;
    }
    for (const char* name : {"empty", "emptyStored"}) {
        EXPECT_EQ(readWhole(address(archive, name)), "");
        EXPECT_EQ(readInPieces(address(archive, name), 10), "");
    }
}

TEST_F(ZipUtilsTest, wideSizesAreFoundBehindOtherExtraFields)
{
    const std::string content = test::sampleBytes(100000, 1);
    ArchiveMember& member = mBuilder.add("wide", content);
    member.zip64 = member.zip64Last = true;
    member.localExtra = std::string("UT\x05\x00\x01\x10\x20\x30\x40ux\x02\x00\x01\x02", 15);
    member.extra = member.localExtra;
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    EXPECT_TRUE(readWhole(address(archive, "wide")) == content);
    EXPECT_EQ(ZipUtils::getSizeOfArchive(archive), content.size());
}

TEST_F(ZipUtilsTest, lastOfSeveralMembersOfOneNameCounts)
{
    mBuilder.add("a", "old");
    mBuilder.add("a", "new");
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    EXPECT_EQ(readWhole(address(archive, "a")), "new");
    EXPECT_EQ(readInPieces(address(archive, "a"), 2), "new");
}

TEST_F(ZipUtilsTest, missingMemberIsNamed)
{
    mBuilder.add("a", "1");
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    const std::string reason = reasonOf([&] { readWhole(address(archive, "A")); });
    EXPECT_NE(reason.find(archive.toNativeString()), std::string::npos) << reason;
    EXPECT_NE(reason.find("\"A\""), std::string::npos) << reason;
    EXPECT_THROW(ZipUtils::ZipInputStream(address(archive, "b")), std::runtime_error);
    EXPECT_THROW(ZipUtils::ZipInputStream(fileString("no delimiter")), std::runtime_error);
}

TEST_F(ZipUtilsTest, delimiterMayOccurInPathsAndMemberNames)
{
    mBuilder.add("x::y", "inner");
    const fileString archive = mBuilder.write(mFolder, "a::b/c::d.zip");
    EXPECT_EQ(readWhole(address(archive, "x::y")), "inner");
}

TEST_F(ZipUtilsTest, firstOccurrenceWithARegularFileOnItsLeftSeparates)
{
    ArchiveBuilder outer;
    outer.add("b.zip::x", "of the outer one");
    const fileString archive = outer.write(mFolder, "a");
    mBuilder.add("x", "of the other one");
    const fileString other = mBuilder.write(mFolder, "a::b.zip");
    EXPECT_EQ(readWhole(address(other, "x")), "of the outer one");
}

TEST_F(ZipUtilsTest, addressIsSplitWhereAnArchiveHoldsTheMember)
{
    mFolder.write("a", "no archive");
    mBuilder.add("b::c.png", "content");
    const fileString archive = mBuilder.write(mFolder, "a::b.zip");
    EXPECT_EQ(readWhole(address(archive, "b::c.png")), "content");
    EXPECT_EQ(readInPieces(address(archive, "b::c.png"), 3), "content");
    const std::string reason = reasonOf([&] { readWhole(address(archive, "d")); });
    EXPECT_NE(reason.find(mFolder.file("a").toNativeString() + ": not a zip"), std::string::npos) << reason;
}

TEST_F(ZipUtilsTest, memberNamesMayHoldTheDelimiterAtTheirStart)
{
    mBuilder.add("a::b.png", "1");
    mBuilder.add("::", "2");
    const fileString archive = mBuilder.write(mFolder, "x.zip");
    EXPECT_EQ(readWhole(address(archive, "a::b.png")), "1");
    EXPECT_EQ(readWhole(address(archive, "::")), "2");
}

TEST_F(ZipUtilsTest, changedArchiveIsReadAnewHoweverSoon)
{
    for (int i = 0; i < 20; ++i) {
        ArchiveBuilder builder;
        builder.add("a", std::to_string(i % 10)); // same file, same size
        EXPECT_EQ(readWhole(address(builder.write(mFolder, "a.zip"), "a")), std::to_string(i % 10));
    }
}

TEST_F(ZipUtilsTest, directoryOfAnOldArchiveIsReadOnce)
{
    for (int i = 0; i < 3000; ++i)
        mBuilder.add("m" + std::to_string(i), "x").method = ArchiveMember::kStored;
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    const auto timeOf = [&] {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 200; ++i)
            EXPECT_EQ(readWhole(address(archive, "m" + std::to_string(i))), "x");
        return std::chrono::steady_clock::now() - start;
    };
    // A new file may change again without a new modification time, so its directory is read for each of the
    // 200 members.
    const auto whileNew = timeOf();
    while (std::time(nullptr) - archive.modificationTime() < 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_LT(timeOf(), whileNew / 10);
}

TEST_F(ZipUtilsTest, readInsideAWalkStaysInTheWalkedArchive)
{
    ArchiveBuilder outer;
    outer.add("b.zip::x", "of the outer one");
    outer.write(mFolder, "a");
    mBuilder.add("x", "of the walked one");
    const fileString walked = mBuilder.write(mFolder, "a::b.zip");
    std::string content;
    ZipUtils::getFilesDataInArchive(walked, [&](const fileString& member, auto&, const auto&) {
        content = readWhole(walked + ZipUtils::getDelimiter() + member);
        return true;
    });
    EXPECT_EQ(content, "of the walked one");
}

TEST_F(ZipUtilsTest, readInsideAWalkVerifiesNothingOfAnotherWalk)
{
    ArchiveBuilder other;
    other.add("a", "sound");
    const fileString sound = other.write(mFolder, "sound.zip");
    mBuilder.add("a", "damaged").checksum = 1;
    const auto readSound = [&](const fileString&, auto&, const auto&) {
        EXPECT_EQ(readWhole(address(sound, "a")), "sound");
        return true;
    };
    EXPECT_THROW(ZipUtils::getFilesDataInArchive(mBuilder.write(mFolder, "a.zip"),
                                                 [&](const fileString&, auto&, const auto&) {
                                                     ZipUtils::getFilesDataInArchive(sound, readSound);
                                                     return true;
                                                 }),
                 std::runtime_error);
}

TEST_F(ZipUtilsTest, streamOutlivesTheWalkThatItBeganIn)
{
    mBuilder.add("x", "content");
    const fileString archive = mBuilder.write(mFolder, "a.zip");
    std::unique_ptr<ZipUtils::ZipInputStream> stream;
    ZipUtils::getFilesDataInArchive(archive, [&](const fileString&, auto&, const auto&) {
        stream = std::make_unique<ZipUtils::ZipInputStream>(address(archive, "x"));
        return true;
    });
    EXPECT_EQ(stream->readArchivedFile(100).size(), 7U);
    EXPECT_TRUE(stream->reachedEOF());
}

TEST_F(ZipUtilsTest, pieceOverTheLimitIsAnAllocationFailure)
{
    constexpr std::uint64_t kLimit = 512U << 20U;
    for (const std::uint64_t size : {kLimit, kLimit + 1}) {
        ArchiveBuilder builder;
        ArchiveMember& member = builder.add("large", "");
        member.rawData = std::string(500000, '\xFF'); // not a deflate stream
        member.size = size;
        const fileString large = address(builder.write(mFolder, "a.zip"), "large");
        if (size > kLimit) {
            EXPECT_THROW(readWhole(large), std::bad_alloc);
        } else {
            EXPECT_THROW(readWhole(large), std::runtime_error);
        }
        EXPECT_THROW(readInPieces(large, 1000), std::runtime_error);
    }
}

TEST_F(ZipUtilsTest, prefixBeforeTheArchiveIsAllowed)
{
    for (const bool counts : {true, false}) {
        ArchiveBuilder builder;
        builder.prefix = std::string(5000, '#');
        builder.offsetsCountPrefix = counts;
        builder.comment = "a comment";
        builder.add("a", "content");
        const fileString archive = builder.write(mFolder, "a.zip");
        EXPECT_EQ(readWhole(address(archive, "a")), "content") << counts;
        builder.zip64End = true;
        EXPECT_EQ(readWhole(address(builder.write(mFolder, "b.zip"), "a")), "content") << counts;
    }
}

TEST_F(ZipUtilsTest, commentAndNameMayEndWithAZip64Locator)
{
    const std::string locator("PK\x06\x07zip64 locator...", 20);
    ASSERT_EQ(locator.size(), 20U);
    mBuilder.add("first", "content");
    ArchiveBuilder named = mBuilder;
    named.add(locator, "content");
    EXPECT_EQ(walkedNames(named.write(mFolder, "a.zip")).size(), 2U);
    mBuilder.add("last", "content").comment = locator;
    EXPECT_EQ(walkedNames(mBuilder.write(mFolder, "a.zip")).size(), 2U);
}

TEST_F(ZipUtilsTest, zip64RecordThatNothingRefersToIsNoPartOfTheDirectory)
{
    mBuilder.zip64End = true;
    mBuilder.add("a", "content");
    std::string bytes = mBuilder.bytes();
    const std::size_t end = bytes.size() - 22;
    const std::string size = bytes.substr(end - 20 - 56 + 40, 4);
    const std::string offset = bytes.substr(end - 20 - 56 + 48, 4);
    bytes.replace(end + 8, 12, std::string("\x01\0\x01\0", 4) + size + offset);
    EXPECT_EQ(readWhole(address(mFolder.write("a.zip", bytes), "a")), "content");
}

TEST_F(ZipUtilsTest, commentMayHoldAnEndRecord)
{
    mBuilder.comment = ArchiveBuilder().bytes() + "tail";
    mBuilder.add("a", "content");
    EXPECT_EQ(walkedNames(mBuilder.write(mFolder, "a.zip")), std::vector<std::string>{"a"});
}
