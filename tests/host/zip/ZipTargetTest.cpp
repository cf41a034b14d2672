// Members that move to other places.
#include "OrvLibrary/host/impl/zip/ZipTarget_p.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "tests/host/zip/FaultySystem.h"
#include "tests/host/zip/RawCopyTest.h"

namespace fs = std::filesystem;
using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using test::copyAll;
using test::copyFirstAs;
using ZipUtils::ZipTarget;

namespace {

/// A place or size that looks like a reference to a zip64 field.
constexpr std::uint64_t kReference = 0xFFFFFFFF;

class ZipTargetTest : public test::RawCopyTest
{
protected:
    ZipTargetTest() { mOld.add("old", "1"); }

    /// Puts the old archive behind a hole in the target. Its offsets do not count the hole; those of the copy
    /// do.
    /// @return false if the file system has no such files
    bool writeBehindHole(std::uint64_t hole) const
    {
        const std::string path = mFolder.write("target.zip", "").toNativeString();
        std::error_code error;
        fs::resize_file(path, hole, error);
        std::ofstream(path, std::ios::binary | std::ios::app) << mOld.bytes();
        struct stat status = {};
        return !error && stat(path.c_str(), &status) == 0 && status.st_blocks < 10'000;
    }
    /// The end of the target.
    std::string tail(std::uint64_t from) const
    {
        std::ifstream file(target().toNativeString(), std::ios::binary);
        file.seekg(static_cast<std::streamoff>(from));
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    /// Adds a member to the old archive behind a hole. The new member comes to lie directly behind the hole,
    /// the old one behind the new.
    /// @return everything behind the hole; empty if the file system has no such files
    std::string copyBehindHole(std::uint64_t hole)
    {
        if (!writeBehindHole(hole))
            return {};
        const test::FaultySystem keepingHoles(test::FaultySystem::Call::CopyFileRange);
        ArchiveBuilder source;
        source.add("new", "2");
        EXPECT_TRUE(copyFirstAs(source.write(mFolder, "source.zip"), target(), "new"));
        EXPECT_TRUE(ZipUtils::verify(target(), nullptr, nullptr));
        EXPECT_EQ(ZipUtils::getFilenamesInArchive(target()).size(), 2U);
        return tail(hole);
    }

    ArchiveBuilder mOld;
};

} // namespace

TEST_F(ZipTargetTest, placeThatLooksLikeAReferenceIsInAZip64Field)
{
    for (const std::uint64_t place : {kReference - 1, kReference}) {
        const std::string bytes = copyBehindHole(place);
        if (bytes.empty())
            GTEST_SKIP() << "needs a file system with large files and holes";
        const bool isWide = place == kReference;
        const std::size_t record = bytes.rfind("PK\x01\x02");
        const std::string field = isWide ? std::string("\x01\0\x08\0\xFF\xFF\xFF\xFF\0\0\0\0", 12) : "";
        EXPECT_EQ(bytes.substr(record + 6, 1), isWide ? "\x2D" : "\x14") << "needs version 4.5 or 2.0";
        EXPECT_EQ(ZipUtils::get16(&bytes[record + 30]), field.size());
        EXPECT_EQ(ZipUtils::get32(&bytes[record + 42]), place);
        EXPECT_EQ(bytes.substr(record + 46, 3 + field.size()), "new" + field);
    }
}

TEST_F(ZipTargetTest, directoryWhosePlaceLooksLikeAReferenceHasAZip64EndRecord)
{
    const std::size_t members = copyBehindHole(0).find("PK\x01\x02");
    for (const std::uint64_t place : {kReference - 1, kReference}) {
        const std::string bytes = copyBehindHole(place - members);
        if (bytes.empty())
            GTEST_SKIP() << "needs a file system with large files and holes";
        const std::size_t end = bytes.size() - 22;
        EXPECT_EQ(ZipUtils::get32(&bytes[end + 16]), place);
        EXPECT_EQ(bytes.find("PK\x06\x06") != std::string::npos, place == kReference);
        EXPECT_EQ(bytes.find("PK\x06\x07") != std::string::npos, place == kReference);
        if (place == kReference) {
            EXPECT_EQ(ZipUtils::get32(&bytes[end - 4]), 1U) << "one disk";
        }
    }
}

TEST_F(ZipTargetTest, numberOfMembersThatLooksLikeAReferenceIsInAZip64EndRecord)
{
    constexpr std::size_t kMost = 0xFFFE;
    mOld = ArchiveBuilder();
    for (std::size_t i = 1; i < kMost; ++i)
        mOld.add(std::to_string(i), "").method = ArchiveMember::kStored;
    mOld.write(mFolder, "target.zip");
    for (const std::size_t members : {kMost, kMost + 1}) {
        ArchiveBuilder source;
        source.add("new " + std::to_string(members), "1");
        copyAll(source.write(mFolder, "source.zip"), target());
        const std::string bytes = test::readFile(target());
        EXPECT_EQ(ZipUtils::get16(&bytes[bytes.size() - 22 + 10]), members);
        EXPECT_EQ(bytes.find("PK\x06\x06") != std::string::npos, members > kMost);
        EXPECT_EQ(ZipUtils::getFilenamesInArchive(target()).size(), members);
    }
}

TEST_F(ZipTargetTest, memberWhoseExtraBlockHasNoRoomForItsNewPlaceFailsTheWalk)
{
    constexpr std::size_t kField = 12; // what the place needs
    for (const std::size_t size : {0xFFFF - kField, 0xFFFF - kField + 1}) {
        mOld = ArchiveBuilder();
        std::string block = "XX";
        ZipUtils::put16(block, size - 4);
        mOld.add("old", "1").extra = block + std::string(size - 4, 'x');
        if (size == 0xFFFF - kField) {
            if (copyBehindHole(kReference).empty())
                GTEST_SKIP() << "needs a file system with large files and holes";
            continue;
        }
        const std::string before = mOld.bytes();
        EXPECT_THROW(copyBehindHole(kReference), std::runtime_error);
        EXPECT_TRUE(tail(kReference) == before);
    }
}

TEST_F(ZipTargetTest, memberWithALaterOneOfItsNameIsNotWritten)
{
    mSource.add("a", "former").method = ArchiveMember::kStored;
    mSource.add("a", "last").method = ArchiveMember::kStored;
    EXPECT_EQ(copyAll(writeSource(), target()), (std::vector<bool>{true, true}));
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "last"}}));
    EXPECT_EQ(test::readFile(target()).find("former"), std::string::npos);
}

