// The raw copy: what it keeps, what it refuses, and what stands at the end of a walk.
#include "OrvLibrary/host/ZipUtils.h"

#include <filesystem>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"

namespace fs = std::filesystem;
using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using test::readArchive;
using test::ReadMember;

namespace {

using Contents = std::vector<std::pair<std::string, std::string>>;

/// Copies every member as unpacking does: into an archive that may be missing.
std::vector<bool> copyAll(const fileString& source, const fileString& target, bool create = true)
{
    std::vector<bool> results;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString& member, auto& handle, const auto& raw) {
        results.push_back(ZipUtils::writeFileToArchiveRaw(target, member, handle, create, raw));
        return true;
    });
    return results;
}

bool copyFirstAs(const fileString& source, const fileString& target, const std::string& name,
                 bool create = true)
{
    bool result = false;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString&, auto& handle, const auto& raw) {
        result = ZipUtils::writeFileToArchiveRaw(target, fileString(name), handle, create, raw);
        return false;
    });
    return result;
}

class ZipUtilsRawCopyTest : public testing::Test
{
protected:
    fileString writeSource(const std::string& name = "source.zip") { return mSource.write(mFolder, name); }
    fileString target() const { return mFolder.file("target.zip"); }

    test::TempFolder mFolder;
    ArchiveBuilder mSource;
};

ArchiveMember& addOddMember(ArchiveBuilder& builder, const std::string& name)
{
    ArchiveMember& member = builder.add(name, test::sampleBytes(3000, 7));
    member.versionMadeBy = 0x0A3F;
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
    const fileString source = writeSource();
    EXPECT_EQ(copyAll(source, target()), std::vector<bool>(4, true));
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
                                         "C:x",
                                         "c:/x",
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
    for (const std::string& name : {std::string("..a"), std::string("a.."), std::string("a/...b"),
                                    std::string("ab:c"), std::string(4096, 'n'), std::string("a/")})
        EXPECT_TRUE(copyFirstAs(source, target(), name)) << name;
    EXPECT_EQ(readArchive(target()).size(), 6U);
}

TEST_F(ZipUtilsRawCopyTest, newNameIsMarkedAsUtf8WhenItIs)
{
    mSource.add("a", "content").extra = std::string("\x75\x70\x06\x00\x01\x00\x00\x00\x00x", 10);
    const fileString source = writeSource();
    EXPECT_TRUE(copyFirstAs(source, target(), "\xC3\xBC"));
    EXPECT_TRUE(copyFirstAs(source, target(), "\xFC"));
    const std::vector<ReadMember> copies = readArchive(target());
    ASSERT_EQ(copies.size(), 2U);
    EXPECT_EQ(copies[0].flags, 0x0800U);
    EXPECT_EQ(copies[0].extra, "");
    EXPECT_EQ(copies[1].flags, 0U);
}

TEST_F(ZipUtilsRawCopyTest, withoutCreateTheTargetMustBeASoundArchive)
{
    mSource.add("a", "content");
    const fileString source = writeSource();
    EXPECT_FALSE(copyFirstAs(source, target(), "a", false));
    EXPECT_FALSE(target().pathExists());
    mFolder.write("target.zip", "not an archive");
    EXPECT_FALSE(copyFirstAs(source, target(), "a", false));
    EXPECT_EQ(test::readFile(target()), "not an archive");
    ArchiveBuilder().write(mFolder, "target.zip");
    EXPECT_TRUE(copyFirstAs(source, target(), "a", false));
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "content"}}));
}

