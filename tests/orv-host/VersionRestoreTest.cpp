#include "OrvHost/history/VersionRestore.h"

#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>

#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/HashFile.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ContentService.h"
#include "tests/support/RecordingServices.h"

namespace fs = std::filesystem;

using OrvHost::CatalogCategory;
using OrvHost::CatalogHistory;
using OrvHost::CatalogPins;
using OrvHost::CatalogPlace;
namespace HashFile = OrvHost::HashFile;
namespace VersionRestore = OrvHost::VersionRestore;
using test::ContentService;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const CatalogPlace kDoors{CatalogCategory::Core, "Doors.orvlib"};
const CatalogPlace kGarden{CatalogCategory::Bonus, "Garden.orvlib"};
const CatalogPlace kGardenFiles{CatalogCategory::Referenced, "Garden.zip"};

class VersionRestoreTest : public test::HostedTest
{
protected:
    VersionRestoreTest() : mFormer(FileSearch::install(&search)) {}
    ~VersionRestoreTest() override { FileSearch::install(mFormer); }

    /// Puts a version into place as an update does. Its content is "content of VERSION".
    void update(const CatalogPlace& place, const std::string& version, bool hasTag = true) const
    {
        CatalogHistory history;
        std::string reason;
        ASSERT_TRUE(history.keep(place.companion(), reason));
        ASSERT_TRUE(history.keep(place, reason)) << reason;
        const fileString waiting = folder.write("new", "content of " + version);
        fs::create_directories(place.folder().toNativeString());
        fs::rename(waiting.toNativeString(), place.path().toNativeString());
        if (hasTag)
            HashFile::set(place.hashFolder(), place.name, version);
    }
    VersionRestore::Result restore(const std::string& name, const std::string& version = {}) const
    {
        return VersionRestore::restore(host.root(), name, version);
    }
    std::string problemOf(const std::string& name, const std::string& version = {}) const
    {
        try {
            restore(name, version);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }
    static std::vector<std::string> versions(const CatalogPlace& place)
    {
        std::vector<std::string> names;
        for (const OrvHost::FormerVersion& version : CatalogHistory().versions(place))
            names.push_back(version.version);
        return names;
    }
    CatalogPins::Restored recorded(const CatalogPlace& place) const
    {
        return CatalogPins(host.root()).restored().at(place);
    }

    test::RecordingFileSearch search;

private:
    FileSearch* mFormer;
};

} // namespace

TEST_F(VersionRestoreTest, newestFormerVersionComesBack)
{
    for (const char* version : {"1", "2", "3"})
        update(kDoors, version);
    const VersionRestore::Result result = restore("Doors");
    EXPECT_EQ(result.place, kDoors);
    EXPECT_EQ(result.restored, "2");
    EXPECT_EQ(result.former, "3");
    EXPECT_EQ(test::readFile(kDoors.path()), "content of 2");
    EXPECT_EQ(kDoors.tag(), "2");
    EXPECT_THAT(versions(kDoors), ElementsAre("3", "1"));
    EXPECT_THAT(search.folders(), IsEmpty());
    EXPECT_EQ(recorded(kDoors).version, "2");
    EXPECT_EQ(recorded(kDoors).contents, ContentService::sha1("content of 2"));
    EXPECT_THAT(recorded(kDoors).leaves, ElementsAre("3"));
}

TEST_F(VersionRestoreTest, versionsThatTheUserLeftAddUp)
{
    for (const char* version : {"1", "2", "3"})
        update(kDoors, version);
    restore("Doors", "1");
    EXPECT_EQ(kDoors.tag(), "1");
    EXPECT_EQ(restore("Doors", "2").former, "1");
    EXPECT_THAT(recorded(kDoors).leaves, ElementsAre("1", "3"));
    restore("Doors", "3");
    EXPECT_THAT(recorded(kDoors).leaves, ElementsAre("1", "2"));
}

