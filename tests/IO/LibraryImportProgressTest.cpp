// Imports that report progress and are cancelled, and files that imports leave unchanged.
#include <chrono>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/IO/LibraryImport.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/ScopedHost.h"

namespace fs = std::filesystem;
using LibraryImport::FoundFile;
using LibraryImport::UnpackResult;
using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using test::RecordingProgress;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::StartsWith;

namespace {

using Contents = std::vector<std::pair<std::string, std::string>>;

class LibraryImportProgressTest : public testing::Test
{
protected:
    /// A database of 20 MB and pictures of 30 MB together.
    fileString writeLarge()
    {
        mKitchen.add("Kitchen.orvlib", test::sampleBytes(20 << 20, 1));
        for (int i = 0; i < 10; ++i)
            mKitchen.add("p" + std::to_string(i), test::sampleBytes(3 << 20, 2)).method =
                ArchiveMember::kStored;
        return mKitchen.write(mFolder, "Kitchen.orvlibz");
    }
    std::vector<std::string> temporaryFiles()
    {
        const std::string folder = mHost.paths().getTempPath().toNativeString();
        return fs::exists(folder) ? test::listTree(folder) : std::vector<std::string>();
    }
    std::vector<std::string> folderTree() const { return test::listTree(mFolder.path()); }
    bool merge(const ArchiveBuilder& extracted, std::string* reason = nullptr)
    {
        std::string ignored;
        return LibraryImport::moveArchivedTextures(extracted.write(mFolder, "extracted.zip"), mDestination,
                                                   mProgress, reason ? *reason : ignored);
    }

    test::ScopedHost mHost;
    test::TempFolder mFolder;
    fileString mDestination = mFolder.file("textures/Kitchen.zip");
    ArchiveBuilder mKitchen;
    std::shared_ptr<RecordingProgress> mProgress = std::make_shared<RecordingProgress>();
};

/// Holds a lock on a file as another program would.
class ForeignLock
{
public:
    explicit ForeignLock(const fileString& path) : mFile(open(path.toNativeString().c_str(), O_RDWR))
    {
        if (flock(mFile, LOCK_EX | LOCK_NB) != 0)
            throw std::runtime_error("cannot be locked");
    }
    ~ForeignLock() { close(mFile); }

private:
    int mFile;
};

} // namespace

TEST_F(LibraryImportProgressTest, unpackTellsAllBytesInPortions)
{
    const UnpackResult result = LibraryImport::unpack(writeLarge(), true, mProgress);
    EXPECT_TRUE(result.first.first && result.second.first);
    EXPECT_EQ(mProgress->calls().front(), "total " + std::to_string(50 << 20));
    EXPECT_EQ(mProgress->sumOfBytes(), 50U << 20U);
    EXPECT_THAT(mProgress->bytes(), Each(Le(8U << 20U)));
    EXPECT_THAT(mProgress->calls(), Contains("labels putting in place | "));
}

TEST_F(LibraryImportProgressTest, mergeTellsAllBytesOfBothArchives)
{
    ArchiveBuilder old;
    old.add("a", test::sampleBytes(9 << 20, 1)).method = ArchiveMember::kStored;
    old.add("b", test::sampleBytes(1 << 20, 2));
    old.write(mFolder, "textures/Kitchen.zip");
    mKitchen.add("b", test::sampleBytes(2 << 20, 3));
    EXPECT_TRUE(merge(mKitchen));
    EXPECT_EQ(mProgress->sumOfBytes(), 12U << 20U);
    EXPECT_EQ(contentsOf(mDestination).size(), 2U);
}

TEST_F(LibraryImportProgressTest, cancelAtEveryQuestionLeavesNothing)
{
    const fileString archive = writeLarge();
    int cancelled = 0;
    for (int when = 1; when < 200; ++when) {
        const auto progress = std::make_shared<RecordingProgress>();
        progress->isCancelled = [when](int check) { return check == when; };
        const UnpackResult result = LibraryImport::unpack(archive, true, progress);
        if (result != UnpackResult())
            break;
        ++cancelled;
        EXPECT_EQ(progress->checks(), when);
        EXPECT_THAT(temporaryFiles(), IsEmpty());
    }
    EXPECT_GE(cancelled, 14); // at each of 11 members and in between
}

