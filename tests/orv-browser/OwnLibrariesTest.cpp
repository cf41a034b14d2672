// The user's own libraries: create, rename, fill and remove them with mouse and keys.
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <gmock/gmock.h>

#include "OrvHost/health/DatabaseCheck.h"
#include "apps/orv-browser/models/SqliteConnection.h"
#include "apps/orv-browser/places/PlacesModel.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/ScopedEnvironment.h"

namespace {

using test::CatalogMaker;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class BrowserOwnLibrariesTest : public test::BrowserTest
{
protected:
    BrowserOwnLibrariesTest() : mBin("XDG_DATA_HOME", (folder().path() + "/desktop").c_str())
    {
        CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
        const int exterior = doors.addFolder("Exterior");
        doors.addItem(exterior, {"Oak door", "oak", 10000, 55, CatalogMaker::picture()});
        doors.addItem(exterior, {"Pine door"});
        doors.addItem(exterior, {"Steel door"});
    }

    /// Creates the library "Mine" with three items in the folder "Best", and its textures.
    void makeMine() const
    {
        CatalogMaker mine(inRoot("user/Mine.orvlib"), "mine");
        const int best = mine.addFolder("Best");
        mine.addItem(best, {"Chair", "Chair", 10000, 55, CatalogMaker::picture()});
        mine.addItem(best, {"Stool"});
        mine.addItem(best, {"Table"});
        test::writeFile(inRoot("textures/Mine.zip"), "the textures");
    }

    void typeName(const std::function<void()>& act, const QString& name)
    {
        inDialog(act, [&](QDialog& dialog) {
            auto* field = dialog.findChild<QLineEdit*>("name");
            field->selectAll();
            field->insert(name); // as input methods do; not all letters have a key
            QTest::keyClick(field, Qt::Key_Return);
        });
    }

    void pressInPlaces(Qt::Key key, const QStringList& place)
    {
        ASSERT_TRUE(goTo(place));
        QApplication::setActiveWindow(&window());
        tree().setFocus();
        QTest::keyClick(&tree(), key);
    }
    void pressInGallery(Qt::Key key, const QString& item)
    {
        QApplication::setActiveWindow(&window());
        select(item);
        child<QListView>("gallery").setFocus();
        QTest::keyClick(&child<QListView>("gallery"), key);
    }
    void press(Qt::Key key)
    {
        QApplication::setActiveWindow(&window());
        QTest::keyClick(&window(), key, Qt::ControlModifier);
    }
    void undo() { press(Qt::Key_Z); }
    void redo() { press(Qt::Key_Y); }
    bool hears(const QString& sentence)
    {
        const bool isHeard = waitFor([&] { return summary() == sentence; }) && settle();
        EXPECT_EQ(summary(), sentence);
        return isHeard;
    }
    QStringList libraries() { return placesBelow(place({"My libraries"})); }
    QStringList inBin() const
    {
        return QDir(QString::fromStdString(folder().path()) + "/desktop/Trash/files")
            .entryList(QDir::Files, QDir::Name);
    }
    QString problemOf(const QString& typed)
    {
        QString problem;
        inDialog([&] { trigger("newLibrary"); },
                 [&](QDialog& dialog) {
                     dialog.findChild<QLineEdit*>("name")->insert(typed);
                     problem = dialog.findChild<QLabel*>("nameProblem")->text();
                     const auto* box = dialog.findChild<QDialogButtonBox*>();
                     EXPECT_EQ(box->button(QDialogButtonBox::Ok)->isEnabled(), problem.isEmpty());
                     dialog.reject();
                 });
        return problem;
    }
    /// Selects an entry of the menu "Copy to" in the details.
    void copyTo(const char* button, const QString& entry)
    {
        QMenu* menu = child<QPushButton>(button).menu();
        Q_EMIT menu->aboutToShow();
        for (QAction* const action : menu->actions())
            if (action->text() == entry) {
                action->trigger();
                return;
            }
        ADD_FAILURE() << entry.toStdString();
    }

private:
    test::ScopedEnvironment mBin;
};

QStringList statementsOf(const std::string& database)
{
    const SqliteConnection connection(fileString(database), SqliteConnection::Access::Read, 0);
    QSqlQuery query = connection.run("SELECT sql FROM sqlite_master WHERE sql IS NOT NULL ORDER BY name");
    QStringList statements;
    while (query.next())
        statements << query.value(0).toString();
    return statements;
}

} // namespace

