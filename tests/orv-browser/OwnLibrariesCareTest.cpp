// The user's own libraries survive when other programs change them too, and when the window is killed during
// a change.
#include <csignal>
#include <filesystem>
#include <optional>
#include <thread>

#include <unistd.h>

#include <gmock/gmock.h>

#include "OrvHost/AppHost.h"
#include "OrvHost/health/DatabaseCheck.h"
#include "OrvHost/update/HostLock.h"
#include "apps/orv-browser/models/SqliteConnection.h"
#include "apps/orv-browser/own/LibraryCopy.h"
#include "apps/orv-browser/own/OwnCatalog.h"
#include "apps/orv-browser/own/OwnFiles.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TempFolder.h"

namespace {

using test::CatalogMaker;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class BrowserOwnLibrariesCareTest : public testing::Test
{
protected:
    BrowserOwnLibrariesCareTest() : mHost({mFolder.file("root")})
    {
        CatalogMaker mine(mMine.toNativeString(), "mine");
        const int best = mine.addFolder("Best");
        for (const char* const name : {"Chair", "Stool", "Table"})
            mine.addItem(best, {name, "", 10000, 55, CatalogMaker::picture()});
        test::writeFile(inRoot("textures/Mine.zip"), "the textures");
    }

    std::string inRoot(const std::string& name) const { return mFolder.path() + "/root/" + name; }
    const fileString& mine() const { return mMine; }
    static OrvHost::HostLock locked(const fileString& root)
    {
        return OwnFiles::lock(root, [] { return false; });
    }
    const fileString& root() const { return mHost.root(); }
    const test::TempFolder& folder() const { return mFolder; }

    static std::vector<std::string> namesIn(const fileString& database)
    {
        const SqliteConnection connection(database, SqliteConnection::Access::Read, 1000);
        QSqlQuery query = connection.run("SELECT name FROM item ORDER BY name");
        std::vector<std::string> names;
        while (query.next())
            names.push_back(query.value(0).toString().toStdString());
        return names;
    }
    static std::string failureOf(const std::function<void()>& act)
    {
        try {
            act();
            return {};
        } catch (const std::exception& error) {
            return error.what();
        }
    }
    static void renameItem(const fileString& database, const QString& name)
    {
        OwnCatalog::rename(database, OwnCatalog::Entry::Item, 0, name);
    }

private:
    test::TempFolder mFolder;
    OrvHost::AppHost mHost;
    fileString mMine{mFolder.path() + "/root/user/Mine.orvlib"};
};

} // namespace

TEST_F(BrowserOwnLibrariesCareTest, changesWaitForAnImportOnTheSameRoot)
{
    std::optional<OrvHost::HostLock> import(locked(root()));
    EXPECT_EQ(failureOf([&] { OwnFiles::lock(root(), [] { return true; }); }), "cancelled");
    std::thread ends([&] { import.reset(); });
    EXPECT_NO_THROW(locked(root()));
    ends.join();
}

TEST_F(BrowserOwnLibrariesCareTest, libraryThatAnotherProgramWritesIsLeftAlone)
{
    const SqliteConnection other(mine(), SqliteConnection::Access::Write, 0);
    other.run("BEGIN EXCLUSIVE");
    other.run("UPDATE item SET name = 'Bench' WHERE id = 0");
    EXPECT_THAT(failureOf([&] { renameItem(mine(), "Sofa"); }), HasSubstr("locked"));
    other.run("COMMIT");
    EXPECT_THAT(namesIn(mine()), ElementsAre("Bench", "Stool", "Table"));
}

TEST_F(BrowserOwnLibrariesCareTest, changesOfAnotherProgramStay)
{
    int calls = 0;
    LibraryCopy::change(mine(), [&](const SqliteConnection& copy) {
        copy.run("UPDATE item SET name = 'Sofa' WHERE id = 0");
        if (++calls > 1)
            return;
        const SqliteConnection other(mine(), SqliteConnection::Access::Write, 1000);
        other.run("UPDATE item SET name = 'Desk' WHERE id = 2");
    });
    EXPECT_EQ(calls, 2);
    EXPECT_THAT(namesIn(mine()), ElementsAre("Desk", "Sofa", "Stool"));
    EXPECT_THAT(test::listTree(inRoot("temp")), IsEmpty());
}