TEST_F(LibraryImportProgressTest, cancelledMergeChangesNothingAndSaysSo)
{
    ArchiveBuilder old;
    old.add("a", test::sampleBytes(20 << 20, 1)).method = ArchiveMember::kStored;
    old.write(mFolder, "textures/Kitchen.zip");
    const std::string before = old.bytes();
    mKitchen.add("b", "new");
    mProgress->isCancelled = [](int check) { return check == 2; };
    std::string reason;
    EXPECT_FALSE(merge(mKitchen, &reason));
    EXPECT_EQ(reason, "cancelled");
    EXPECT_TRUE(test::readFile(mDestination) == before);
    EXPECT_THAT(folderTree(), ElementsAre("textures/", "textures/Kitchen.zip"));
}

TEST_F(LibraryImportProgressTest, cancelWinsOverDamage)
{
    mKitchen.add("bad.jpg", "tile").checksum = 1;
    mKitchen.add("Kitchen.orvlib", "the database");
    const fileString archive = mKitchen.write(mFolder, "Kitchen.orvlibz");
    for (int when = 1; when <= 3; ++when) { // at the third check the damage is known
        const auto progress = std::make_shared<RecordingProgress>();
        progress->isCancelled = [when](int check) { return check >= when; };
        EXPECT_EQ(LibraryImport::unpack(archive, true, progress), UnpackResult()) << when;
    }
    EXPECT_THROW(LibraryImport::unpack(archive, true, mProgress), std::runtime_error);
}

TEST_F(LibraryImportProgressTest, unpackInsideTheProgressOfAnotherOneIsItsOwn)
{
    class Nesting : public RecordingProgress
    {
    public:
        explicit Nesting(const fileString& archive) : mArchive(archive) {}
        void increment(const marl::unicode::String&, const marl::unicode::String&) override
        {
            const UnpackResult result = LibraryImport::unpack(mArchive, true, nullptr);
            EXPECT_EQ(test::readFile(result.first.second), "the database");
            EXPECT_EQ(contentsOf(result.second.second), (Contents{{"tile.jpg", "tile"}}));
            ++count;
        }
        int count = 0;

    private:
        fileString mArchive;
    };
    mKitchen.add("tile.jpg", "tile");
    mKitchen.add("Kitchen.orvlib", "the database");
    const fileString archive = mKitchen.write(mFolder, "Kitchen.orvlibz");
    const auto progress = std::make_shared<Nesting>(archive);
    const UnpackResult result = LibraryImport::unpack(archive, true, progress);
    EXPECT_EQ(progress->count, 2);
    EXPECT_EQ(contentsOf(result.second.second), (Contents{{"tile.jpg", "tile"}}));
    EXPECT_EQ(temporaryFiles().size(), 6U);
}

TEST_F(LibraryImportProgressTest, archiveIsNotUnpackedOverItself)
{
    mKitchen.add("tile.jpg", "tile");
    for (const char* name : {"x.zip", "x.orvlib"}) {
        const fileString archive = mKitchen.write(mFolder, name);
        const std::string before = test::readFile(archive);
        EXPECT_THROW(LibraryImport::unpack(archive, false, nullptr), std::runtime_error) << name;
        EXPECT_TRUE(test::readFile(archive) == before);
        fs::remove(archive.toNativeString());
    }
    const fileString archive = mKitchen.write(mFolder, "y.orvlibz");
    fs::create_symlink("y.orvlibz", mFolder.file("y.zip").toNativeString());
    EXPECT_THROW(LibraryImport::unpack(archive, false, nullptr), std::runtime_error);
    EXPECT_THAT(folderTree(), ElementsAre("y.orvlibz", "y.zip"));
    const fileString broken = mFolder.write("z.zip", "not an archive");
    EXPECT_THROW(LibraryImport::unpack(broken, false, nullptr), std::runtime_error);
    EXPECT_EQ(test::readFile(broken), "not an archive");
}

TEST_F(LibraryImportProgressTest, readOnlyFilesBesideStayAndCountAsNotFound)
{
    const fileString database = mFolder.write("Kitchen.orvlib", "former");
    const fileString textures = mFolder.write("Kitchen.zip", ArchiveBuilder().bytes());
    for (const fileString& file : {database, textures})
        fs::permissions(file.toNativeString(), fs::perms::owner_read);
    for (int i = 0; i < 20000; ++i)
        mKitchen.add(std::to_string(i) + ".jpg", "").method = ArchiveMember::kStored;
    const fileString archive = mKitchen.write(mFolder, "Kitchen.orvlibz");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(LibraryImport::unpack(archive, false, nullptr), UnpackResult());
    EXPECT_LT(std::chrono::steady_clock::now() - start,
              std::chrono::seconds(4)); // one check, not 20,000
    mKitchen.add("Kitchen.orvlib", "new");
    mKitchen.write(mFolder, "Kitchen.orvlibz");
    EXPECT_EQ(LibraryImport::unpack(archive, false, nullptr), UnpackResult());
    EXPECT_EQ(test::readFile(database), "former");
    EXPECT_EQ(test::readFile(textures), ArchiveBuilder().bytes());
}