TEST_F(BrowserOwnLibrariesTest, buttonBelowThePlacesMakesAnEmptyOne)
{
    open();
    typeName([&] { QTest::mouseClick(&child<QToolButton>("addLibrary"), Qt::LeftButton); }, "Bath");
    ASSERT_TRUE(hears("Bath is there."));
    EXPECT_EQ(libraries(), QStringList("Bath"));
    EXPECT_EQ(tree().currentIndex().data().toString(), "Bath");
    EXPECT_THAT(names(), IsEmpty());
    const std::string file = inRoot("user/Bath.orvlib");
    EXPECT_EQ(OrvHost::DatabaseCheck::problemOf(fileString(file)), "");
    EXPECT_EQ(statementsOf(file), statementsOf(inRoot("core/Doors.orvlib")));
    const SqliteConnection made{fileString(file), SqliteConnection::Access::Read, 0};
    EXPECT_EQ(made.value("SELECT value FROM catalog WHERE key = 'id'").toString().size(), 36);
    EXPECT_EQ(made.value("SELECT value FROM catalog WHERE key = 'name'").toString(), "Bath");
    EXPECT_THAT(test::listTree(inRoot("temp")), IsEmpty());

    undo();
    ASSERT_TRUE(hears("Bath is in the bin."));
    EXPECT_THAT(libraries(), IsEmpty());
    redo();
    ASSERT_TRUE(hears("Bath is there."));
    EXPECT_EQ(libraries(), QStringList("Bath"));
    EXPECT_THAT(inBin(), IsEmpty());
}

TEST_F(BrowserOwnLibrariesTest, mayHaveNamesInAnyLetters)
{
    open();
    const QStringList given{QString::fromUtf8("K\xC3\xBC"
                                              "che & Bad"),
                            QString::fromUtf8("\xE6\x9C\xA8\xE5\xB7\xA5"),
                            QString::fromUtf8("\xF0\x9F\xAA\x91 50%1 chairs"), "Plan no. 2"};
    for (const QString& name : given) {
        typeName([&] { press(Qt::Key_N); }, "  " + name + " ");
        ASSERT_TRUE(hears(name + " is there."));
        EXPECT_EQ(tree().currentIndex().data().toString(), name);
    }
    EXPECT_EQ(libraries().size(), given.size());
    EXPECT_TRUE(fileString(inRoot("user/K\xC3\xBC"
                                  "che & Bad.orvlib"))
                    .pathExists());
}

TEST_F(BrowserOwnLibrariesTest, namesThatWillNotDoSayWhyAsTheyAreTyped)
{
    makeMine();
    open();
    ASSERT_TRUE(settle());
    EXPECT_EQ(problemOf(""), "A name is needed.");
    EXPECT_EQ(problemOf("   "), "A name is needed.");
    EXPECT_EQ(problemOf("Mine"), "There is a library of that name already.");
    EXPECT_EQ(problemOf("mINE "), "There is a library of that name already.");
    EXPECT_EQ(problemOf("a/b"), "The name must not hold /.");
    EXPECT_EQ(problemOf("what?"), "The name must not hold ?.");
    EXPECT_EQ(problemOf(".hidden"), "The name must not begin or end with a full stop.");
    EXPECT_EQ(problemOf("etc."), "The name must not begin or end with a full stop.");
    EXPECT_EQ(problemOf(QString(201, 'a')), "The name is too long.");
    EXPECT_EQ(problemOf(QString(101, QChar(0xFC))), "The name is too long.");
    EXPECT_EQ(problemOf(QString(200, 'a')), "");
    EXPECT_EQ(problemOf("Mine 2"), "");
    EXPECT_EQ(problemOf("Doors"), ""); // catalogs of the service have their own folder
}

