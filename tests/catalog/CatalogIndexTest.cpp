#include "OrvLibrary/catalog/CatalogIndex_p.h"

#include "tests/catalog/CatalogTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class CatalogIndex : public test::CatalogTest
{
protected:
    /// Reads an index with this text. Returns the paths of its catalogs below the root.
    std::vector<std::string> read(const std::string& index)
    {
        std::set<fileString> files;
        LibraryCatalogUpdate::addIndexEntries(index, files);
        std::vector<std::string> names;
        const std::size_t root = path("").toNativeString().size();
        for (const fileString& file : files)
            names.push_back(file.toNativeString().substr(root));
        return names;
    }
};

} // namespace

TEST_F(CatalogIndex, namesBecomePathsInTheFolderOfTheirKind)
{
    EXPECT_THAT(read("Doors.orvlib\nTex.zip\nPacked.orvlibz\n"),
                ElementsAre("core/Doors.orvlib", "core/Packed.orvlibz", "referenced/Tex.zip"));
}

TEST_F(CatalogIndex, windowsLineEndsAndAMissingLastOneChangeNothing)
{
    EXPECT_EQ(read("a.orvlib\r\nb.orvlib\r\n"), read("a.orvlib\nb.orvlib"));
}

TEST_F(CatalogIndex, everyCarriageReturnIsRemoved)
{
    EXPECT_THAT(read("\ra.or\rvlib\r\r\n"), ElementsAre("core/a.orvlib"));
}

TEST_F(CatalogIndex, strayTextIsPassedOver)
{
    EXPECT_THAT(read("# a comment\n\nnotes.txt\nUPPER.ORVLIB\n.orvlib\n<html>\n.zip\n"), IsEmpty());
}

TEST_F(CatalogIndex, doubledNamesCountOnceAndFilesOfTheHostStay)
{
    std::set<fileString> files{fileString("/elsewhere/a.orvlib")};
    LibraryCatalogUpdate::addIndexEntries("a.orvlib\na.orvlib\n", files);
    EXPECT_THAT(files, UnorderedElementsAre(fileString("/elsewhere/a.orvlib"), path("core/a.orvlib")));
}

TEST_F(CatalogIndex, aNameIsJoinedAsItStands)
{
    EXPECT_THAT(read("sub/a.orvlib\n a b.orvlib\n"), ElementsAre("core/ a b.orvlib", "core/sub/a.orvlib"));
}