TEST_F(BrowserOwnLibrariesCareTest, readersKeepTheLibraryAsItWas)
{
    const SqliteConnection reader(mine(), SqliteConnection::Access::Read, 0);
    QSqlQuery query = reader.run("SELECT name FROM item ORDER BY name");
    ASSERT_TRUE(query.next());
    renameItem(mine(), "Zebra");
    QStringList read{query.value(0).toString()};
    while (query.next())
        read << query.value(0).toString();
    EXPECT_EQ(read, QStringList({"Chair", "Stool", "Table"}));
    EXPECT_THAT(namesIn(mine()), ElementsAre("Stool", "Table", "Zebra"));
}

TEST_F(BrowserOwnLibrariesCareTest, journalsOfOtherProgramsAreTakenIn)
{
    {
        const SqliteConnection other(mine(), SqliteConnection::Access::Write, 0);
        other.run("PRAGMA journal_mode = WAL");
        other.run("UPDATE item SET name = 'Bench' WHERE id = 0");
    }
    renameItem(mine(), "Sofa");
    EXPECT_THAT(namesIn(mine()), ElementsAre("Sofa", "Stool", "Table"));
    EXPECT_THAT(test::listTree(inRoot("user")), ElementsAre("Mine.orvlib"));
}

TEST_F(BrowserOwnLibrariesCareTest, columnsThatTheWindowDoesNotKnowComeBackWithTheirItems)
{
    {
        const SqliteConnection other(mine(), SqliteConnection::Access::Write, 0);
        other.run("ALTER TABLE item ADD COLUMN \"price, net\" REAL");
        other.run("UPDATE item SET \"price, net\" = 12.5, geometry = x'00ff' WHERE id = 1");
    }
    OwnCatalog::KeptItems kept({1});
    OwnCatalog::takeOut(mine(), kept);
    EXPECT_THAT(namesIn(mine()), ElementsAre("Chair", "Table"));
    OwnCatalog::putBack(mine(), kept);
    const SqliteConnection after(mine(), SqliteConnection::Access::Read, 0);
    EXPECT_EQ(after.value("SELECT \"price, net\" FROM item WHERE id = 1").toDouble(), 12.5);
    EXPECT_EQ(after.value("SELECT hex(geometry) FROM item WHERE id = 1").toString(), "00FF");
}

TEST_F(BrowserOwnLibrariesCareTest, idsAndFoldersThatWereTakenMeanwhileAreNoHindrance)
{
    OwnCatalog::KeptItems kept({0, 2});
    OwnCatalog::takeOut(mine(), kept);
    {
        const SqliteConnection other(mine(), SqliteConnection::Access::Write, 0);
        other.run("INSERT INTO folder VALUES (7, NULL, 'Next')");
        other.run("INSERT INTO item VALUES (2, 7, 'Lamp', '', NULL, NULL, NULL, NULL)");
        other.run("UPDATE item SET folder = 7");
        other.run("DELETE FROM folder WHERE id = 1");
    }
    OwnCatalog::putBack(mine(), kept);
    EXPECT_THAT(namesIn(mine()), ElementsAre("Chair", "Lamp", "Stool", "Table"));
    EXPECT_THAT(kept.ids, ElementsAre(0, 4));
    const SqliteConnection after(mine(), SqliteConnection::Access::Read, 0);
    EXPECT_EQ(after.value("SELECT COUNT(*) FROM item WHERE folder = 7").toInt(), 4);
}

TEST_F(BrowserOwnLibrariesCareTest, copyOfManyItemsIsMadeWholeOrNotAtAll)
{
    const std::string before = test::readFile(mine());
    const fileString from(inRoot("core/Doors.orvlib"));
    {
        CatalogMaker doors(from.toNativeString(), "doors");
        doors.addItem(doors.addFolder("All"), {"Door"});
    }
    EXPECT_EQ(failureOf([&] {
                  OwnCatalog::copyItems(mine(), -1, {{from, 0, {}}, {from, 9, {}}});
              }),
              "an item is gone");
    EXPECT_EQ(test::readFile(mine()), before);
    EXPECT_THAT(test::listTree(inRoot("temp")), IsEmpty());
}

