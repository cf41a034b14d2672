#include "OrvHost/history/InstalledCatalogs.h"

#include <filesystem>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <gmock/gmock.h>

#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/CheckHistory.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ContentService.h"

namespace InstalledCatalogs = OrvHost::InstalledCatalogs;
using OrvHost::CatalogCategory;
using OrvHost::CatalogPlace;
using OrvHost::InstalledCatalog;
using State = OrvHost::InstalledCatalog::State;

namespace {

class InstalledCatalogsTest : public test::HostedTest
{
protected:
    InstalledCatalog info(const std::string& name) const
    {
        return InstalledCatalogs::info(host.root(), name);
    }
    void hold(const CatalogPlace& place) const
    {
        OrvHost::CatalogPins pins(host.root());
        pins.hold(place, {"v1", ""});
        pins.save();
    }
    void note(const std::string& asked, std::int64_t status) const
    {
        OrvHost::CheckHistory history(host.root());
        history.noteAnswer(asked, status, time);
        history.save();
    }

    const QDateTime time = QDateTime({2026, 1, 2}, {3, 4, 5, 6}, Qt::UTC);
    const std::string content = "the catalog";
};

} // namespace

TEST_F(InstalledCatalogsTest, filesAreDescribed)
{
    const fileString file = folder.write("root/core/Doors.orvlib", content);
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:v1\n");
    folder.write("root/bonus/Garden.orvlib", content);
    const std::vector<InstalledCatalog> all = InstalledCatalogs::list(host.root());
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].place.key(), "core/Doors.orvlib");
    EXPECT_EQ(all[0].version, "v1");
    EXPECT_EQ(all[0].bytes, 11);
    EXPECT_EQ(all[0].modified, QDateTime::fromSecsSinceEpoch(file.modificationTime(), Qt::UTC));
    EXPECT_EQ(all[0].modified.timeSpec(), Qt::UTC);
    EXPECT_FALSE(all[0].items);
    EXPECT_FALSE(all[0].lastChecked.isValid());
    EXPECT_FALSE(all[0].isHeld);
    EXPECT_EQ(all[1].place.key(), "bonus/Garden.orvlib");
}

TEST_F(InstalledCatalogsTest, catalogIsFoundByTheNameOfItsRequest)
{
    folder.write("root/core/Doors.orvlib", content);
    folder.write("root/bonus/Garden.orvlib", content);
    folder.write("root/manufacturer/Tiles.orvlib", content);
    folder.write("root/referenced/Files.zip", content);
    for (const char* asked : {"Doors.orvlib", "Garden.orvlibz", "Tiles.orvlibz", "Files.zip"}) {
        const std::string name = fileString(asked).stem().toNativeString();
        EXPECT_FALSE(info(name).lastChecked.isValid()) << asked;
        note(asked, 0);
        EXPECT_FALSE(info(name).lastChecked.isValid()) << asked;
        note(asked, 1);
        EXPECT_EQ(info(name).lastChecked, time) << asked;
    }
}

TEST_F(InstalledCatalogsTest, coreCatalogWithAnotherChecksumThanItsTagIsDamaged)
{
    folder.write("root/core/Doors.orvlib", content);
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:" + test::ContentService::sha1(content) + "\n");
    EXPECT_EQ(info("Doors").state, State::Sound);
    hold({CatalogCategory::Core, "Doors.orvlib"});
    EXPECT_EQ(info("Doors").state, State::Held);
    EXPECT_TRUE(info("Doors").isHeld);
    folder.write("root/core/Doors.orvlib", "the catslog");
    EXPECT_EQ(info("Doors").state, State::Damaged);
    EXPECT_TRUE(info("Doors").isHeld);
}

TEST_F(InstalledCatalogsTest, tagOfAPackedCatalogTellsNothingOfItsDamage)
{
    for (const char* kind : {"bonus", "manufacturer"}) {
        folder.write(std::string("root/") + kind + "/" + kind + ".orvlib", content);
        folder.write(std::string("root/") + kind + "/catalog_hash.txt",
                     std::string(kind) + ".orvlib:" + test::ContentService::sha1("packed") + "\n");
        EXPECT_EQ(info(kind).state, State::Sound) << kind;
    }
}

TEST_F(InstalledCatalogsTest, archiveOfReferencedFilesIsVerified)
{
    test::ArchiveBuilder archive;
    archive.add("oak.png", "oak").method = test::ArchiveMember::kStored;
    std::string bytes = archive.bytes();
    folder.write("root/referenced/Files.zip", bytes);
    EXPECT_EQ(info("Files").state, State::Sound);
    EXPECT_FALSE(info("Files").items);
    bytes[bytes.find("oak", 33)] = 'x';
    folder.write("root/referenced/Files.zip", bytes);
    EXPECT_EQ(info("Files").state, State::Damaged);
}

TEST_F(InstalledCatalogsTest, itemsOfACatalogAreCounted)
{
    const fileString file = folder.write("root/core/Doors.orvlib", "");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "test");
        database.setDatabaseName(QString::fromStdString(file.toNativeString()));
        ASSERT_TRUE(database.open());
        EXPECT_TRUE(QSqlQuery(database).exec("CREATE TABLE item (id INTEGER)"));
        EXPECT_TRUE(QSqlQuery(database).exec("INSERT INTO item VALUES (1), (2)"));
    }
    QSqlDatabase::removeDatabase("test");
    EXPECT_EQ(info("Doors").items, 2);
    folder.write("root/referenced/Files.zip", test::readFile(file));
    EXPECT_FALSE(info("Files").items) << "no file of this kind is a catalog";
}

TEST_F(InstalledCatalogsTest, statesHaveNames)
{
    EXPECT_STREQ(InstalledCatalogs::stateName(State::Sound), "sound");
    EXPECT_STREQ(InstalledCatalogs::stateName(State::Damaged), "damaged");
    EXPECT_STREQ(InstalledCatalogs::stateName(State::Held), "held");
}