TEST_F(ZipUtilsRawCopyTest, withCreateAnUnsoundTargetIsReplacedAndASoundOneAddedTo)
{
    mSource.add("new", "content");
    const fileString source = writeSource();
    mFolder.write("target.zip", "not an archive");
    EXPECT_TRUE(copyFirstAs(source, target(), "new"));
    EXPECT_EQ(contentsOf(target()), (Contents{{"new", "content"}}));

    ArchiveBuilder old;
    old.comment = "of the old archive";
    old.prefix = "#!/bin/sh\n";
    old.add("old", "former");
    old.write(mFolder, "target.zip");
    EXPECT_TRUE(copyFirstAs(source, target(), "new"));
    EXPECT_EQ(contentsOf(target()), (Contents{{"old", "former"}, {"new", "content"}}));
    const std::string bytes = test::readFile(target());
    EXPECT_EQ(bytes.substr(0, 10), "#!/bin/sh\n");
    EXPECT_EQ(bytes.substr(bytes.size() - 18), "of the old archive");
}

TEST_F(ZipUtilsRawCopyTest, memberOfTheSameNameIsReplaced)
{
    ArchiveBuilder old;
    old.add("a", "old a");
    old.add("b", "old b");
    old.add("b", "newer b");
    old.write(mFolder, "target.zip");
    mSource.add("a", "first new a");
    mSource.add("a", "last new a");
    EXPECT_EQ(copyAll(writeSource(), target()), (std::vector<bool>{true, true}));
    EXPECT_EQ(contentsOf(target()), (Contents{{"b", "newer b"}, {"a", "last new a"}}));
    EXPECT_EQ(test::readFile(target()).find("old a"), std::string::npos);
}

TEST_F(ZipUtilsRawCopyTest, archiveCanBeAddedToItself)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource();
    EXPECT_EQ(copyAll(source, source), (std::vector<bool>{true, true}));
    EXPECT_EQ(contentsOf(source), (Contents{{"a", "1"}, {"b", "2"}}));
}

TEST_F(ZipUtilsRawCopyTest, targetsAreWholeOnlyAtTheEndOfTheWalk)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    ArchiveBuilder old;
    old.add("old", "former");
    const std::string before = old.bytes();
    old.write(mFolder, "target.zip");
    ZipUtils::getFilesDataInArchive(
        writeSource(), [&](const fileString& member, auto& handle, const auto& raw) {
            EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, false, raw));
            EXPECT_TRUE(test::readFile(target()) == before);
            return true;
        });
    EXPECT_EQ(contentsOf(target()).size(), 3U);
}

TEST_F(ZipUtilsRawCopyTest, exceptionOfTheCallbackUndoesTheWalk)
{
    mSource.add("a", "1");
    const std::string before = test::readFile(ArchiveBuilder().write(mFolder, "target.zip"));
    const auto walk = [&](const fileString& to) {
        ZipUtils::getFilesDataInArchive(
            writeSource(), [&](const fileString& member, auto& handle, const auto& raw) -> bool {
                EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(to, member, handle, true, raw));
                throw std::domain_error("mine");
            });
    };
    EXPECT_THROW(walk(target()), std::domain_error);
    EXPECT_THROW(walk(mFolder.file("none.zip")), std::domain_error);
    EXPECT_EQ(test::readFile(target()), before);
    EXPECT_EQ(test::listTree(mFolder.path()), (std::vector<std::string>{"source.zip", "target.zip"}));
}

TEST_F(ZipUtilsRawCopyTest, badChecksumAnywhereUndoesTheWalk)
{
    mSource.add("good", "1");
    mSource.add("bad", "2").checksum = 5;
    const std::string before = test::readFile(ArchiveBuilder().write(mFolder, "target.zip"));
    const fileString source = writeSource();
    EXPECT_THROW(copyAll(source, target()), std::runtime_error);
    EXPECT_THROW(copyAll(source, mFolder.file("none.zip")), std::runtime_error);
    EXPECT_EQ(test::readFile(target()), before);
    EXPECT_FALSE(mFolder.file("none.zip").pathExists());
    EXPECT_TRUE(copyFirstAs(source, target(), "good")); // the bad one is never reached
}