TEST_F(BrowserOwnLibrariesTest, itemsAreCopiedToThemFromTheDetails)
{
    makeMine();
    open();
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    select("Oak door");
    copyTo("detailsCopy", "Mine");
    ASSERT_TRUE(hears("Copied to Mine."));
    ASSERT_TRUE(goTo({"My libraries", "Mine"}));
    EXPECT_EQ(names(), QStringList({"Chair", "Oak door", "Stool", "Table"}));
    undo();
    ASSERT_TRUE(hears("The copies are gone again."));
    EXPECT_EQ(names(), QStringList({"Chair", "Stool", "Table"}));
    redo();
    ASSERT_TRUE(hears("Copied to Mine."));
    select("Oak door");
    EXPECT_EQ(detail("detailsPaneName"), "oak");
    EXPECT_TRUE(waitFor([&] {
        return !items()
                    .index(names().indexOf("Oak door"), 0)
                    .data(GalleryModel::kPictureRole)
                    .value<QImage>()
                    .isNull();
    }));
}

TEST_F(BrowserOwnLibrariesTest, severalItemsBecomeANewOne)
{
    open();
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    child<QListView>("gallery").selectAll();
    typeName([&] { copyTo("severalCopy", "&New library\xE2\x80\xA6"); }, "All doors");
    ASSERT_TRUE(hears("All doors is there."));
    EXPECT_EQ(names(), QStringList({"Oak door", "Pine door", "Steel door"}));
    tree().expand(tree().currentIndex());
    EXPECT_EQ(placesBelow(tree().currentIndex()), QStringList("Items"));
}

TEST_F(BrowserOwnLibrariesTest, renamedByF2KeepTexturesFavouritesAndThePlace)
{
    makeMine();
    open();
    ASSERT_TRUE(goTo({"My libraries", "Mine", "Best"}));
    select("Stool");
    trigger("toggleFavourite");
    typeName([&] { pressInPlaces(Qt::Key_F2, {"My libraries", "Mine"}); }, "Yours");
    ASSERT_TRUE(hears("Mine is now called Yours."));
    EXPECT_EQ(libraries(), QStringList("Yours"));
    EXPECT_EQ(tree().currentIndex().data().toString(), "Yours");
    EXPECT_TRUE(tree().isExpanded(place({"My libraries", "Yours"})));
    EXPECT_EQ(test::readFile(inRoot("textures/Yours.zip")), "the textures");
    EXPECT_FALSE(fileString(inRoot("textures/Mine.zip")).pathExists());
    ASSERT_TRUE(goTo({"Favourites"}));
    EXPECT_EQ(names(), QStringList("Stool"));

    undo();
    ASSERT_TRUE(hears("Yours is now called Mine."));
    EXPECT_EQ(names(), QStringList("Stool"));
    EXPECT_EQ(test::readFile(inRoot("textures/Mine.zip")), "the textures");
    redo();
    ASSERT_TRUE(hears("Mine is now called Yours."));
    EXPECT_EQ(libraries(), QStringList("Yours"));
}

TEST_F(BrowserOwnLibrariesTest, letterCaseOfANameCanBeChanged)
{
    makeMine();
    open();
    typeName([&] { pressInPlaces(Qt::Key_F2, {"My libraries", "Mine"}); }, "MINE");
    ASSERT_TRUE(hears("Mine is now called MINE."));
    EXPECT_EQ(libraries(), QStringList("MINE"));
}

TEST_F(BrowserOwnLibrariesTest, texturesOfAnotherLibraryAreNeverReplacedByARename)
{
    makeMine();
    test::writeFile(inRoot("textures/Yours.zip"), "other textures");
    open();
    typeName([&] { pressInPlaces(Qt::Key_F2, {"My libraries", "Mine"}); }, "Yours");
    ASSERT_TRUE(waitFor([&] { return summary().startsWith("Mine was not renamed: "); }));
    EXPECT_THAT(summary().toStdString(), HasSubstr("Yours.zip is there already"));
    EXPECT_EQ(libraries(), QStringList("Mine"));
    EXPECT_EQ(test::readFile(inRoot("textures/Yours.zip")), "other textures");
    EXPECT_EQ(test::readFile(inRoot("textures/Mine.zip")), "the textures");
    EXPECT_FALSE(child<QAction>("undo").isEnabled());
}

