#include "OrvHost/health/DatabaseCheck.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <gmock/gmock.h>

#include "tests/support/DescriptorLimit.h"
#include "tests/support/SampleDatabase.h"
#include "tests/support/TempFolder.h"

using OrvHost::DatabaseCheck::problemOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr std::chrono::milliseconds kNoTime{0};

class DatabaseCheckTest : public testing::Test
{
protected:
    std::string problemOfBytes(const std::string& bytes) const
    {
        return problemOf(folder.write("catalog.orvlib", bytes));
    }

    test::TempFolder folder;
};

/// A database of many pages in which the middle pages are overwritten.
std::string damagedInside()
{
    std::string bytes = test::sampleDatabase("doors", 200'000);
    bytes.replace(4096, 3 * 4096, std::string(3 * 4096, '\x7f'));
    return bytes;
}

} // namespace

TEST_F(DatabaseCheckTest, soundDatabaseHasNoProblem)
{
    EXPECT_EQ("", problemOfBytes(test::sampleDatabase("doors")));
    EXPECT_EQ("", problemOfBytes(test::sampleDatabase("doors", 300'000)));
}

TEST_F(DatabaseCheckTest, otherFilesAreNoDatabases)
{
    const std::vector<std::string> others = {"", "<html>Please sign in.</html>", "SQLite format 3",
                                             std::string("SQLite format 3\0", 16) + std::string(200, 'x'),
                                             std::string(5000, '\0')};
    for (const std::string& bytes : others)
        EXPECT_EQ("is no database", problemOfBytes(bytes)) << bytes.substr(0, 30);
}

TEST_F(DatabaseCheckTest, fileThatCannotBeReadIsNotSaidToBeNoDatabase)
{
    const auto reason = [](int error) { return std::string("cannot be read: ") + std::strerror(error); };
    EXPECT_EQ(reason(ENOENT), problemOf(folder.file("not there")));
    EXPECT_EQ(reason(EISDIR), problemOf(fileString(folder.path())));
    const fileString sound = folder.write("catalog.orvlib", test::sampleDatabase("doors"));
    const test::DescriptorLimit none(0);
    EXPECT_EQ(reason(EMFILE), problemOf(sound));
}

TEST_F(DatabaseCheckTest, cutDatabaseIsDamaged)
{
    const std::string whole = test::sampleDatabase("doors", 100'000);
    for (const std::size_t size :
         {std::size_t{100}, std::size_t{5000}, whole.size() - 4096, whole.size() - 1})
        EXPECT_EQ("is a damaged database: it is cut off", problemOfBytes(whole.substr(0, size))) << size;
}

TEST_F(DatabaseCheckTest, damageInsideIsFoundWhereThereIsTime)
{
    EXPECT_THAT(problemOfBytes(damagedInside()), StartsWith("is a damaged database: "));
}

TEST_F(DatabaseCheckTest, withoutTimeTheHeaderAloneCounts)
{
    std::string bytes = test::sampleDatabase("doors", 30'000'000);
    bytes.replace(20'000'000, 3 * 4096, std::string(3 * 4096, '\x7f'));
    const fileString file = folder.write("large.orvlib", bytes);
    EXPECT_NE("", problemOf(file));
    EXPECT_EQ("", problemOf(file, kNoTime));
    EXPECT_EQ("is no database", problemOf(folder.write("page.orvlib", "<html>"), kNoTime));
}

TEST_F(DatabaseCheckTest, nothingAppearsBesideTheFileWhateverItsName)
{
    for (const char* const name : {"T\xc3\xbcren 2.orvlib", "100%25 & #1?mode=rw.orvlib", "\xfc.orvlib"}) {
        const test::TempFolder own;
        EXPECT_EQ("", problemOf(own.write(name, test::sampleDatabase("doors")))) << name;
        EXPECT_THAT(test::listTree(own.path()), ElementsAre(name));
    }
}

TEST_F(DatabaseCheckTest, databaseWithAWriteAheadLogNeedsNoneBesideIt)
{
    std::string bytes = test::sampleDatabase("doors");
    bytes[18] = bytes[19] = 2; // the format versions of a database in WAL mode
    EXPECT_EQ("", problemOfBytes(bytes));
    EXPECT_THAT(test::listTree(folder.path()), ElementsAre("catalog.orvlib"));
}
