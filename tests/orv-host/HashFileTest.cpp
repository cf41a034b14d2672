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

TEST_F(HashFileTest, aLineIsSetAtItsPlaceAndEveryOtherOfItsNameGoes)
{
    const auto set = [this](const std::string& name, const std::string& hash) {
        OrvHost::HashFile::set(fileString(folder.path()), name, hash);
    };
    set("b.orvlib", "1");
    EXPECT_EQ(content(), "b.orvlib:1\n");
    set("a.orvlib", "2");
    set("c.orvlib", "3");
    EXPECT_EQ(content(), "a.orvlib:2\nb.orvlib:1\nc.orvlib:3\n");
    write("stray\na.orvlib:2\nb.orvlib:1\n:b.orvlib:4\nd.orvlib:5\n\ne.orvlib:6\n");
    set("b.orvlib", "9");
    EXPECT_EQ(content(), "stray\na.orvlib:2\nb.orvlib:9\nd.orvlib:5\n") << "a blank line ends the file";
}

TEST_F(HashFileTest, aNameWithoutALineLeavesTheFileAlone)
{
    write("a.orvlib:1\nstray");
    EXPECT_FALSE(remove("stray"));
    EXPECT_FALSE(remove(""));
    EXPECT_EQ(content(), "a.orvlib:1\nstray");
}
