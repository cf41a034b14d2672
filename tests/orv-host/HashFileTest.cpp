#include "OrvHost/update/HashFile.h"

#include <gmock/gmock.h>

#include "tests/support/TempFolder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class HashFileTest : public testing::Test
{
protected:
    void write(const std::string& content) { folder.write("catalog_hash.txt", content); }
    std::map<std::string, std::string> read() const
    {
        return OrvHost::HashFile::read(fileString(folder.path()));
    }
    bool remove(const std::string& name)
    {
        return OrvHost::HashFile::remove(fileString(folder.path()), name);
    }
    std::string content() const { return test::readFile(folder.file("catalog_hash.txt")); }

    test::TempFolder folder;
};

} // namespace

TEST_F(HashFileTest, aMissingFileListsNothing)
{
    EXPECT_THAT(read(), IsEmpty());
    EXPECT_FALSE(remove("a.orvlib"));
    EXPECT_THAT(test::listTree(folder.path()), IsEmpty());
}

TEST_F(HashFileTest, aFileThatCannotBeReadIsToldFromAMissingOne)
{
    const fileString folderOfHashes(folder.path());
    EXPECT_THAT(OrvHost::HashFile::readOrThrow(folderOfHashes), IsEmpty());
    folder.write("catalog_hash.txt/a folder", "");
    EXPECT_THROW(OrvHost::HashFile::readOrThrow(folderOfHashes), std::runtime_error);
    EXPECT_THAT(read(), IsEmpty());
}

TEST_F(HashFileTest, linesAreCutAsTheLibraryCutsThem)
{
    write("a.orvlib:1\n:b.orvlib:2\nc.orvlib:3:\nd.orvlib::4\ne.orvlib:\n:5\nf\ng.orvlib: 6\r\n");
    EXPECT_THAT(read(), ElementsAre(Pair("a.orvlib", "1"), Pair("b.orvlib", "2"), Pair("c.orvlib", "3"),
                                    Pair("g.orvlib", " 6\r")));
}

TEST_F(HashFileTest, blankLineEndsTheFile)
{
    write("a.orvlib:1\n\nb.orvlib:2\n");
    EXPECT_THAT(read(), ElementsAre(Pair("a.orvlib", "1")));
}

TEST_F(HashFileTest, theLastLineOfANameCounts)
{
    write("a.orvlib:1\na.orvlib:2\n");
    EXPECT_THAT(read(), ElementsAre(Pair("a.orvlib", "2")));
}

TEST_F(HashFileTest, allLinesOfANameAreRemovedAndNoOthers)
{
    write("a.orvlib:1\nstray\n:a.orvlib:2\na.orvlib:3:4\n\na.orvlib:5\naa.orvlib:6\n");
    EXPECT_TRUE(remove("a.orvlib"));
    EXPECT_EQ(content(), "stray\na.orvlib:3:4\n\naa.orvlib:6\n");
}

TEST_F(HashFileTest, aNameWithoutALineLeavesTheFileAlone)
{
    write("a.orvlib:1\nstray");
    EXPECT_FALSE(remove("stray"));
    EXPECT_FALSE(remove(""));
    EXPECT_EQ(content(), "a.orvlib:1\nstray");
}
