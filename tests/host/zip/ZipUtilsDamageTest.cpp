// Finding the damaged members of an archive, and saving the others.
#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/host/zip/RawCopyTest.h"
#include "tests/support/RecordingProgress.h"

using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using ZipUtils::DamagedMember;

namespace {

class ZipUtilsDamageTest : public test::RawCopyTest
{
protected:
    std::vector<std::string> damagedNames(const fileString& archive)
    {
        mDamaged.clear();
        const bool isSound = ZipUtils::verify(archive, mProgress, &mDamaged);
        EXPECT_EQ(isSound, mDamaged.empty());
        return namesOf(mDamaged);
    }
    std::vector<std::string> namesLost(const fileString& archive)
    {
        mDamaged.clear();
        ZipUtils::salvage(archive, target(), mProgress, &mDamaged);
        return namesOf(mDamaged);
    }
    static std::vector<std::string> namesOf(const std::vector<DamagedMember>& members)
    {
        std::vector<std::string> names;
        for (const DamagedMember& member : members)
            names.push_back(member.name.toNativeString());
        return names;
    }

    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
    std::vector<DamagedMember> mDamaged;
};

} // namespace

TEST_F(ZipUtilsDamageTest, soundArchiveHasNoDamage)
{
    mSource.add("a", test::sampleBytes(1000, 1));
    mSource.add("b", "2").method = ArchiveMember::kStored;
    EXPECT_THAT(damagedNames(writeSource()), IsEmpty());
    EXPECT_THAT(mProgress->calls(), ElementsAre("total 1001"));
    EXPECT_EQ(mProgress->sumOfBytes(), 1001U);
    EXPECT_TRUE(ZipUtils::verify(ArchiveBuilder().write(mFolder, "empty.zip"), nullptr, nullptr));
}

TEST_F(ZipUtilsDamageTest, lastByteBehindAPieceIsChecked)
{
    ArchiveMember& member = mSource.add("a", test::sampleBytes((1U << 20U) + 1, 1));
    member.method = ArchiveMember::kStored;
    member.checksum = 1;
    EXPECT_THAT(damagedNames(writeSource()), ElementsAre("a"));
}

TEST_F(ZipUtilsDamageTest, everyDamagedMemberIsNamedWithItsArchive)
{
    mSource.add("good", "1");
    mSource.add("bad", test::sampleBytes(1000, 1)).checksum = 1;
    mSource.add("moved", "3").headerOffset = 1;
    mSource.add("renamed", "4").localName = "gnamere";
    mSource.add("bomb", "5").size = std::uint64_t(40) << 30U;
    mSource.add("last", "6");
    EXPECT_THAT(damagedNames(writeSource()),
                testing::UnorderedElementsAre("bad", "moved", "renamed", "bomb"));
    for (const DamagedMember& member : mDamaged) {
        EXPECT_THAT(member.reason, HasSubstr("source.zip: member \"" + member.name.toNativeString()));
    }
}

TEST_F(ZipUtilsDamageTest, bytesOfDamagedMembersAreReportedOnce)
{
    constexpr std::size_t kLong = (3U << 20U) + 7;
    mSource.add("good", test::sampleBytes(1000, 1));
    mSource.add("found at once", test::sampleBytes(500, 2)).rawData = std::string(300, '\xFF');
    ArchiveMember& late = mSource.add("found at its end", test::sampleBytes(kLong, 3));
    late.method = ArchiveMember::kStored;
    late.checksum = 1;
    EXPECT_THAT(damagedNames(writeSource()), ElementsAre("found at once", "found at its end"));
    EXPECT_THAT(mProgress->calls(), ElementsAre("total " + std::to_string(1500 + kLong)));
    EXPECT_EQ(mProgress->sumOfBytes(), 1500 + kLong);
}

TEST_F(ZipUtilsDamageTest, reasonTellsTheFaultOfAStream)
{
    const std::string content = test::sampleBytes(1000, 1);
    mSource.add("too long", content).rawData = test::deflated(content + "x");
    mSource.add("broken", content).rawData = std::string(500, '\xFF');
    mSource.add("ends too early", content).rawData = test::deflated(content) + "x";
    EXPECT_THAT(damagedNames(writeSource()),
                testing::UnorderedElementsAre("too long", "broken", "ends too early"));
    for (const DamagedMember& member : mDamaged)
        EXPECT_THAT(member.reason, testing::EndsWith(member.name.toNativeString()));
}

TEST_F(ZipUtilsDamageTest, archiveThatIsNoneIsDamagedAsAWhole)
{
    EXPECT_THAT(damagedNames(mFolder.write("x.zip", "not an archive")), ElementsAre(""));
    EXPECT_THAT(mDamaged[0].reason, HasSubstr("x.zip: not a zip archive"));
    EXPECT_THAT(damagedNames(mFolder.file("none.zip")), ElementsAre(""));
    EXPECT_FALSE(ZipUtils::verify(mFolder.file("none.zip"), nullptr, nullptr));
}

