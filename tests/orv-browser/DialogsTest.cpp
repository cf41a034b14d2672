#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/Appearance.h"
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
    EXPECT_EQ(child<QComboBox>("filterChoice").itemText(1), "Light");
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
    EXPECT_EQ(child<QComboBox>("filterChoice").count(), 1);
}

TEST_F(BrowserDialogsTest, theFirstOfTwoFiltersCanBeRemoved)
{
    manager.setLibraryFilters({LibraryFilter("First", 3, {"doors"}), LibraryFilter("Second", 4, {"lamps"})});
    manager.saveFilters();
    manager.loadFilters(); // which turns the list round
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
                 QTest::keyClick(catalogs, Qt::Key_Space); // out with the lamps
                 press(dialog, QDialogButtonBox::Ok);
             });
    EXPECT_THAT(manager.getLibraryFilters()[0].getDatabaseIds(), ElementsAre("gone"));
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
