#include "OrvHost/history/CatalogPlace.h"

#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using OrvHost::CatalogCategory;
using OrvHost::CatalogPlace;
namespace CatalogPlaces = OrvHost::CatalogPlaces;
using testing::ElementsAre;

namespace {

const CatalogPlace kDoors{CatalogCategory::Core, "Doors.orvlib"};
const CatalogPlace kGarden{CatalogCategory::Bonus, "Garden.orvlib"};
const CatalogPlace kTiles{CatalogCategory::Manufacturer, "Tiles.orvlib"};
const CatalogPlace kGardenFiles{CatalogCategory::Referenced, "Garden.zip"};
const CatalogPlace kNone{CatalogCategory::Core, ""};

class CatalogPlaceTest : public test::HostedTest
{
protected:
    std::string path(const std::string& name) const { return folder.path() + "/root/" + name; }
    /// The key of the found place, or the message of the failure.
    static std::string found(const std::string& name, const std::vector<CatalogPlace>& places)
    {
        try {
            return CatalogPlaces::find(name, places).key();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }
};

} // namespace

TEST_F(CatalogPlaceTest, everyCategoryHasItsFolders)
{
    EXPECT_EQ(kDoors.path().toNativeString(), path("core/Doors.orvlib"));
    EXPECT_EQ(kGarden.path().toNativeString(), path("bonus/Garden.orvlib"));
    EXPECT_EQ(kTiles.path().toNativeString(), path("manufacturer/Tiles.orvlib"));
    EXPECT_EQ(kGardenFiles.path().toNativeString(), path("referenced/Garden.zip"));
    EXPECT_EQ(kDoors.hashFolder().toNativeString(), path("core/"));
    EXPECT_EQ(kGarden.hashFolder().toNativeString(), path("bonus/"));
    EXPECT_EQ(kTiles.hashFolder().toNativeString(), path("manufacturer/"));
    EXPECT_EQ(kGardenFiles.hashFolder().toNativeString(), path("core/"));
}

TEST_F(CatalogPlaceTest, keysAndPathsLeadBack)
{
    for (const CatalogPlace& place : {kDoors, kGarden, kTiles, kGardenFiles}) {
        EXPECT_EQ(CatalogPlaces::ofKey(place.key()), place) << place.key();
        EXPECT_EQ(CatalogPlaces::ofPath(place.path()), place) << place.key();
    }
    EXPECT_EQ(kTiles.key(), "manufacturer/Tiles.orvlib");
    EXPECT_EQ(kGardenFiles.key(), "referenced/Garden.zip");
    EXPECT_EQ(CatalogPlaces::ofKey("core/"), kNone);
}

TEST_F(CatalogPlaceTest, otherKeysAndPathsHaveNoPlace)
{
    for (const char* key : {"", "core", "Doors.orvlib", "other/Doors.orvlib", "core/a/Doors.orvlib",
                            "core//Doors.orvlib", "/Doors.orvlib"})
        EXPECT_EQ(CatalogPlaces::ofKey(key), kNone) << key;
    for (const std::string& other : {path("user/Doors.orvlib"), path("Doors.orvlib"), std::string("a")})
        EXPECT_EQ(CatalogPlaces::ofPath(fileString(other)), kNone) << other;
}

TEST_F(CatalogPlaceTest, onlyBonusAndManufacturerCatalogsHaveACompanion)
{
    EXPECT_EQ(kGarden.companion(), kGardenFiles);
    EXPECT_EQ(kTiles.companion().key(), "referenced/Tiles.zip");
    EXPECT_EQ(kDoors.companion(), kNone);
    EXPECT_EQ(kGardenFiles.companion(), kNone);
}

TEST_F(CatalogPlaceTest, tagComesFromTheHashFile)
{
    EXPECT_EQ(kDoors.tag(), "");
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:d1\nGarden.zip:g1\n");
    EXPECT_EQ(kDoors.tag(), "d1");
    EXPECT_EQ(kGardenFiles.tagOrThrow(), "g1");
    EXPECT_EQ((CatalogPlace{CatalogCategory::Core, "Roofs.orvlib"}.tagOrThrow()), "");
    folder.write("root/bonus/catalog_hash.txt/in the way", "");
    EXPECT_EQ(kGarden.tag(), "");
    EXPECT_THROW(kGarden.tagOrThrow(), std::runtime_error);
}

TEST_F(CatalogPlaceTest, installedCatalogsAreListedByCategoryAndName)
{
    for (const char* name : {"core/b.orvlib", "core/a.orvlib", "core/c.zip", "bonus/d.orvlib",
                             "manufacturer/e.orvlib", "referenced/f.zip", "referenced/g.orvlib"})
        folder.write(std::string("root/") + name, "x");
    std::vector<std::string> keys;
    for (const CatalogPlace& place : CatalogPlaces::installed())
        keys.push_back(place.key());
    EXPECT_THAT(keys, ElementsAre("core/a.orvlib", "core/b.orvlib", "bonus/d.orvlib", "manufacturer/e.orvlib",
                                  "referenced/f.zip"));
}

TEST_F(CatalogPlaceTest, keyComesBeforeNameAndNameBeforeStem)
{
    const std::vector<CatalogPlace> places{kDoors,
                                           kGarden,
                                           kGardenFiles,
                                           {CatalogCategory::Core, "Garden"},
                                           {CatalogCategory::Core, "bonus/Garden.orvlib"}};
    EXPECT_EQ(found("Doors", places), "core/Doors.orvlib");
    EXPECT_EQ(found("Doors.orvlib", places), "core/Doors.orvlib");
    EXPECT_EQ(found("core/Doors.orvlib", places), "core/Doors.orvlib");
    EXPECT_EQ(found("Garden", places), "core/Garden");
    EXPECT_EQ(found("bonus/Garden.orvlib", places), "bonus/Garden.orvlib");
    EXPECT_EQ(found("Roofs", places), "no catalog is called 'Roofs'");
}

TEST_F(CatalogPlaceTest, nameOfSeveralPlacesTellsTheirKeys)
{
    EXPECT_EQ(found("Garden", {kGarden, kGardenFiles}),
              "'Garden' can be bonus/Garden.orvlib or referenced/Garden.zip");
    EXPECT_EQ(found("Garden", {kGarden, {CatalogCategory::Core, "Garden.orvlib"}, kGardenFiles}),
              "'Garden' can be bonus/Garden.orvlib, core/Garden.orvlib or referenced/Garden.zip");
}
