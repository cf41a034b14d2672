// Finds files that are damaged, missing, left over or from the future, and tells which an update brings back.
#include <chrono>
#include <ctime>
#include <filesystem>

#include <gmock/gmock.h>

#include "OrvHost/health/LibraryHealth.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvLibrary/host/SHA1.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"

using OrvHost::CatalogCategory;
using OrvHost::LibraryHealth;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

const std::string kTag(40, 'a');

class LibraryHealthFiles : public test::HostedTest
{
protected:
    fileString write(const std::string& name, const std::string& content) const
    {
        return folder.write("root/" + name, content);
    }
    std::string read(const std::string& name) const { return test::readFile(folder.file("root/" + name)); }
    void writeDamaged(const std::string& name) const
    {
        test::ArchiveBuilder archive;
        archive.add("Oak.png", test::sampleBytes(5000, 1));
        std::string bytes = archive.bytes();
        bytes[1000] = static_cast<char>(~bytes[1000]);
        write(name, bytes);
    }
    void writeSound(const std::string& name) const
    {
        test::ArchiveBuilder archive;
        archive.add("Oak.png", test::sampleBytes(5000, 1));
        write(name, archive.bytes());
    }
    /// "NAME: TEXT", and " (listed)" and " (PATH)" for what is known.
    std::vector<std::string> told(const std::vector<LibraryHealth::Damage>& damages) const
    {
        std::vector<std::string> all;
        const std::string root = host.root().toNativeString();
        for (const LibraryHealth::Damage& damage : damages) {
            const std::string archive = damage.archive.toNativeString();
            all.push_back(damage.name + ": " + damage.text + (damage.isListed ? " (listed)" : "") +
                          (archive.empty() ? "" : " (" + archive.substr(root.size()) + ")"));
        }
        return all;
    }
    /// The names of the damaged archives, with "+" if an update brings them back.
    std::vector<std::string> damagedArchives() const
    {
        LibraryHealth health;
        health.checkArchives();
        std::vector<std::string> names;
        for (const LibraryHealth::Damage& damage : health.damages())
            names.push_back(damage.name + (damage.isListed ? "+" : ""));
        return names;
    }
    void restore(CatalogCategory category, const std::string& name) const
    {
        OrvHost::CatalogPins::change(fileString(folder.path() + "/root"), [&](OrvHost::CatalogPins& pins) {
            pins.setRestored({category, name}, {"version", kTag, {}});
        });
    }
    void setTime(const std::string& name, std::time_t time) const
    {
        const auto ahead = std::chrono::seconds(time - std::time(nullptr));
        fs::last_write_time(folder.path() + "/root/" + name, fs::file_time_type::clock::now() + ahead);
    }
};

} // namespace

TEST_F(LibraryHealthFiles, coreCatalogsAreComparedWithTheirTags)
{
    const std::string tag = SHA1::fileContentsToSHA1Hex(write("core/Sound.orvlib", "sound"));
    write("core/Wrong.orvlib", "wrong");
    write("core/Opaque.orvlib", "opaque");
    write("core/Unlisted.orvlib", "unlisted");
    write("core/Archive.zip", "archive");
    write("core/catalog_hash.txt", "Sound.orvlib:" + tag + "\nWrong.orvlib:" + kTag + "\nMissing.orvlib:" +
                                       kTag + "\nOpaque.orvlib:opaque\nArchive.zip:" + kTag + "\n");
    const std::string expected = "Wrong.orvlib: its content does not match its SHA-1 tag (listed)";
    LibraryHealth health;
    health.checkCoreCatalogs();
    EXPECT_EQ(health.checkedCount(), 2U);
    EXPECT_THAT(told(health.damages()), ElementsAre(expected));
    LibraryHealth watched;
    watched.checkAll(nullptr);
    EXPECT_EQ(watched.checkedCount(), 2U);
    EXPECT_THAT(told(watched.damages()), ElementsAre(expected));
    const fileString sound = folder.file("root/core/Sound.orvlib");
    EXPECT_EQ(LibraryHealth::catalogDamage(sound, tag), "");
    EXPECT_EQ(LibraryHealth::catalogDamage(sound, "opaque"), "");
    EXPECT_EQ(LibraryHealth::catalogDamage(sound, kTag), "its content does not match its SHA-1 tag");
}