TEST_F(BrowserOwnLibrariesTest, itemsAndFoldersAreRenamedByF2)
{
    makeMine();
    open();
    ASSERT_TRUE(goTo({"My libraries", "Mine"}));
    select("Chair");
    trigger("toggleFavourite");
    const QString name = QString::fromUtf8("Caf\xC3\xA9 / chair?");
    typeName([&] { pressInGallery(Qt::Key_F2, "Chair"); }, name);
    ASSERT_TRUE(hears("Chair is now called " + name + "."));
    EXPECT_EQ(names(), QStringList({name, "Stool", "Table"}));
    EXPECT_EQ(detail("detailsTitle"), name);
    EXPECT_EQ(detail("detailsPaneName"), ""); // not shown: it equals the name
    EXPECT_TRUE(items().index(0, 0).data(GalleryModel::kFavouriteRole).toBool());
    undo();
    ASSERT_TRUE(hears(name + " is now called Chair."));
    EXPECT_EQ(names(), QStringList({"Chair", "Stool", "Table"}));
    EXPECT_TRUE(items().index(0, 0).data(GalleryModel::kFavouriteRole).toBool());

    typeName([&] { pressInPlaces(Qt::Key_F2, {"My libraries", "Mine", "Best"}); }, "Finest");
    ASSERT_TRUE(hears("Best is now called Finest."));
    EXPECT_EQ(placesBelow(place({"My libraries", "Mine"})), QStringList("Finest"));
    EXPECT_EQ(tree().currentIndex().data().toString(), "Finest");
}

