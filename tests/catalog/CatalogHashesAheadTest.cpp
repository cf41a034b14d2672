#include "OrvLibrary/catalog/CatalogHashesAhead_p.h"

#include <cstdio>

#include <gmock/gmock.h>

#include "OrvLibrary/host/SHA1.h"
#include "tests/support/FolderWatch.h"
#include "tests/support/NoMoreThreads.h"
#include "tests/support/TempFolder.h"

using LibraryCatalogUpdate::CatalogHashesAhead;

namespace {

class CatalogHashesAheadTest : public testing::Test
{
protected:
    /// Writes files of different sizes, sorted by name.
    std::vector<fileString> writeFiles(int count)
    {
        std::vector<fileString> files;
        for (int i = 0; i < count; ++i)
            files.push_back(folder.write(std::to_string(1000 + i), content(i)));
        return files;
    }
    static std::string content(int number)
    {
        return std::string(static_cast<std::size_t>(number % 7) * 40'000,
                           static_cast<char>('a' + number % 26));
    }

    test::TempFolder folder;
};

} // namespace

TEST_F(CatalogHashesAheadTest, everyFileGetsItsOwnHash)
{
    const std::vector<fileString> files = writeFiles(300);
    CatalogHashesAhead hashes(files);
    for (const fileString& file : files)
        ASSERT_EQ(hashes.hashOf(file), SHA1::fileContentsToSHA1Hex(file));
}

TEST_F(CatalogHashesAheadTest, theOrderAndNumberOfQuestionsIsFree)
{
    const std::vector<fileString> files = writeFiles(40);
    CatalogHashesAhead hashes(files);
    for (auto file = files.rbegin(); file != files.rend(); ++file) {
        ASSERT_EQ(hashes.hashOf(*file), SHA1::fileContentsToSHA1Hex(*file));
        ASSERT_EQ(hashes.hashOf(files.front()), SHA1::fileContentsToSHA1Hex(files.front()));
    }
}

TEST_F(CatalogHashesAheadTest, fileBesideTheListIsHashedToo)
{
    const fileString other = folder.write("other", "x");
    for (const int count : {0, 1, 5}) {
        CatalogHashesAhead hashes(writeFiles(count));
        EXPECT_EQ(hashes.hashOf(other), SHA1::fileContentsToSHA1Hex(other)) << count;
        EXPECT_EQ(hashes.hashOf(folder.file("1000")), SHA1::fileContentsToSHA1Hex(folder.file("1000")))
            << count;
    }
}

TEST_F(CatalogHashesAheadTest, unreadableFileHasAnEmptyHash)
{
    std::vector<fileString> files = writeFiles(4);
    files.insert(files.begin() + 1, folder.file("1000-missing"));
    CatalogHashesAhead hashes(files);
    EXPECT_EQ(hashes.hashOf(folder.file("1000-missing")), "");
    EXPECT_EQ(hashes.hashOf(fileString(folder.path())), "");
    EXPECT_EQ(hashes.hashOf(files[4]), SHA1::fileContentsToSHA1Hex(files[4]));
}

TEST_F(CatalogHashesAheadTest, itMayEndBeforeAllWasAsked)
{
    const std::vector<fileString> files = writeFiles(300);
    for (std::size_t asked = 0; asked < 20; ++asked) {
        CatalogHashesAhead hashes(files);
        for (std::size_t i = 0; i < asked; ++i)
            ASSERT_EQ(hashes.hashOf(files[i]), SHA1::fileContentsToSHA1Hex(files[i]));
    }
}

TEST_F(CatalogHashesAheadTest, withoutASecondThreadEachIsHashedWhenItIsAskedFor)
{
    const std::vector<fileString> files = writeFiles(20);
    const test::NoMoreThreads none;
    CatalogHashesAhead hashes(files);
    for (const fileString& file : files)
        ASSERT_EQ(hashes.hashOf(file), SHA1::fileContentsToSHA1Hex(file));
    EXPECT_EQ(hashes.hashOf(folder.file("missing")), "");
}

TEST_F(CatalogHashesAheadTest, filesAreHashedBeforeTheyAreAskedFor)
{
    const std::vector<fileString> files = writeFiles(10);
    std::vector<std::string> expected;
    for (const fileString& file : files)
        expected.push_back(SHA1::fileContentsToSHA1Hex(file));
    test::FolderWatch watch(folder.path());
    CatalogHashesAhead hashes(files);
    while (watch.closed(files.back()) == 0)
        ASSERT_TRUE(watch.wait());
    for (const fileString& file : files)
        ASSERT_EQ(std::remove(file.toNativeString().c_str()), 0);
    for (std::size_t i = 0; i < files.size(); ++i)
        EXPECT_EQ(hashes.hashOf(files[i]), expected[i]) << i;
}

TEST_F(CatalogHashesAheadTest, aFileThatIsBeingHashedIsNotReadTwice)
{
    const fileString large = folder.write("1", std::string(16 << 20, 'x'));
    const fileString small = folder.write("2", "x");
    test::FolderWatch watch(folder.path());
    CatalogHashesAhead hashes({large, small});
    while (watch.opened(large) == 0)
        ASSERT_TRUE(watch.wait());
    hashes.hashOf(large);
    hashes.hashOf(small);
    EXPECT_EQ(watch.opened(large), 1);
    EXPECT_EQ(watch.opened(small), 1);
}