TEST_F(ZipTargetTest, damagedTargetMayBeMadeAnewLaterInTheWalk)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    mFolder.write("target.zip", "no archive");
    std::vector<bool> results;
    ZipUtils::getFilesDataInArchive(
        writeSource(), [&](const fileString& member, auto& handle, const auto& raw) {
            const bool create = !results.empty();
            results.push_back(ZipUtils::writeFileToArchiveRaw(target(), member, handle, create, raw));
            return true;
        });
    EXPECT_EQ(results, (std::vector<bool>{false, true}));
    EXPECT_EQ(contentsOf(target()), (Contents{{"b", "2"}}));
}

TEST_F(ZipTargetTest, reasonWhyNothingBeginsIsKept)
{
    ZipUtils::ZipMeter meter(nullptr);
    ZipUtils::ZipPatience patience(meter);
    const auto reasonFor = [&](const fileString& path, bool create) {
        errno = EIO; // of an earlier call
        EXPECT_FALSE(ZipTarget::begin(path, create, patience, meter));
        return errno;
    };
    EXPECT_EQ(reasonFor(fileString(), true), ENOENT);
    EXPECT_EQ(reasonFor(target(), false), ENOENT);
    EXPECT_EQ(reasonFor(mFolder.write("target.zip", "no archive"), false), 0);
    EXPECT_EQ(reasonFor(fileString(mFolder.path()), true), EISDIR);
}

TEST_F(ZipTargetTest, memberOfOneByteCanBeRenamed)
{
    mSource.add("a", "1").method = ArchiveMember::kStored;
    EXPECT_TRUE(copyFirstAs(writeSource(), target(), "b"));
    EXPECT_EQ(contentsOf(target()), (Contents{{"b", "1"}}));
}
