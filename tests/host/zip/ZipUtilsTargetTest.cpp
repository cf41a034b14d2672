// The state of the target archives after a walk.
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "tests/host/zip/RawCopyTest.h"
#include "tests/support/NoMoreThreads.h"

namespace fs = std::filesystem;
using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using test::copyAll;
using test::copyFirstAs;

namespace {

class ZipUtilsTargetTest : public test::RawCopyTest
{
protected:
    void expectManyLargeMembersToBeVerified()
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
};

} // namespace

TEST_F(ZipUtilsTargetTest, withoutCreateTheTargetMustBeASoundArchive)
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

TEST_F(ZipUtilsTargetTest, withCreateAnUnsoundTargetIsReplacedAndASoundOneAddedTo)
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

TEST_F(ZipUtilsTargetTest, memberOfTheSameNameIsReplaced)
{
    ArchiveBuilder old;
    old.add("a", "old a").method = test::ArchiveMember::kStored;
    old.add("b", "old b");
    old.add("b", "newer b");
    old.write(mFolder, "target.zip");
    mSource.add("a", "first new a");
    mSource.add("a", "last new a");
    EXPECT_EQ(copyAll(writeSource(), target()), (std::vector<bool>{true, true}));
    EXPECT_EQ(contentsOf(target()), (Contents{{"b", "newer b"}, {"a", "last new a"}}));
    EXPECT_EQ(test::readFile(target()).find("old a"), std::string::npos);
}

TEST_F(ZipUtilsTargetTest, bytesBeforeTheArchiveEndAtItsFirstMember)
{
    ArchiveBuilder old;
    old.prefix = "#!/bin/sh\n";
    for (const char* name : {"a", "b"})
        old.add(name, std::string("former ") + name).method = test::ArchiveMember::kStored;
    old.write(mFolder, "target.zip");
    mSource.add("a", "new a");
    mSource.add("b", "new b");
    EXPECT_EQ(copyAll(writeSource(), target()), (std::vector<bool>{true, true}));
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "new a"}, {"b", "new b"}}));
    EXPECT_EQ(test::readFile(target()).find("former"), std::string::npos);

    ArchiveBuilder empty;
    empty.prefix = old.prefix;
    empty.write(mFolder, "target.zip");
    EXPECT_TRUE(copyFirstAs(mFolder.file("source.zip"), target(), "c"));
    EXPECT_EQ(contentsOf(target()), (Contents{{"c", "new a"}}));
    EXPECT_EQ(test::readFile(target()).substr(0, 14), "#!/bin/sh\nPK\x03\x04");
}

TEST_F(ZipUtilsTargetTest, archiveCanBeAddedToItself)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource();
    EXPECT_EQ(copyAll(source, source), (std::vector<bool>{true, true}));
    EXPECT_EQ(contentsOf(source), (Contents{{"a", "1"}, {"b", "2"}}));
}

TEST_F(ZipUtilsTargetTest, targetsAreWholeOnlyAtTheEndOfTheWalk)
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

TEST_F(ZipUtilsTargetTest, exceptionOfTheCallbackUndoesTheWalk)
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

TEST_F(ZipUtilsTargetTest, badChecksumAnywhereUndoesTheWalk)
{
    mSource.add("good", "1");
    mSource.add("bad", "2").checksum = 5;
    const std::string before = test::readFile(ArchiveBuilder().write(mFolder, "target.zip"));
    const fileString source = writeSource();
    EXPECT_THROW(copyAll(source, target()), std::runtime_error);
    EXPECT_THROW(copyAll(source, mFolder.file("none.zip")), std::runtime_error);
    EXPECT_EQ(test::readFile(target()), before);
    EXPECT_FALSE(mFolder.file("none.zip").pathExists());
    EXPECT_TRUE(copyFirstAs(source, target(), "good")); // the good member comes second
}

