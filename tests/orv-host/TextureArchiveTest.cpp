#include "OrvHost/imports/TextureArchive.h"

#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
namespace TextureArchive = OrvHost::TextureArchive;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class TextureArchiveTest : public testing::Test
{
protected:
    /// Writes an archive in which these members of three are damaged.
    fileString write(const std::vector<std::string>& damaged) const
    {
        test::ArchiveBuilder builder;
        for (const char* name : {"ash.png", "elm.png", "oak.png"})
            builder.add(name, std::string("content of ") + name).method = test::ArchiveMember::kStored;
        std::string bytes = builder.bytes();
        for (const std::string& name : damaged)
            bytes[bytes.find("content of " + name)] = 'x';
        return folder.write("Kitchen.zip", bytes);
    }
    std::vector<std::string> names() const { return test::listTree(folder.path()); }

    test::TempFolder folder;
    const fileString kept = folder.file("Kitchen.zip.damaged");
    const std::shared_ptr<test::RecordingProgress> progress = std::make_shared<test::RecordingProgress>();
};

} // namespace

TEST_F(TextureArchiveTest, firstDamageThatMattersIsTold)
{
    EXPECT_EQ(TextureArchive::damageOf(write({}), {}, progress), "");
    EXPECT_GT(progress->sumOfBytes(), 0U);
    const fileString archive = write({"elm.png"});
    EXPECT_THAT(TextureArchive::damageOf(archive, {}, nullptr), HasSubstr("Kitchen.zip: member \"elm.png\""));
    EXPECT_THAT(TextureArchive::damageOf(archive, {fileString("oak.png")}, nullptr), HasSubstr("elm.png"));
    EXPECT_EQ(TextureArchive::damageOf(archive, {fileString("elm.png")}, nullptr), "");
}

TEST_F(TextureArchiveTest, firstFreeNameIsTaken)
{
    const fileString archive = folder.file("Kitchen.zip");
    for (const char* name : {"Kitchen.zip.damaged", "Kitchen.zip.damaged.2", "Kitchen.zip.damaged.3"}) {
        EXPECT_EQ(TextureArchive::setAsideName(archive), folder.file(name));
        folder.write(name, "x");
    }
}

TEST_F(TextureArchiveTest, soundMembersStayAndTheLostAreNamed)
{
    const fileString archive = write({"ash.png", "oak.png"});
    const std::string damaged = test::readFile(archive);
    EXPECT_THAT(TextureArchive::setAside(archive, kept, progress),
                UnorderedElementsAre("ash.png", "oak.png"));
    EXPECT_GT(progress->sumOfBytes(), 0U);
    EXPECT_EQ(test::readFile(kept), damaged);
    EXPECT_THAT(ZipUtils::getFilenamesInArchive(archive), ElementsAre(fileString("elm.png")));
    EXPECT_THAT(names(), ElementsAre("Kitchen.zip", "Kitchen.zip.damaged"));
}

TEST_F(TextureArchiveTest, lostMemberWithoutANameIsNotNamed)
{
    const std::string bytes = test::readFile(write({"elm.png"}));
    const fileString archive = folder.write("Kitchen.zip", bytes.substr(0, bytes.rfind("PK\x05\x06")));
    const std::vector<std::string> lost = TextureArchive::setAside(archive, kept, nullptr);
    EXPECT_THAT(lost, testing::Not(testing::Contains("")));
    EXPECT_THAT(ZipUtils::getFilenamesInArchive(archive),
                UnorderedElementsAre(fileString("ash.png"), fileString("oak.png")));
}

TEST_F(TextureArchiveTest, cancelLeavesTheArchiveUnchanged)
{
    test::ArchiveBuilder builder;
    builder.add("oak.png", "oak");
    test::ArchiveMember& large = builder.add("large.png", std::string(16'000'000, 'x'));
    large.method = test::ArchiveMember::kStored;
    large.checksum = 1;
    const fileString archive = builder.write(folder, "Kitchen.zip");
    const std::string damaged = test::readFile(archive);
    progress->isCancelled = [](int) { return true; };
    EXPECT_THROW(TextureArchive::setAside(archive, kept, progress), std::runtime_error);
    EXPECT_THAT(names(), ElementsAre("Kitchen.zip"));
    EXPECT_TRUE(test::readFile(archive) == damaged);
}

TEST_F(TextureArchiveTest, fileWithTheNameIsNotReplaced)
{
    const fileString archive = write({"elm.png"});
    test::writeFile(kept.toNativeString(), "another");
    EXPECT_THROW(TextureArchive::setAside(archive, kept, nullptr), std::runtime_error);
    EXPECT_EQ(test::readFile(kept), "another");
    EXPECT_THAT(TextureArchive::damageOf(archive, {}, nullptr), HasSubstr("elm.png"));
}

TEST_F(TextureArchiveTest, fileBehindALinkIsKept)
{
    const fileString archive = write({"elm.png"});
    const std::string damaged = test::readFile(archive);
    const fileString link = folder.file("Link.zip");
    fs::create_symlink(archive.toNativeString(), link.toNativeString());
    EXPECT_THAT(TextureArchive::setAside(link, kept, nullptr), ElementsAre("elm.png"));
    EXPECT_EQ(test::readFile(kept), damaged);
}

TEST_F(TextureArchiveTest, archiveOnAnotherDiskIsCopied)
{
    const test::OtherDevice other;
    if (other.path().empty())
        GTEST_SKIP() << "there is no other disk";
    const fileString archive = write({"elm.png"});
    const std::string damaged = test::readFile(archive);
    const fileString away(other.path() + "/Kitchen.zip.damaged");
    EXPECT_THAT(TextureArchive::setAside(archive, away, nullptr), ElementsAre("elm.png"));
    EXPECT_EQ(test::readFile(away), damaged);
}
