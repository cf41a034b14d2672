#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <gmock/gmock.h>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/search/SearchBar.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

void press(QDialog& dialog, QDialogButtonBox::StandardButton button)
{
    auto* box = dialog.findChild<QDialogButtonBox*>();
    QTest::mouseClick(box->button(button), Qt::LeftButton);
}

class BrowserDialogsTest : public test::BrowserTest
{
protected:
    BrowserDialogsTest()
    {
        CatalogMaker(inRoot("core/Doors.orvlib"), "doors");
        CatalogMaker(inRoot("core/Lamps.orvlib"), "lamps");
    }
    ~BrowserDialogsTest() override { Appearance::apply(Appearance::kSystem); }

    static void addFilter(QDialog& dialog, const QString& name)
    {
        QTest::mouseClick(dialog.findChild<QPushButton*>("addFilter"), Qt::LeftButton);
        auto* names = dialog.findChild<QListWidget*>("filterNames");
        names->currentItem()->setText(name);
    }

    /// Clicks OK, which opens a message box, and closes the box.
    /// @return its text
    static QString refusal(QDialog& dialog)
    {
        QString told;
        QTimer::singleShot(0, [&] { told = answerMessage(&dialog); });
        press(dialog, QDialogButtonBox::Ok);
        return told;
    }

    /// Waits for a message box over `parent`, or over the window, and closes it.
    static QString answerMessage(const QDialog* parent)
    {
        waitFor([&] { return QApplication::activeModalWidget() != parent; });
        const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return {};
        const QString told = box->text();
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        return told;
    }

    void choose(const QString& filter) { pick("filterChip", filter); }
    QStringList filterNames()
    {
        QStringList names;
        QMenu* menu = child<QToolButton>("filterChip").menu();
        Q_EMIT menu->aboutToShow();
        for (const QAction* action : menu->actions())
            if (action->isCheckable())
                names << action->text();
        return names;
    }
    QString chosenFilter() { return child<QToolButton>("filterChip").text(); }

    /// Writes the filters as another program would.
    void writeFilters(const std::vector<LibraryFilter>& filters, long current) const
    {
        ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(manager.getFilterFullname(), filters, current));
    }

    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
};

} // namespace

TEST_F(BrowserDialogsTest, newFilterIsKeptWithItsCatalogs)
{
    open();
    inDialog([&] { trigger("editFilters"); },
             [](QDialog& dialog) {
                 addFilter(dialog, "Light");
                 auto* catalogs = dialog.findChild<QListWidget*>("filterCatalogs");
                 ASSERT_EQ(catalogs->count(), 2);
                 catalogs->setCurrentRow(1);
                 QTest::keyClick(catalogs, Qt::Key_Space);
                 press(dialog, QDialogButtonBox::Ok);
             });
    manager.loadFilters();
    ASSERT_THAT(manager.getLibraryFilters(), SizeIs(1));
    EXPECT_EQ(manager.getLibraryFilters()[0].getFilterName(), "Light");
    EXPECT_THAT(manager.getLibraryFilters()[0].getDatabaseIds(), ElementsAre("lamps"));
    EXPECT_EQ(filterNames().value(1), "Light");
}

TEST_F(BrowserDialogsTest, cancelledFilterEditorChangesNothing)
{
    open();
    inDialog([&] { trigger("editFilters"); },
             [](QDialog& dialog) {
                 addFilter(dialog, "Light");
                 press(dialog, QDialogButtonBox::Cancel);
             });
    EXPECT_THAT(manager.getLibraryFilters(), SizeIs(0));
    manager.loadFilters();
    EXPECT_THAT(manager.getLibraryFilters(), SizeIs(0));
}

TEST_F(BrowserDialogsTest, lastFilterCanBeRemovedForGood)
{
    manager.setLibraryFilters({LibraryFilter("Light", 3, {"lamps", "gone"})});
    manager.setCurrentFilterId(3);
    manager.saveFilters();
    open();
    inDialog([&] { trigger("editFilters"); },
             [](QDialog& dialog) {
                 QTest::mouseClick(dialog.findChild<QPushButton*>("removeFilter"), Qt::LeftButton);
                 press(dialog, QDialogButtonBox::Ok);
             });
    manager.loadFilters();
    EXPECT_THAT(manager.getLibraryFilters(), SizeIs(0));
    EXPECT_EQ(manager.getCurrentFilterId(), -1);
    EXPECT_EQ(filterNames().size(), 1);
}

TEST_F(BrowserDialogsTest, theFirstOfTwoFiltersCanBeRemoved)
{
    manager.setLibraryFilters({LibraryFilter("First", 3, {"doors"}), LibraryFilter("Second", 4, {"lamps"})});
    manager.saveFilters();
    manager.loadFilters(); // reverses the list
    open();
    inDialog([&] { trigger("editFilters"); },
             [](QDialog& dialog) {
                 dialog.findChild<QListWidget*>("filterNames")->setCurrentRow(0);
                 QTest::mouseClick(dialog.findChild<QPushButton*>("removeFilter"), Qt::LeftButton);
                 press(dialog, QDialogButtonBox::Ok);
             });
    manager.loadFilters();
    ASSERT_THAT(manager.getLibraryFilters(), SizeIs(1));
    EXPECT_EQ(manager.getLibraryFilters()[0].getFilterName(), "First");
    EXPECT_THAT(manager.getLibraryFilters()[0].getDatabaseIds(), ElementsAre("doors"));
}