TEST_F(ZipUtilsTargetTest, canAddToSoundArchivesAndToThoseOfThisWalk)
{
    EXPECT_FALSE(ZipUtils::canAddToArchive(target()));
    mSource.add("a", "1");
    ZipUtils::getFilesDataInArchive(
        writeSource(), [&](const fileString& member, auto& handle, const auto& raw) {
            EXPECT_FALSE(ZipUtils::canAddToArchive(target()));
            EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
            EXPECT_TRUE(ZipUtils::canAddToArchive(target()));
            EXPECT_TRUE(ZipUtils::canAddToArchive(mFolder.file("./target.zip")));
            EXPECT_FALSE(ZipUtils::canAddToArchive(mFolder.file("other.zip")));
            EXPECT_FALSE(target().pathExists());
            return true;
        });
    EXPECT_TRUE(ZipUtils::canAddToArchive(target()));
    EXPECT_FALSE(ZipUtils::canAddToArchive(mFolder.write("x.zip", "not an archive")));
    EXPECT_FALSE(ZipUtils::canAddToArchive(fileString(mFolder.path())));
    fs::permissions(target().toNativeString(), fs::perms::owner_read);
    EXPECT_FALSE(ZipUtils::canAddToArchive(target()));
}

TEST_F(ZipUtilsTargetTest, differentTextsForOneTargetAreOneTarget)
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

TEST_F(ZipUtilsTargetTest, unusableTargetIsRefused)
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

TEST_F(ZipUtilsTargetTest, targetThatWasRefusedStaysRefusedForTheWalk)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString old = ArchiveBuilder().write(mFolder, "target.zip");
    fs::permissions(old.toNativeString(), fs::perms::owner_read);
    std::vector<bool> results;
    ZipUtils::getFilesDataInArchive(
        writeSource(), [&](const fileString& member, auto& handle, const auto& raw) {
            results.push_back(ZipUtils::writeFileToArchiveRaw(old, member, handle, true, raw));
            fs::permissions(old.toNativeString(), fs::perms::owner_read | fs::perms::owner_write);
            return true;
        });
    EXPECT_EQ(results, (std::vector<bool>{false, false})) << "a part of the members would be no archive";
    EXPECT_TRUE(ZipUtils::getFilenamesInArchive(old).empty());
}

TEST_F(ZipUtilsTargetTest, everyMemberIsWrittenOnce)
{
    for (const char* name : {"a", "b", "c"})
        mSource.add(name, test::sampleBytes(40'000, 1)).method = ArchiveMember::kStored;
    const fileString source = writeSource();
    EXPECT_EQ(copyAll(source, target()), std::vector<bool>(3, true));
    EXPECT_EQ(fs::file_size(target().toNativeString()), fs::file_size(source.toNativeString()));
}

TEST_F(ZipUtilsTargetTest, newTargetTakesOverThePermissionsOfTheOld)
{
    mSource.add("a", "1");
    const fileString old = ArchiveBuilder().write(mFolder, "target.zip");
    fs::permissions(old.toNativeString(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(copyFirstAs(writeSource(), target(), "a"));
    EXPECT_EQ(fs::status(target().toNativeString()).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ZipUtilsTargetTest, targetKeepsTheLimitOfMembers)
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

TEST_F(ZipUtilsTargetTest, longRunGoesOverInSteps)
{
    ArchiveBuilder old;
    old.add("old", "former");
    old.write(mFolder, "target.zip");
    std::string content(70U << 20U, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 31 >> 8);
    mSource.add("long", content).method = ArchiveMember::kStored;
    EXPECT_EQ(copyAll(writeSource(), target(), false), std::vector<bool>{true});
    EXPECT_TRUE(contentsOf(target()) == (Contents{{"old", "former"}, {"long", content}}));
}

TEST_F(ZipUtilsTargetTest, manyLargeMembersAreVerifiedByThreadsMeanwhile)
{
    expectManyLargeMembersToBeVerified();
}

TEST_F(ZipUtilsTargetTest, manyLargeMembersAreVerifiedWhereNoThreadCanBeStarted)
{
    const test::NoMoreThreads none;
    expectManyLargeMembersToBeVerified();
}
