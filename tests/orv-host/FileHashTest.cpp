// The hash is reached through the check of all core catalogs.
#include <filesystem>
#include <utility>

#include <gmock/gmock.h>

#include "OrvHost/health/LibraryHealth.h"
#include "OrvLibrary/host/SHA1.h"
#include "OrvLibrary/host/ZipUtils.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/RecordingProgress.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = 1U << 20U;

class FileHash : public test::HostedTest
{
protected:
    std::string damage()
    {
        OrvHost::LibraryHealth health;
        health.checkAll(progress);
        EXPECT_EQ(health.checkedCount(), 1U);
        return health.damages().empty() ? std::string() : health.damages()[0].text;
    }

    std::shared_ptr<test::RecordingProgress> progress = std::make_shared<test::RecordingProgress>();
};

} // namespace

TEST_F(FileHash, everyByteCounts)
{
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, kPiece - 1, kPiece, kPiece + 1, 2 * kPiece + 1}) {
        const fileString file = folder.write("root/core/Doors.orvlib", test::sampleBytes(size, 1));
        folder.write("root/core/catalog_hash.txt",
                     "Doors.orvlib:" + SHA1::fileContentsToSHA1Hex(file) + "\n");
        EXPECT_EQ(damage(), "") << size;
        if (size != 0) {
            std::string bytes = test::readFile(file);
            bytes.back() = static_cast<char>(~bytes.back());
            folder.write("root/core/Doors.orvlib", bytes);
            EXPECT_EQ(damage(), "its content does not match its SHA-1 tag") << size;
        }
    }
}

TEST_F(FileHash, readingIsToldPieceByPiece)
{
    folder.write("root/core/Doors.orvlib", std::string(2 * kPiece + 5, 'd'));
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:" + std::string(40, 'a') + "\n");
    damage();
    EXPECT_THAT(progress->bytes(), ElementsAre(kPiece, kPiece, 5));
    EXPECT_THAT(progress->calls(), ElementsAre("check", "step Doors.orvlib | ", "check", "check", "check"));
    const auto stopped = std::make_shared<test::RecordingProgress>();
    stopped->isCancelled = [](int check) { return check == 3; };
    OrvHost::LibraryHealth health;
    EXPECT_THROW(health.checkAll(stopped), ZipUtils::Cancelled);
    EXPECT_THAT(stopped->bytes(), ElementsAre(kPiece, kPiece));
}

TEST_F(FileHash, unreadableFileMatchesNoTag)
{
    const std::string ofNothing = "da39a3ee5e6b4b0d3255bfef95601890afd80709";
    const std::string file = host.root().toNativeString() + "core/Doors.orvlib";
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:" + ofNothing + "\n");
    folder.write("root/core/Doors.orvlib", "");
    EXPECT_EQ(damage(), "");
    for (const char* const target : {"/proc/self/mem", "/dev/null", "."}) {
        fs::remove(file);
        fs::create_symlink(target, file);
        EXPECT_EQ(damage(), "its content does not match its SHA-1 tag") << target;
    }
    EXPECT_THAT(progress->bytes(), IsEmpty());
}