TEST_F(VersionRestoreTest, missingVersionIsRefused)
{
    update(kDoors, "1");
    EXPECT_EQ(problemOf("Doors"), "Doors.orvlib has no former versions");
    update(kDoors, "2");
    EXPECT_EQ(problemOf("Doors", "2"), "Doors.orvlib has no former version '2'");
    EXPECT_EQ(problemOf("Roofs"), "no catalog is called 'Roofs'");
    EXPECT_EQ(kDoors.tag(), "2");
    EXPECT_THAT(CatalogPins(host.root()).restored(), IsEmpty());
}

TEST_F(VersionRestoreTest, missingCatalogComesBackAndLeavesNoVersion)
{
    update(kDoors, "1");
    update(kDoors, "2");
    fs::remove(kDoors.path().toNativeString());
    EXPECT_EQ(VersionRestore::versionInPlace(kDoors), "");
    EXPECT_EQ(restore("Doors").former, "");
    EXPECT_THAT(recorded(kDoors).leaves, IsEmpty());
    EXPECT_EQ(VersionRestore::versionInPlace(kDoors), "1");
}

TEST_F(VersionRestoreTest, catalogWithoutATagIsToldByItsContent)
{
    update(kDoors, "1");
    update(kDoors, "2");
    HashFile::remove(kDoors.hashFolder(), "Doors.orvlib");
    EXPECT_EQ(VersionRestore::versionInPlace(kDoors), ContentService::sha1("content of 2"));
    EXPECT_EQ(restore("Doors").former, ContentService::sha1("content of 2"));
    EXPECT_EQ(kDoors.tag(), "1");
    folder.write("root/core/Roofs.orvlib/in the way", "");
    EXPECT_THROW(VersionRestore::versionInPlace({CatalogCategory::Core, "Roofs.orvlib"}), std::runtime_error);
}

TEST_F(VersionRestoreTest, lostTagOfTheVersionInPlaceIsFoundInTheHistory)
{
    update(kDoors, "1");
    update(kDoors, "2");
    std::string reason;
    ASSERT_TRUE(CatalogHistory().keep(kDoors, "2", reason));
    HashFile::remove(kDoors.hashFolder(), "Doors.orvlib");
    EXPECT_EQ(restore("Doors").former, "2");
    // A tag that is there stays.
    ASSERT_TRUE(CatalogHistory().keep(kDoors, "other", reason));
    EXPECT_EQ(restore("Doors").former, "1");
}

TEST_F(VersionRestoreTest, lostTagOfARestoredVersionIsFoundInThePins)
{
    update(kDoors, "1");
    update(kDoors, "2");
    restore("Doors");
    HashFile::remove(kDoors.hashFolder(), "Doors.orvlib");
    EXPECT_EQ(restore("Doors").former, "1");
}

TEST_F(VersionRestoreTest, heldCatalogStaysHeldAtTheRestoredVersion)
{
    for (const char* version : {"1", "2", "3"})
        update(kDoors, version);
    CatalogPins pins(host.root());
    pins.hold(kDoors, {"3", "2"});
    pins.hold(kGarden, {"g", "h"});
    pins.save();
    restore("Doors", "1");
    EXPECT_EQ(CatalogPins(host.root()).held().at(kDoors).version, "1");
    EXPECT_EQ(CatalogPins(host.root()).held().at(kDoors).newer, "2");
    restore("Doors", "2");
    EXPECT_EQ(CatalogPins(host.root()).held().at(kDoors).version, "2");
    EXPECT_EQ(CatalogPins(host.root()).held().at(kDoors).newer, "");
    EXPECT_EQ(CatalogPins(host.root()).held().at(kGarden).newer, "h");
}

TEST_F(VersionRestoreTest, fileOfAKilledUpdateDoesNotReplaceIt)
{
    update(kDoors, "1");
    update(kDoors, "2");
    const std::string own = OrvHost::CatalogFolders::core().downloadFolder.toNativeString();
    const std::string other = OrvHost::CatalogFolders::bonus().downloadFolder.toNativeString();
    for (const std::string& waiting : {own, other}) {
        fs::create_directories(waiting);
        test::writeFile(waiting + "/Doors.orvlib", "x");
    }
    restore("Doors");
    EXPECT_FALSE(fs::exists(own + "/Doors.orvlib"));
    EXPECT_TRUE(fs::exists(other + "/Doors.orvlib"));
}