TEST_F(LibraryHealthFiles, archivesOfBothFoldersAreReadWhole)
{
    writeSound("referenced/A.zip");
    writeDamaged("referenced/B.zip");
    writeSound("textures/C.zip");
    writeDamaged("textures/D.zip");
    write("core/catalog_hash.txt", "B.zip:opaque\nD.zip:opaque\n");
    const std::string reason = LibraryHealth::archiveDamage(folder.file("root/referenced/B.zip"));
    EXPECT_THAT(reason, testing::HasSubstr("Oak.png"));
    EXPECT_EQ(LibraryHealth::archiveDamage(folder.file("root/referenced/A.zip")), "");
    const auto textures = LibraryHealth::archiveDamage(folder.file("root/textures/D.zip"));
    LibraryHealth health;
    health.checkArchives();
    EXPECT_EQ(health.checkedCount(), 4U);
    EXPECT_THAT(told(health.damages()), ElementsAre("B.zip: " + reason + " (listed) (referenced/B.zip)",
                                                    "D.zip: " + textures + " (textures/D.zip)"))
        << "no update brings textures, whatever is listed";
    LibraryHealth watched;
    watched.checkAll(nullptr);
    EXPECT_EQ(told(watched.damages()), told(health.damages()));
}

TEST_F(LibraryHealthFiles, archiveComesBackWithItsLineOrItsCatalog)
{
    for (const char* const name : {"Bonus", "Line", "Maker", "Nobody", "Unlisted"})
        writeDamaged(std::string("referenced/") + name + ".zip");
    write("core/catalog_hash.txt", "Line.zip:opaque\nNobody.orvlib:opaque\n");
    write("core/Nobody.orvlib", "core catalogs bring no archive");
    write("bonus/Bonus.orvlib", "bonus");
    write("bonus/Unlisted.orvlib", "unlisted");
    write("bonus/catalog_hash.txt", "Bonus.orvlib:opaque\n");
    write("manufacturer/Maker.orvlib", "maker");
    write("manufacturer/catalog_hash.txt", "Maker.orvlib:opaque\n");
    EXPECT_THAT(damagedArchives(),
                ElementsAre("Bonus.zip+", "Line.zip+", "Maker.zip+", "Nobody.zip", "Unlisted.zip"));
    restore(CatalogCategory::Bonus, "Bonus.orvlib");
    EXPECT_THAT(damagedArchives(),
                ElementsAre("Bonus.zip", "Line.zip+", "Maker.zip+", "Nobody.zip", "Unlisted.zip"))
        << "updates leave a restored catalog alone";
    EXPECT_FALSE(LibraryHealth::forget("Bonus.zip"));
    EXPECT_FALSE(LibraryHealth::forget("Nobody.zip"));
    EXPECT_TRUE(LibraryHealth::forget("Line.zip"));
    EXPECT_TRUE(LibraryHealth::forget("Maker.zip"));
    EXPECT_FALSE(LibraryHealth::forget("Maker.zip"));
    EXPECT_TRUE(LibraryHealth::forget("Nobody.orvlib"));
    EXPECT_FALSE(LibraryHealth::forget("Bonus.orvlib")) << "only core catalogs have a line of their own";
    EXPECT_EQ(read("core/catalog_hash.txt"), "");
    EXPECT_EQ(read("bonus/catalog_hash.txt"), "Bonus.orvlib:opaque\n");
    EXPECT_EQ(read("manufacturer/catalog_hash.txt"), "");
}