TEST_F(ZipUtilsRawCopyTest, canAddToSoundArchivesAndToThoseOfThisWalk)
{
    EXPECT_FALSE(ZipUtils::canAddToArchive(target()));
    mSource.add("a", "1");
    ZipUtils::getFilesDataInArchive(
        writeSource(), [&](const fileString& member, auto& handle, const auto& raw) {
            EXPECT_FALSE(ZipUtils::canAddToArchive(target()));
            EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
            EXPECT_TRUE(ZipUtils::canAddToArchive(target()));
            EXPECT_TRUE(ZipUtils::canAddToArchive(mFolder.file("./target.zip")));
            EXPECT_FALSE(target().pathExists());
            return true;
        });
    EXPECT_TRUE(ZipUtils::canAddToArchive(target()));
    EXPECT_FALSE(ZipUtils::canAddToArchive(mFolder.write("x.zip", "not an archive")));
    EXPECT_FALSE(ZipUtils::canAddToArchive(fileString(mFolder.path())));
    fs::permissions(target().toNativeString(), fs::perms::owner_read);
    EXPECT_FALSE(ZipUtils::canAddToArchive(target()));
}

TEST_F(ZipUtilsRawCopyTest, differentTextsForOneTargetAreOneTarget)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource();
    fs::create_symlink("target.zip", mFolder.file("link.zip").toNativeString());
    mFolder.write("folder/x", "");
    int calls = 0;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString& member, auto& handle, const auto& raw) {
        const fileString to = mFolder.file(++calls == 1 ? "target.zip" : "folder/../target.zip");
        return ZipUtils::writeFileToArchiveRaw(to, member, handle, true, raw);
    });
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "1"}, {"b", "2"}}));
    EXPECT_TRUE(copyFirstAs(source, mFolder.file("link.zip"), "c"));
    EXPECT_TRUE(fs::is_symlink(mFolder.file("link.zip").toNativeString()));
    EXPECT_EQ(contentsOf(target()).size(), 3U);
}

TEST_F(ZipUtilsRawCopyTest, whatCannotBeATargetIsRefused)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    fs::create_directory(mFolder.file("folder").toNativeString());
    fs::create_symlink("loop", mFolder.file("loop").toNativeString());
    const fileString readOnly = ArchiveBuilder().write(mFolder, "readonly.zip");
    fs::permissions(readOnly.toNativeString(), fs::perms::owner_read);
    for (const fileString& refused :
         {fileString(), mFolder.file("folder"), mFolder.file("loop"), mFolder.file("no/such/folder.zip"),
          readOnly, fileString("/dev/null"), fileString(std::string("a\0b", 3))}) {
        EXPECT_FALSE(copyFirstAs(source, refused, "a")) << refused;
        EXPECT_FALSE(copyFirstAs(source, refused, "a", false)) << refused;
    }
}

TEST_F(ZipUtilsRawCopyTest, newTargetTakesOverThePermissionsOfTheOld)
{
    mSource.add("a", "1");
    const fileString old = ArchiveBuilder().write(mFolder, "target.zip");
    fs::permissions(old.toNativeString(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(copyFirstAs(writeSource(), target(), "a"));
    EXPECT_EQ(fs::status(target().toNativeString()).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ZipUtilsRawCopyTest, targetKeepsTheLimitOfMembers)
{
    ArchiveBuilder old;
    for (int i = 0; i < 100000; ++i)
        old.add(std::to_string(i), "").method = ArchiveMember::kStored;
    old.write(mFolder, "target.zip");
    mSource.add("0", "replaces");
    mSource.add("one more", "is too much");
    EXPECT_EQ(copyAll(writeSource(), target()), (std::vector<bool>{true, false}));
    const std::vector<fileString> names = ZipUtils::getFilenamesInArchive(target());
    EXPECT_EQ(names.size(), 100000U);
    EXPECT_EQ(names.back().toNativeString(), "0");
}

TEST_F(ZipUtilsRawCopyTest, batchCompletesSeveralWalksTogether)
{
    mSource.add("a", "1");
    ArchiveBuilder second;
    second.add("b", "2");
    const fileString source = writeSource();
    const std::string before = test::readFile(ArchiveBuilder().write(mFolder, "target.zip"));
    ZipUtils::ArchiveBatch batch;
    EXPECT_EQ(copyAll(source, target(), false), std::vector<bool>{true});
    EXPECT_EQ(copyAll(second.write(mFolder, "second.zip"), target(), false), std::vector<bool>{true});
    EXPECT_TRUE(ZipUtils::canAddToArchive(target()));
    EXPECT_EQ(test::readFile(target()), before);
    batch.complete();
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "1"}, {"b", "2"}}));
}

