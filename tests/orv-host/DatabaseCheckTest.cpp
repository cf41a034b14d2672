#include "OrvHost/health/DatabaseCheck.h"

#include <cerrno>
#include <chrono>
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

namespace {

/// A file of one page that has no more of a database than its header.
class HeaderOnly
{
public:
    explicit HeaderOnly(std::size_t size = 4096) : mBytes(size, '\0')
    {
        mBytes.replace(0, 15, "SQLite format 3");
        number(16, 2, 4096);
    }
    HeaderOnly& number(std::size_t offset, std::size_t bytes, std::uint64_t value)
    {
        for (std::size_t index = bytes; index-- > 0; value >>= 8U)
            mBytes[offset + index] = static_cast<char>(value & 0xFFU);
        return *this;
    }
    HeaderOnly& pages(std::uint64_t count) { return number(28, 4, count); }
    const std::string& bytes() const { return mBytes; }

private:
    std::string mBytes;
};

class DatabaseCheckHeader : public DatabaseCheckTest
{
protected:
    std::string problem(const HeaderOnly& header) const
    {
        return problemOf(folder.write("catalog.orvlib", header.bytes()), kNoTime);
    }
};

const std::string kNone = "is no database";
const std::string kCut = "is a damaged database: it is cut off";

} // namespace

TEST_F(DatabaseCheckHeader, beginsWithTheMark)
{
    EXPECT_EQ(problem(HeaderOnly()), "");
    EXPECT_EQ(problem(HeaderOnly(100)), "");
    EXPECT_EQ(problem(HeaderOnly(99)), kNone);
    for (const std::size_t offset : {0, 14, 15})
        EXPECT_EQ(problem(HeaderOnly().number(offset, 1, 'x')), kNone) << offset;
    errno = EACCES;
    EXPECT_EQ(problemOf(folder.write("short.orvlib", "short"), kNoTime), kNone);
}

TEST_F(DatabaseCheckHeader, pageSizeIsAPowerOfTwo)
{
    const std::pair<std::uint64_t, std::string> table[] = {
        {0, kNone}, {2, kNone}, {256, kNone},  {511, kNone}, {512, ""},      {513, kNone}, {768, kNone},
        {1024, ""}, {4096, ""}, {4097, kNone}, {32768, ""},  {65535, kNone}, {1, ""}};
    for (const auto& [size, expected] : table)
        EXPECT_EQ(problem(HeaderOnly().number(16, 2, size)), expected) << size;
}

TEST_F(DatabaseCheckHeader, pagesMustBeThere)
{
    EXPECT_EQ(problem(HeaderOnly(8192).pages(2)), "");
    EXPECT_EQ(problem(HeaderOnly(8191).pages(2)), kCut);
    EXPECT_EQ(problem(HeaderOnly(8192).pages(3)), kCut);
    EXPECT_EQ(problem(HeaderOnly(8192).pages(0x01000000)), kCut);
    EXPECT_EQ(problem(HeaderOnly(8192).pages(2).number(32, 1, 9)), "")
        << "that byte belongs to the next number";
    EXPECT_EQ(problem(HeaderOnly(65536).number(16, 2, 1).pages(1)), "") << "1 is a page size of 65536";
    EXPECT_EQ(problem(HeaderOnly(65535).number(16, 2, 1).pages(1)), kCut);
}

TEST_F(DatabaseCheckHeader, pagesCountOnlyWhereTheLastWriterCountedThem)
{
    constexpr std::size_t kChanges = 24, kCountedAt = 92;
    for (const std::uint64_t changes : {0x1ULL, 0x100ULL, 0x10000ULL, 0x1000000ULL}) {
        HeaderOnly header(4096);
        EXPECT_EQ(problem(header.pages(2).number(kChanges, 4, changes)), "") << changes;
        EXPECT_EQ(problem(header.number(kCountedAt, 4, changes)), kCut) << changes;
        EXPECT_EQ(problem(header.number(kChanges - 1, 1, 7).number(kCountedAt + 4, 1, 8)), kCut) << changes;
        EXPECT_EQ(problem(header.number(kChanges, 4, 0)), "") << changes;
    }
}

TEST_F(DatabaseCheckTest, damageIsToldInTheWordsOfTheDatabaseLibrary)
{
    std::string bytes = test::sampleDatabase("doors");
    bytes[100] = '\xFF'; // the kind of the first page
    EXPECT_EQ("is a damaged database: database disk image is malformed", problemOfBytes(bytes));
    const std::string problem = problemOfBytes(damagedInside());
    EXPECT_THAT(problem, testing::MatchesRegex("is a damaged database: [A-Z][^*\n]+"));
}

TEST_F(DatabaseCheckTest, withoutTimeNoPageIsRead)
{
    const fileString file = folder.write("catalog.orvlib", damagedInside());
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ("", problemOf(file, kNoTime));
    // A short time may be over before the end, but not every time.
    bool isFound = false;
    for (int i = 0; i < 1000 && !isFound; ++i)
        isFound = !problemOf(file, std::chrono::milliseconds(1)).empty();
    EXPECT_TRUE(isFound);
}

TEST_F(DatabaseCheckTest, checkEndsAtItsLimitAndAfterACancel)
{
    const fileString slow = folder.write("slow.orvlib", test::slowDatabase());
    const fileString quick = folder.write("quick.orvlib", test::sampleDatabase("doors"));
    const auto secondsOf = [](const fileString& file, std::chrono::milliseconds limit,
                              const std::function<bool()>& isCancelled) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ("", problemOf(file, limit, isCancelled));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    constexpr std::chrono::minutes kLong{1};
    constexpr double kMuchLess = 6; // the whole check takes more than 10 seconds
    EXPECT_LT(secondsOf(slow, std::chrono::milliseconds(50), {}), kMuchLess);
    EXPECT_LT(secondsOf(slow, kLong, [] { return true; }), kMuchLess);
    EXPECT_LT(secondsOf(quick, kLong, [] { return false; }), 30) << "the limit is not waited for";
    int asked = 0;
    EXPECT_LT(secondsOf(slow, kLong, [&asked] { return ++asked == 3; }), kMuchLess);
}