TEST_F(ZipUtilsDamageTest, manyMembersAreVerifiedInNoTime)
{
    for (int i = 0; i < 8000; ++i)
        mSource.add(std::to_string(i), "x").method = ArchiveMember::kStored;
    const fileString archive = writeSource();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(damagedNames(archive), IsEmpty());
    // This takes about a tenth of a second on an idle machine. Searching the directory for each member would
    // take a minute.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(ZipUtilsDamageTest, verifyingHearsACancel)
{
    mSource.add("large", test::sampleBytes(20 << 20, 1)).method = ArchiveMember::kStored;
    const fileString archive = writeSource();
    mProgress->isCancelled = [](int check) { return check == 2; };
    EXPECT_THROW(ZipUtils::verify(archive, mProgress, nullptr), ZipUtils::Cancelled);
    EXPECT_EQ(mProgress->checks(), 2);
}

TEST_F(ZipUtilsDamageTest, soundMembersAreSalvaged)
{
    mSource.add("good", test::sampleBytes(1000, 1)).comment = "of a member";
    mSource.add("bad", "2").checksum = 1;
    mSource.add("moved", "3").headerOffset = 1;
    mSource.add("overlapping", "4").headerOffset = 0;
    mSource.add("../evil", "5");
    mSource.add("last", "6");
    const fileString source = writeSource();
    const std::string before = test::readFile(source);
    EXPECT_THAT(namesLost(source), testing::UnorderedElementsAre("bad", "moved", "overlapping", "../evil"));
    EXPECT_EQ(contentsOf(target()), (Contents{{"good", test::sampleBytes(1000, 1)}, {"last", "6"}}));
    EXPECT_EQ(test::readArchive(target())[0].comment, "of a member");
    EXPECT_TRUE(test::readFile(source) == before);
    EXPECT_TRUE(ZipUtils::verify(target(), nullptr, nullptr));
}

TEST_F(ZipUtilsDamageTest, archiveCanBeSalvagedInItsOwnPlace)
{
    mSource.add("bad", "1").checksum = 1;
    mSource.add("good", "2");
    const fileString source = writeSource("target.zip");
    EXPECT_THAT(namesLost(source), ElementsAre("bad"));
    EXPECT_EQ(contentsOf(source), (Contents{{"good", "2"}}));
}

TEST_F(ZipUtilsDamageTest, membersOfAnArchiveWithoutADirectoryAreSearchedFor)
{
    mSource.add("a", test::sampleBytes(3000, 1));
    mSource.add("stored", test::sampleBytes(2000, 2)).method = ArchiveMember::kStored;
    mSource.add("described", test::sampleBytes(2500, 3)).flags = 8;
    mSource.add("bad", test::sampleBytes(500, 4)).checksum = 1;
    mSource
        .add("K\xC3\xBC"
             "che.png",
             test::sampleBytes(700, 5))
        .flags = 0x0800;
    const std::string whole = mSource.bytes();
    const fileString cut = mFolder.write("source.zip", whole.substr(0, whole.size() - 30));
    EXPECT_THAT(namesLost(cut), testing::Contains(""));
    EXPECT_THAT(namesOf(mDamaged), testing::Contains("bad"));
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", test::sampleBytes(3000, 1)},
                                              {"stored", test::sampleBytes(2000, 2)},
                                              {"described", test::sampleBytes(2500, 3)},
                                              {"K\xC3\xBC"
                                               "che.png",
                                               test::sampleBytes(700, 5)}}));
    // The cut is in the middle of a member; the members before it are saved.
    EXPECT_THAT(namesLost(mFolder.write("source.zip", whole.substr(0, 2500))), testing::Contains(""));
    EXPECT_THAT(contentsOf(target()), testing::SizeIs(testing::Le(1U)));
}

TEST_F(ZipUtilsDamageTest, otherFileGivesAnEmptyArchive)
{
    EXPECT_THAT(namesLost(mFolder.write("x.zip", "not an archive, PK\x03\x04 whatever it says")),
                testing::Contains(""));
    EXPECT_TRUE(ZipUtils::getFilenamesInArchive(target()).empty());
    EXPECT_THROW(namesLost(mFolder.file("none.zip")), std::runtime_error);
}

TEST_F(ZipUtilsDamageTest, targetThatCannotBeWrittenIsNamed)
{
    mSource.add("good", "1");
    const fileString source = writeSource();
    try {
        ZipUtils::salvage(source, mFolder.file("no/such/folder.zip"), nullptr, nullptr);
        ADD_FAILURE() << "nothing is thrown";
    } catch (const std::runtime_error& reason) {
        EXPECT_THAT(reason.what(), HasSubstr("no/such/folder.zip"));
    }
}