TEST_F(LibraryImportProgressTest, lockedFileBesideIsWaitedForOnce)
{
    const fileString textures = mFolder.write("Kitchen.zip", ArchiveBuilder().bytes());
    for (const char* name : {"a", "b", "c", "d"})
        mKitchen.add(name, "x");
    mKitchen.add("Kitchen.orvlib", "new");
    const fileString archive = mKitchen.write(mFolder, "Kitchen.orvlibz");
    const ForeignLock lock(textures);
    const auto start = std::chrono::steady_clock::now();
    const UnpackResult result = LibraryImport::unpack(archive, false, nullptr);
    EXPECT_LT(std::chrono::steady_clock::now() - start,
              std::chrono::seconds(9)); // 5, not 40
    EXPECT_TRUE(result.first.first);
    EXPECT_EQ(result.second, FoundFile());
    EXPECT_EQ(test::readFile(textures), ArchiveBuilder().bytes());
}

TEST_F(LibraryImportProgressTest, cancelIsHeardWhileALockIsWaitedFor)
{
    ArchiveBuilder old;
    old.add("a", "old");
    const ForeignLock lock(old.write(mFolder, "textures/Kitchen.zip"));
    mKitchen.add("b", "new");
    mProgress->isCancelled = [](int check) { return check == 2; };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(merge(mKitchen));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST_F(LibraryImportProgressTest, damagedPictureThatIsReplacedIsNoHindrance)
{
    ArchiveBuilder old;
    old.add("tile.jpg", "old tile").checksum = 1;
    old.add("oak.jpg", "oak");
    old.write(mFolder, "textures/Kitchen.zip");
    mKitchen.add("tile.jpg", "new tile");
    EXPECT_TRUE(merge(mKitchen));
    EXPECT_EQ(contentsOf(mDestination), (Contents{{"oak.jpg", "oak"}, {"tile.jpg", "new tile"}}));
}

TEST_F(LibraryImportProgressTest, damagedPictureThatStaysIsNamed)
{
    ArchiveBuilder old;
    old.add("tile.jpg", "old tile").checksum = 1;
    old.write(mFolder, "textures/Kitchen.zip");
    mKitchen.add("oak.jpg", "oak");
    std::string reason;
    EXPECT_FALSE(merge(mKitchen, &reason));
    EXPECT_EQ(reason, mDestination.toNativeString() + ": member \"tile.jpg\": its checksum is wrong");
    ArchiveBuilder().write(mFolder, "textures/Kitchen.zip");
    ArchiveBuilder unsafe;
    unsafe.add("../x", "x");
    EXPECT_FALSE(merge(unsafe, &reason));
    EXPECT_THAT(reason, StartsWith(mFolder.file("extracted.zip").toNativeString()));
    EXPECT_THAT(reason, HasSubstr("../x"));
}

TEST_F(LibraryImportProgressTest, membersOfOddNamesAreUnpacked)
{
    mKitchen.add("a::b.png", "picture");
    mKitchen.add("x::Kitchen.orvlib", "the database");
    const UnpackResult result =
        LibraryImport::unpack(mKitchen.write(mFolder, "Kitchen.orvlibz"), true, nullptr);
    EXPECT_EQ(test::readFile(result.first.second), "the database");
    EXPECT_EQ(contentsOf(result.second.second), (Contents{{"a::b.png", "picture"}}));
}

TEST_F(LibraryImportProgressTest, twoProcessesThatImportOneNameLoseNothing)
{
    constexpr int kRounds = 40;
    for (int round = 0; round < kRounds; ++round) {
        fs::remove_all(mFolder.file("textures").toNativeString());
        const auto import = [&](const std::string& name) {
            ArchiveBuilder textures;
            textures.add(name, "of " + name);
            const fileString extracted = textures.write(mFolder, name + ".zip");
            return LibraryImport::moveArchivedTextures(extracted, mDestination, mProgress) ? 0 : 1;
        };
        const pid_t child = fork();
        if (child == 0)
            _exit(import("child"));
        EXPECT_EQ(import("parent"), 0);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
        EXPECT_THAT(contentsOf(mDestination), testing::UnorderedElementsAre(std::pair("child", "of child"),
                                                                            std::pair("parent", "of parent")))
            << round;
    }
}