TEST_F(VersionRestoreTest, bonusCatalogTakesItsArchiveAlong)
{
    folder.write("root/referenced/Garden.zip", "files 1");
    update(kGarden, "1");
    update(kGarden, "2");
    fs::remove(kGardenFiles.path().toNativeString());
    folder.write("root/referenced/Garden.zip", "files 2");
    HashFile::set(kGardenFiles.hashFolder(), "Garden.zip", "own tag");
    const VersionRestore::Result result = restore("Garden.orvlib");
    EXPECT_EQ(result.former, "2");
    EXPECT_EQ(test::readFile(kGarden.path()), "content of 1");
    EXPECT_EQ(test::readFile(kGardenFiles.path()), "files 1");
    EXPECT_EQ(kGardenFiles.tag(), "") << "it is another file now";
    EXPECT_THAT(search.folders(), ElementsAre(kGardenFiles.folder().toNativeString()));
    EXPECT_EQ(test::readFile(CatalogHistory().newest(kGardenFiles)), "files 2");
    EXPECT_THAT(versions(kGarden), ElementsAre("2"));
    EXPECT_TRUE(CatalogHistory().versions(kGarden)[0].companion.pathExists());
}

TEST_F(VersionRestoreTest, catalogWithoutAnArchiveLeavesThatInPlace)
{
    update(kGarden, "1");
    update(kGarden, "2");
    folder.write("root/referenced/Garden.zip", "files 2");
    HashFile::set(kGardenFiles.hashFolder(), "Garden.zip", "own tag");
    restore("Garden.orvlib");
    EXPECT_EQ(test::readFile(kGardenFiles.path()), "files 2");
    EXPECT_EQ(kGardenFiles.tag(), "own tag");
    EXPECT_THAT(search.folders(), IsEmpty());
}

TEST_F(VersionRestoreTest, archiveIsListedOnlyIfItWas)
{
    update(kGardenFiles, "1", false);
    update(kGardenFiles, "2", false);
    EXPECT_EQ(restore("Garden.zip").restored, ContentService::sha1("content of 1"));
    EXPECT_EQ(kGardenFiles.tag(), "");
    EXPECT_THAT(search.folders(), ElementsAre(kGardenFiles.folder().toNativeString()));
    HashFile::set(kGardenFiles.hashFolder(), "Garden.zip", "own tag");
    EXPECT_EQ(restore("Garden.zip").former, "own tag");
    EXPECT_EQ(kGardenFiles.tag(), ContentService::sha1("content of 2"));
}

TEST_F(VersionRestoreTest, pinsAreSavedBeforeTheFilesChange)
{
    folder.write("root/referenced/Garden.zip", "files 1");
    update(kGarden, "1");
    update(kGarden, "2");
    fs::remove(kGardenFiles.path().toNativeString());
    folder.write("root/referenced/Garden.zip/in the way", "");
    EXPECT_EQ(problemOf("Garden.orvlib"), "cannot replace " + kGardenFiles.path().toNativeString());
    EXPECT_EQ(recorded(kGarden).version, "1");
    EXPECT_EQ(test::readFile(kGarden.path()), "content of 2");
}

TEST_F(VersionRestoreTest, historyIsKeptWithinItsBounds)
{
    update(kDoors, "1");
    update(kDoors, "2");
    EXPECT_EQ(VersionRestore::restore(host.root(), "Doors", "", {1, 1}).restored, "1");
    EXPECT_THAT(versions(kDoors), ElementsAre("2"));
    update(kDoors, "3");
    EXPECT_EQ(VersionRestore::restore(host.root(), "Doors", "2", {1, 1 << 20}).former, "3");
    EXPECT_THAT(versions(kDoors), ElementsAre("3")) << "the bounds are kept";
}