TEST_F(BrowserOwnLibrariesTest, deleteRemovesItemsAndUndoBringsAllOfThemBack)
{
    makeMine();
    open();
    ASSERT_TRUE(goTo({"My libraries", "Mine"}));
    select("Chair");
    trigger("toggleFavourite");
    child<QListView>("gallery").setFocus();
    QTest::keyClick(&child<QListView>("gallery"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&child<QListView>("gallery"), Qt::Key_Delete);
    ASSERT_TRUE(hears("3 items deleted. Undo brings them back."));
    EXPECT_THAT(names(), IsEmpty());
    undo();
    ASSERT_TRUE(hears("3 items are back."));
    EXPECT_EQ(names(), QStringList({"Chair", "Stool", "Table"}));
    EXPECT_TRUE(items().index(0, 0).data(GalleryModel::kFavouriteRole).toBool());
    EXPECT_EQ(items().itemAt(0).id, 0);
    EXPECT_TRUE(waitFor(
        [&] { return !items().index(0, 0).data(GalleryModel::kPictureRole).value<QImage>().isNull(); }));
    redo();
    ASSERT_TRUE(hears("3 items deleted. Undo brings them back."));
    EXPECT_THAT(names(), IsEmpty());
    close();
    EXPECT_THAT(test::listTree(inRoot("temp")), IsEmpty());
}

TEST_F(BrowserOwnLibrariesTest, deleteMovesALibraryWithItsTexturesToTheBin)
{
    makeMine();
    open();
    pressInPlaces(Qt::Key_Delete, {"My libraries", "Mine"});
    ASSERT_TRUE(hears("Mine is in the bin. Undo brings it back."));
    EXPECT_THAT(libraries(), IsEmpty());
    EXPECT_EQ(inBin(), QStringList({"Mine.orvlib", "Mine.zip"}));
    EXPECT_FALSE(fileString(inRoot("textures/Mine.zip")).pathExists());
    undo();
    ASSERT_TRUE(hears("Mine is back."));
    EXPECT_EQ(libraries(), QStringList("Mine"));
    EXPECT_EQ(test::readFile(inRoot("textures/Mine.zip")), "the textures");
    EXPECT_THAT(test::listTree(folder().path() + "/desktop/Trash"), ElementsAre("files/", "info/"));
}

TEST_F(BrowserOwnLibrariesTest, stayWhereTheyAreWithoutABin)
{
    const test::ScopedEnvironment none("XDG_DATA_HOME", "/dev/null/desktop");
    makeMine();
    open();
    pressInPlaces(Qt::Key_Delete, {"My libraries", "Mine"});
    ASSERT_TRUE(hears("Mine was not deleted: the bin does not take it"));
    EXPECT_EQ(libraries(), QStringList("Mine"));
    EXPECT_EQ(test::readFile(inRoot("textures/Mine.zip")), "the textures");
    EXPECT_FALSE(child<QAction>("undo").isEnabled());
}

TEST_F(BrowserOwnLibrariesTest, emptiedBinGivesNothingBackAndSaysSo)
{
    makeMine();
    open();
    pressInPlaces(Qt::Key_Delete, {"My libraries", "Mine"});
    ASSERT_TRUE(hears("Mine is in the bin. Undo brings it back."));
    QDir(QString::fromStdString(folder().path()) + "/desktop/Trash").removeRecursively();
    undo();
    ASSERT_TRUE(hears("Not undone: it is not in the bin any more"));
    redo();
    undo();
    EXPECT_FALSE(child<QAction>("redo").isEnabled());
    EXPECT_FALSE(child<QAction>("undo").isEnabled());
    EXPECT_THAT(libraries(), IsEmpty());
}

TEST_F(BrowserOwnLibrariesTest, catalogsOfTheServiceAreNeverChangedAndTheKeysSayWhy)
{
    makeMine();
    open();
    const std::string before = test::readFile(inRoot("core/Doors.orvlib"));
    const QString why = "Doors comes from the service. Only your own libraries can be changed.";
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    for (const Qt::Key key : {Qt::Key_F2, Qt::Key_Delete}) {
        Q_EMIT window().library().said(QString());
        pressInGallery(key, "Pine door");
        EXPECT_EQ(summary(), why) << key;
        Q_EMIT window().library().said(QString());
        pressInPlaces(key, {"Core", "Doors"});
        EXPECT_EQ(summary(), why) << key;
    }
    for (const char* const action : {"rename", "remove"}) {
        EXPECT_FALSE(child<QAction>(action).isEnabled());
        EXPECT_EQ(child<QAction>(action).toolTip(), why);
    }
    pressInPlaces(Qt::Key_Delete, {"My libraries"});
    EXPECT_EQ(summary(), "Select an item or a library of your own first.");
    pressInPlaces(Qt::Key_Delete, {"My libraries", "Mine", "Best"});
    EXPECT_EQ(summary(), "Folders cannot be deleted; select the items in it, or the library.");
    EXPECT_EQ(test::readFile(inRoot("core/Doors.orvlib")), before);
    EXPECT_EQ(libraries(), QStringList("Mine"));
}

TEST_F(BrowserOwnLibrariesTest, selectionWithForeignItemsStaysWhole)
{
    makeMine();
    open();
    ASSERT_TRUE(settle());
    child<QListView>("gallery").selectAll();
    EXPECT_FALSE(child<QAction>("remove").isEnabled());
    EXPECT_EQ(child<QAction>("rename").toolTip(), "Only one item can be renamed at a time.");
    EXPECT_TRUE(child<QMenu>("copyTo").menuAction()->isEnabled());
    child<QListView>("gallery").clearSelection();
    EXPECT_FALSE(child<QMenu>("copyTo").menuAction()->isEnabled());
    EXPECT_EQ(child<QMenu>("copyTo").menuAction()->toolTip(), "Select items first.");
}

TEST_F(BrowserOwnLibrariesTest, menuOfAPlaceOffersWhatCanBeDone)
{
    makeMine();
    open();
    ASSERT_TRUE(goTo({"My libraries", "Mine"}));
    QApplication::setActiveWindow(&window());
    tree().setFocus();
    Q_EMIT tree().customContextMenuRequested(tree().visualRect(tree().currentIndex()).center());
    auto& menu = child<QMenu>("placeMenu");
    ASSERT_TRUE(menu.isVisible());
    QStringList enabled;
    for (const QAction* const action : menu.actions())
        if (action->isEnabled())
            enabled << action->objectName();
    EXPECT_EQ(enabled, QStringList({"newLibrary", "rename", "remove"}));
    menu.close();
}