TEST_F(ZipUtilsRawCopyTest, batchThatIsNotCompletedLeavesEverything)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    {
        ZipUtils::ArchiveBatch batch;
        batch.begin(target());
        EXPECT_EQ(copyAll(source, target(), false), std::vector<bool>{true});
    }
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"source.zip"});
}

TEST_F(ZipUtilsRawCopyTest, batchStartsAnArchiveAnewWhileTheOldOneCanBeWalked)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource("target.zip");
    ZipUtils::ArchiveBatch batch;
    batch.begin(source);
    int copied = 0;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString& member, auto& handle, const auto& raw) {
        copied += ZipUtils::writeFileToArchiveRaw(source, member, handle, false, raw) ? 1 : 0;
        return false;
    });
    batch.complete();
    EXPECT_EQ(copied, 1);
    EXPECT_EQ(contentsOf(source), (Contents{{"a", "1"}}));
}

TEST_F(ZipUtilsRawCopyTest, damageInABatchIsFoundBeforeAnythingTakesItsPlace)
{
    mSource.add("a", test::sampleBytes(9 << 20, 1)).checksum = 1; // enough for threads of its own
    const fileString source = writeSource();
    ZipUtils::ArchiveBatch batch;
    EXPECT_EQ(copyAll(source, target()), std::vector<bool>{true});
    EXPECT_THROW(batch.complete(), std::runtime_error);
    EXPECT_FALSE(target().pathExists());
}

TEST_F(ZipUtilsRawCopyTest, batchWithAFailedWalkCompletesNothing)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    ZipUtils::ArchiveBatch batch;
    EXPECT_THROW(ZipUtils::getFilesDataInArchive(
                     source,
                     [&](const fileString& member, auto& handle, const auto& raw) -> bool {
                         EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
                         throw std::domain_error("mine");
                     }),
                 std::domain_error);
    EXPECT_THROW(batch.complete(), std::runtime_error);
    EXPECT_FALSE(target().pathExists());
}

TEST_F(ZipUtilsRawCopyTest, batchNoticesThatAnArchiveWasReplaced)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    const ZipUtils::ArchiveBatch batch;
    EXPECT_EQ(ZipUtils::getFilenamesInArchive(source).size(), 1U);
    mSource.add("b", "2");
    writeSource();
    EXPECT_EQ(ZipUtils::getFilenamesInArchive(source).size(), 2U);
}

TEST_F(ZipUtilsRawCopyTest, manyLargeMembersAreVerifiedByThreadsMeanwhile)
{
    for (int i = 0; i < 12; ++i)
        mSource.add("m" + std::to_string(i), test::sampleBytes(2 << 20, static_cast<unsigned>(i)));
    const fileString source = writeSource();
    EXPECT_EQ(copyAll(source, target()), std::vector<bool>(12, true));
    EXPECT_EQ(contentsOf(target()), contentsOf(source));
    for (const int bad : {0, 7}) {
        ArchiveBuilder damaged;
        for (int i = 0; i < 12; ++i)
            damaged.add("m" + std::to_string(i), test::sampleBytes(1 << 20, 1)).checksum =
                i >= bad ? std::optional<std::uint32_t>(1) : std::nullopt;
        const fileString archive = damaged.write(mFolder, "damaged.zip");
        EXPECT_THROW(copyAll(archive, mFolder.file("none.zip")), std::runtime_error);
        EXPECT_FALSE(mFolder.file("none.zip").pathExists());
    }
}
