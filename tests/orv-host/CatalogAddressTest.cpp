#include "OrvHost/history/CatalogAddress.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using OrvHost::CatalogCategory;
using OrvHost::CatalogPlace;

namespace {

std::string address(const std::string& name)
{
    return "http://service.test/content?key=1&library=" + name + "&product=Orv&version=7";
}

class CatalogAddressTest : public test::HostedTest
{
protected:
    static CatalogPlace place(const std::string& name)
    {
        return OrvHost::CatalogAddress::placeOf(address(name));
    }
};

const CatalogPlace kNone;

} // namespace

TEST(CatalogAddress, theNameStandsBetweenLibraryAndProduct)
{
    using OrvHost::CatalogAddress::nameIn;
    EXPECT_EQ("Doors.orvlib", nameIn(address("Doors.orvlib")));
    EXPECT_EQ("a&product=b.orvlib", nameIn(address("a&product=b.orvlib")));
    EXPECT_EQ("", nameIn(address("")));
    EXPECT_EQ("", nameIn("http://service.test/?key=1&library=Doors.orvlib"));
    EXPECT_EQ("", nameIn("http://service.test/?key=1&product=Orv"));
    EXPECT_EQ("", nameIn("http://service.test/?key=1&product=Orv&library=Doors.orvlib"));
}

TEST_F(CatalogAddressTest, aCatalogIsInTheFolderThatHoldsItsFile)
{
    EXPECT_EQ(kNone, place("Doors.orvlib")) << "nothing is installed";
    folder.write("root/core/Doors.orvlib", "x");
    folder.write("root/core/Doors.orvlibz", "x");
    folder.write("root/core/Doors.txt", "x");
    folder.write("root/referenced/Doors.zip", "x");
    EXPECT_EQ((CatalogPlace{CatalogCategory::Core, "Doors.orvlib"}), place("Doors.orvlib"));
    EXPECT_EQ((CatalogPlace{CatalogCategory::Referenced, "Doors.zip"}), place("Doors.zip"));
    EXPECT_EQ(kNone, place("Doors.txt"));
    EXPECT_EQ(kNone, place("Doors.orvlibz")) << "a core catalog is not packed";
}

TEST_F(CatalogAddressTest, aPackedCatalogIsTheManufacturersBeforeItIsABonusOne)
{
    folder.write("root/bonus/Garden.orvlib", "x");
    EXPECT_EQ((CatalogPlace{CatalogCategory::Bonus, "Garden.orvlib"}), place("Garden.orvlibz"));
    folder.write("root/manufacturer/Garden.orvlib", "x");
    EXPECT_EQ((CatalogPlace{CatalogCategory::Manufacturer, "Garden.orvlib"}), place("Garden.orvlibz"));
    EXPECT_EQ(kNone, place("Garden.orvlib"));
}

TEST_F(CatalogAddressTest, packedCatalogsAndArchivesReplaceAnArchive)
{
    using OrvHost::CatalogAddress::archiveOf;
    const CatalogPlace archive{CatalogCategory::Referenced, "Garden.zip"};
    EXPECT_EQ(archive, archiveOf(address("Garden.orvlibz")));
    EXPECT_EQ(archive, archiveOf(address("Garden.zip")));
    EXPECT_EQ(kNone, archiveOf(address("Garden.orvlib")));
    EXPECT_EQ(kNone, archiveOf(address("")));
}