TEST_F(BrowserOwnLibrariesCareTest, linkToALibraryElsewhereStaysALink)
{
    const std::string elsewhere = inRoot("elsewhere.orvlib");
    ASSERT_EQ(rename(mine().toNativeString().c_str(), elsewhere.c_str()), 0);
    ASSERT_EQ(symlink(elsewhere.c_str(), mine().toNativeString().c_str()), 0);
    renameItem(mine(), "Sofa");
    EXPECT_THAT(namesIn(fileString(elsewhere)), ElementsAre("Sofa", "Stool", "Table"));
    const fileString next(inRoot("user/Next.orvlib"));
    OwnFiles::rename(mine(), next);
    EXPECT_THAT(namesIn(next), ElementsAre("Sofa", "Stool", "Table"));
    EXPECT_TRUE(fileString(elsewhere).pathExists());
}

TEST_F(BrowserOwnLibrariesCareTest, aPartThatTheBinDoesNotTakeBringsTheLibraryBack)
{
    const std::string desktop = folder().path() + "/desktop";
    const test::ScopedEnvironment bin("XDG_DATA_HOME", desktop.c_str());
    test::writeFile(inRoot("user/Mine.orvlib.bak"), "the former library");
    for (const std::string& open : {folder().path(), inRoot("user"), desktop}) {
        std::filesystem::create_directories(open);
        std::filesystem::permissions(open, std::filesystem::perms::all);
    }
    std::filesystem::permissions(inRoot("textures"), std::filesystem::perms(0555)); // nothing leaves it
    const std::vector<std::string> before = test::listTree(inRoot("user"));
    const test::ChildEnd end = test::runWithoutRights([&] {
        return failureOf([&] { OwnFiles::moveToBin(mine()); }) == "the bin does not take it" ? 0 : 1;
    });
    std::filesystem::permissions(inRoot("textures"), std::filesystem::perms(0755));
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(test::listTree(inRoot("user")), before);
    EXPECT_THAT(test::listTree(desktop + "/Trash"), ElementsAre("files/", "info/"));
}

TEST_F(BrowserOwnLibrariesCareTest, aBinThatTakesNoNotesIsNotTriedForEver)
{
    const std::string desktop = folder().path() + "/desktop";
    const test::ScopedEnvironment bin("XDG_DATA_HOME", desktop.c_str());
    for (const char* const part : {"/Trash/files", "/Trash/info"})
        std::filesystem::create_directories(desktop + part);
    for (const std::string& open : {folder().path(), inRoot("user"), desktop, desktop + "/Trash/files"})
        std::filesystem::permissions(open, std::filesystem::perms::all);
    std::filesystem::permissions(desktop + "/Trash/info", std::filesystem::perms(0555));
    const test::ChildEnd end = test::runWithoutRights([&] {
        signal(SIGALRM, SIG_DFL);
        alarm(20); // the alarm kills the process
        return failureOf([&] { OwnFiles::moveToBin(mine()); }) == "the bin does not take it" ? 0 : 1;
    });
    std::filesystem::permissions(desktop + "/Trash/info", std::filesystem::perms(0755));
    EXPECT_EQ(end.status, 0);
    EXPECT_TRUE(mine().pathExists());
}

TEST_F(BrowserOwnLibrariesCareTest, aKillAtAnyInstantLeavesTheLibraryWholeUnderOneName)
{
    const fileString next(inRoot("user/Next.orvlib"));
    int killed = 0;
    for (int round = 0; round < 60; ++round) {
        const test::ChildEnd end = test::runInChild([&] {
            signal(SIGALRM, SIG_DFL);
            ualarm(static_cast<useconds_t>(1000 + 1000 * round), 0); // the alarm kills the process
            for (;;) {
                const OrvHost::HostLock lock = locked(root());
                const bool isNext = next.pathExists();
                const fileString& now = isNext ? next : mine();
                renameItem(now, isNext ? "Chair" : "Sofa");
                OwnFiles::rename(now, isNext ? mine() : next);
            }
            return 0;
        });
        killed += end.signal == SIGALRM ? 1 : 0;
        const OrvHost::HostLock lock = locked(root());
        ASSERT_NE(next.pathExists(), mine().pathExists()) << round;
        const fileString now = next.pathExists() ? next : mine();
        ASSERT_EQ(OrvHost::DatabaseCheck::problemOf(now), "") << round;
        ASSERT_EQ(namesIn(now).size(), 3u) << round;
        ASSERT_EQ(test::readFile(inRoot("textures/" + now.stem().toNativeString() + ".zip")), "the textures");
    }
    EXPECT_EQ(killed, 60);
}