TEST_F(BrowserDialogsTest, filterKeepsCatalogsThatAreNotInstalled)
{
    manager.setLibraryFilters({LibraryFilter("Light", 3, {"gone", "lamps"})});
    manager.saveFilters();
    open();
    inDialog([&] { trigger("editFilters"); },
             [](QDialog& dialog) {
                 auto* catalogs = dialog.findChild<QListWidget*>("filterCatalogs");
                 catalogs->setCurrentRow(1);
                 QTest::keyClick(catalogs, Qt::Key_Space); // unchecks the lamps
                 press(dialog, QDialogButtonBox::Ok);
             });
    EXPECT_THAT(manager.getLibraryFilters()[0].getDatabaseIds(), ElementsAre("gone"));
}

TEST_F(BrowserDialogsTest, emptyAndEqualNamesAreRefused)
{
    open();
    inDialog([&] { trigger("editFilters"); },
             [](QDialog& dialog) {
                 addFilter(dialog, "Light");
                 addFilter(dialog, " Light ");
                 EXPECT_EQ(
                     refusal(dialog),
                     QString::fromUtf8("Two filters have the name “Light”. Give each a name of its own."));
                 dialog.findChild<QListWidget*>("filterNames")->currentItem()->setText("  ");
                 EXPECT_EQ(refusal(dialog), "Every filter needs a name.");
                 dialog.findChild<QListWidget*>("filterNames")->currentItem()->setText("Dark");
                 press(dialog, QDialogButtonBox::Ok);
             });
    manager.loadFilters();
    EXPECT_THAT(manager.getLibraryFilters(), SizeIs(2));
}

TEST_F(BrowserDialogsTest, newFiltersGetNamesOfTheirOwn)
{
    open();
    inDialog([&] { trigger("editFilters"); },
             [](QDialog& dialog) {
                 auto* add = dialog.findChild<QPushButton*>("addFilter");
                 QTest::mouseClick(add, Qt::LeftButton);
                 QTest::mouseClick(add, Qt::LeftButton);
                 auto* names = dialog.findChild<QListWidget*>("filterNames");
                 EXPECT_EQ(names->item(0)->text(), "New filter");
                 EXPECT_EQ(names->item(1)->text(), "New filter 2");
                 dialog.reject();
             });
}

TEST_F(BrowserDialogsTest, nameThatAnotherProgramGaveMeanwhileIsRefused)
{
    open();
    inDialog([&] { trigger("editFilters"); },
             [this](QDialog& dialog) {
                 addFilter(dialog, "Light");
                 writeFilters({LibraryFilter("Light", 5, {"doors"})}, -1);
                 EXPECT_TRUE(refusal(dialog).startsWith("Two filters have the name"));
                 dialog.reject();
             });
    ASSERT_THAT(manager.getLibraryFilters(), SizeIs(1));
    EXPECT_EQ(manager.getLibraryFilters()[0].getFilterId(), 5);
}

TEST_F(BrowserDialogsTest, chosenFilterKeepsWhatOtherProgramsChanged)
{
    writeFilters({LibraryFilter("Light", 3, {"lamps"})}, -1);
    manager.loadFilters();
    open();
    writeFilters({LibraryFilter("Added", 4, {"doors"}), LibraryFilter("Light", 3, {"lamps"})}, -1);
    choose("Light");
    manager.loadFilters();
    EXPECT_THAT(manager.getLibraryFilters(), SizeIs(2));
    EXPECT_EQ(manager.getCurrentFilterId(), 3);
    EXPECT_EQ(chosenFilter(), "Filter: Light");
    EXPECT_EQ(filterNames().size(), 3);
}

TEST_F(BrowserDialogsTest, filterThatIsGoneIsToldAndHidesNothing)
{
    writeFilters({LibraryFilter("Light", 3, {"lamps"})}, -1);
    manager.loadFilters();
    open();
    writeFilters({}, -1);
    QString told;
    QTimer::singleShot(0, [&] { told = answerMessage(nullptr); });
    choose("Light");
    EXPECT_TRUE(told.startsWith("The choice of the filter was not saved: ")) << told.toStdString();
    EXPECT_EQ(chosenFilter(), "Filter");
    EXPECT_EQ(filterNames().size(), 1);
}

TEST_F(BrowserDialogsTest, idThatNoFilterHasHidesNothing)
{
    writeFilters({LibraryFilter("Light", 3, {"lamps"})}, 77);
    manager.loadFilters();
    ASSERT_EQ(manager.getCurrentFilterId(), 77);
    open();
    EXPECT_EQ(chosenFilter(), "Filter");
    const QModelIndex core = place({"Core"});
    ASSERT_EQ(places().rowCount(core), 2);
    for (int row = 0; row < 2; ++row)
        EXPECT_FALSE(tree().isRowHidden(row, core)) << row;
    EXPECT_FALSE(window().gallery().search().hasChoices());
    choose("Light");
    ASSERT_TRUE(settle());
    EXPECT_TRUE(tree().isRowHidden(0, core)); // the catalog of doors
    EXPECT_FALSE(tree().isRowHidden(1, core));
}

TEST_F(BrowserDialogsTest, logShowsTheNewestEntryFirst)
{
    Library::ErrorLog() << "first trouble\n";
    Library::ErrorLog() << "second trouble\n";
    open();
    inDialog([&] { trigger("showLog"); },
             [](QDialog& dialog) {
                 const std::string text =
                     dialog.findChild<QPlainTextEdit*>("logText")->toPlainText().toStdString();
                 EXPECT_THAT(text, HasSubstr("first trouble"));
                 EXPECT_LT(text.find("second trouble"), text.find("first trouble"));
                 press(dialog, QDialogButtonBox::Close);
             });
}