TEST_F(LibraryHealthFiles, listedFileThatIsNotThereIsMissing)
{
    write("core/catalog_hash.txt", "A.orvlib:1\nB.orvlib:2\nC.zip:3\nD.zip:4\n");
    write("core/A.orvlib", "");
    write("core/C.zip", "archives have their own folder");
    write("referenced/D.zip", "");
    write("bonus/catalog_hash.txt", "E.orvlib:5\n");
    write("manufacturer/catalog_hash.txt", "F.orvlib:6\n");
    const std::string text = ": it is listed, but not there; the next update fetches it (listed)";
    EXPECT_THAT(told(LibraryHealth::missingFiles()),
                ElementsAre("B.orvlib" + text, "C.zip" + text, "E.orvlib" + text, "F.orvlib" + text));
}

TEST_F(LibraryHealthFiles, leftOversAreCountedWithTheirSize)
{
    EXPECT_THAT(told(LibraryHealth::leftOvers()), IsEmpty());
    write("temp/partial/1.part", std::string(1000, 'x'));
    EXPECT_THAT(told(LibraryHealth::leftOvers()),
                ElementsAre(": 1 unfinished download (1000 bytes) of an earlier update"));
    write("temp/partial/2.other", "not counted");
    write("temp/orv-library.downloads.bonus/A.orvlib.download", std::string(500, 'x'));
    write("temp/orv-library.downloads.core/A.orvlib", "seven b");
    EXPECT_THAT(
        told(LibraryHealth::leftOvers()),
        ElementsAre(
            ": 2 unfinished downloads (1500 bytes) of an earlier update",
            ": 1 new catalog (7 bytes) of an update that did not end; the next one puts them in place"));
    write("temp/orv-library.downloads.manufacturer/B.orvlib", "abc");
    fs::remove_all(folder.path() + "/root/temp/partial");
    fs::remove_all(folder.path() + "/root/temp/orv-library.downloads.bonus");
    EXPECT_THAT(
        told(LibraryHealth::leftOvers()),
        ElementsAre(
            ": 2 new catalogs (10 bytes) of an update that did not end; the next one puts them in place"));
}

TEST_F(LibraryHealthFiles, stampsOfCatalogsInTheFutureAreTold)
{
    for (const char* const name :
         {"core/A.orvlib", "bonus/B.orvlib", "manufacturer/C.orvlib", "core/D.zip"}) {
        write(name, "");
        setTime(name, std::time(nullptr) + 1000);
    }
    write("core/E.orvlib", "");
    setTime("core/E.orvlib", std::time(nullptr) - 1000);
    write("core/F.orvlib", "of this second");
    const std::string text = ": its time stamp lies in the future";
    EXPECT_THAT(told(LibraryHealth::futureStamps()),
                ElementsAre("A.orvlib" + text, "B.orvlib" + text, "C.orvlib" + text));
}

TEST_F(LibraryHealthFiles, stampsOfManufacturersInTheFutureAreTold)
{
    const auto stampsOf = [this](const std::string& ofFile, const std::string& ofRecord) {
        write("manufacturer-data/manufacturer_data.json",
              R"({"Last_Modified":")" + ofFile + R"(","Manufacturer":{"Id":7,"Last_Modified":")" + ofRecord +
                  R"("},"Manufacturer":{"Id":8,"Last_Modified":"20200101T000000"}})");
        return told(LibraryHealth::futureStamps());
    };
    const std::string past = "20200101T000000", future = "29990101T000000";
    const std::string ofFile = "manufacturer_data.json: its time stamp lies in the future";
    const std::string ofRecord =
        "manufacturer_data.json: the time stamp of manufacturer 7 lies in the future";
    EXPECT_THAT(stampsOf(past, past), IsEmpty());
    EXPECT_THAT(stampsOf(future, past), ElementsAre(ofFile));
    EXPECT_THAT(stampsOf(past, future), ElementsAre(ofRecord));
    EXPECT_THAT(stampsOf(future, future), ElementsAre(ofFile, ofRecord));
    EXPECT_THAT(stampsOf("nonsense", "nonsense"), IsEmpty());
    fs::remove_all(folder.path() + "/root/manufacturer-data");
    EXPECT_THAT(told(LibraryHealth::futureStamps()), IsEmpty());
}
