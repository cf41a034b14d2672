// The filter as one more choice above the gallery, filters saved from choices, and undoing all this.
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gmock/gmock.h>

#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/models/Names.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;
using testing::ElementsAre;
using testing::SizeIs;

constexpr int kModern = 10001; // a style that the library knows

class BrowserFilterChipTest : public test::BrowserTest
{
protected:
    BrowserFilterChipTest()
    {
        for (const char* name : {"Doors", "Lamps", "Tables"}) {
            CatalogMaker catalog(inRoot(std::string("core/") + name + ".orvlib"), name);
            const int all = catalog.addFolder("All");
            catalog.addItem(all, {std::string(name) + " plain", "", 10002, std::nullopt});
            if (std::string(name) != "Tables")
                catalog.addItem(all, {std::string(name) + " modern", "", kModern, std::nullopt});
        }
    }

    QString chip() { return child<QToolButton>("filterChip").text(); }
    /// Saves the current choices as a filter with this name.
    void saveAs(const QString& name)
    {
        inDialog([&] { pick("filterChip", "Save as filter"); },
                 [&](QDialog& dialog) {
                     mLabel = dialog.findChild<QLabel*>()->text();
                     auto* line = dialog.findChild<QLineEdit*>();
                     mProposal = line->text();
                     line->selectAll();
                     QTest::keyClicks(line, name);
                     QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                                       Qt::LeftButton);
                 });
    }
    void chooseModern()
    {
        ASSERT_TRUE(settle());
        pick("styleChip", Names::style(kModern));
        ASSERT_TRUE(settle());
    }
    void undo()
    {
        window().activateWindow(); // a dialog may have been active
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
    }
    std::vector<LibraryFilter> inFile() const
    {
        std::vector<LibraryFilter> filters;
        LibraryFilterManager::loadFiltersFromFile(manager.getFilterFullname(), filters);
        return filters;
    }

    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    QString mLabel;    ///< what the dialog said
    QString mProposal; ///< the name that it offered
};

} // namespace

TEST_F(BrowserFilterChipTest, choicesBecomeAFilterThatIsInForce)
{
    open();
    chooseModern();
    saveAs("Mine");
    EXPECT_TRUE(mLabel.startsWith("The filter will let these catalogs through: Doors, Lamps."))
        << mLabel.toStdString();
    EXPECT_EQ(mProposal, Names::style(kModern));
    EXPECT_EQ(chip(), "Filter: Mine");
    const auto filters = inFile();
    ASSERT_THAT(filters, SizeIs(1));
    EXPECT_EQ(filters[0].getFilterName(), "Mine");
    EXPECT_THAT(filters[0].getDatabaseIds(), ElementsAre("Doors", "Lamps"));
    EXPECT_EQ(names(), QStringList({"Doors modern", "Lamps modern"}));
    pick("styleChip", "All");
    EXPECT_EQ(names(), QStringList({"Doors modern", "Doors plain", "Lamps modern", "Lamps plain"}));
}

TEST_F(BrowserFilterChipTest, nothingIsSavedWithoutAChoice)
{
    open();
    ASSERT_TRUE(settle());
    QMenu* menu = child<QToolButton>("filterChip").menu();
    const auto isSavable = [&] {
        Q_EMIT menu->aboutToShow();
        return menu->findChild<QAction*>("saveAsFilter")->isEnabled();
    };
    EXPECT_FALSE(isSavable());
    QTest::keyClicks(&child<QLineEdit>("searchField"), "lamps");
    ASSERT_TRUE(settle());
    EXPECT_TRUE(isSavable());
    QTest::keyClicks(&child<QLineEdit>("searchField"), "zzz");
    ASSERT_TRUE(settle());
    EXPECT_FALSE(isSavable());
}

TEST_F(BrowserFilterChipTest, undoTakesTheFilterAndTheChoiceBack)
{
    open();
    chooseModern();
    saveAs("Mine");
    undo();
    EXPECT_EQ(chip(), "Filter");
    EXPECT_THAT(inFile(), SizeIs(0));
    trigger("redo");
    EXPECT_EQ(chip(), "Filter: Mine");
    EXPECT_THAT(inFile(), SizeIs(1));
    pick("filterChip", "No Filter");
    EXPECT_EQ(chip(), "Filter");
    undo();
    EXPECT_EQ(chip(), "Filter: Mine");
    EXPECT_EQ(names(), QStringList({"Doors modern", "Lamps modern"}));
}

TEST_F(BrowserFilterChipTest, redoThatCannotBeIsToldAndOfferedNoMore)
{
    manager.setLibraryFilters({LibraryFilter("Light", 3, {"Lamps"})});
    manager.saveFilters();
    manager.loadFilters();
    open();
    ASSERT_TRUE(settle());
    pick("filterChip", "Light");
    undo();
    EXPECT_EQ(chip(), "Filter");
    ASSERT_TRUE(child<QAction>("redo").isEnabled());
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(manager.getFilterFullname(), {}, -1));
    QString told;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            told = box->text();
            box->accept();
        }
    });
    answer.start(1);
    trigger("redo");
    EXPECT_TRUE(told.startsWith("The filters were not changed: ")) << told.toStdString();
    EXPECT_FALSE(child<QAction>("redo").isEnabled());
    EXPECT_EQ(child<QAction>("redo").text(), "&Redo");
    EXPECT_EQ(chip(), "Filter");
}

TEST_F(BrowserFilterChipTest, undoOfTheEditorKeepsWhatOtherProgramsDid)
{
    manager.setLibraryFilters({LibraryFilter("Light", 3, {"Lamps"}), LibraryFilter("Wood", 4, {"Tables"})});
    manager.saveFilters();
    manager.loadFilters();
    open();
    inDialog([&] { pick("filterChip", "Edit the filters"); },
             [](QDialog& dialog) {
                 QTest::mouseClick(dialog.findChild<QPushButton*>("removeFilter"), Qt::LeftButton);
                 QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                                   Qt::LeftButton);
             });
    ASSERT_THAT(inFile(), SizeIs(1));
    std::vector<LibraryFilter> others = inFile();
    others.emplace_back("Added", 9, std::vector<std::string>{"Doors"});
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(manager.getFilterFullname(), others, -1));
    undo();
    std::vector<std::string> found;
    for (const LibraryFilter& filter : inFile())
        found.push_back(filter.getFilterName());
    EXPECT_THAT(found, testing::UnorderedElementsAre("Light", "Wood", "Added"));
}

TEST_F(BrowserFilterChipTest, nameThatCannotBeIsToldAndAskedForAgain)
{
    manager.setLibraryFilters({LibraryFilter("Light", 3, {"Lamps"})});
    manager.saveFilters();
    manager.loadFilters();
    open();
    chooseModern();
    QStringList told;
    QTimer answer; // enters the names and closes the messages in between
    QStringList toEnter{"Light", " ", "Dark"};
    QObject::connect(&answer, &QTimer::timeout, [&] {
        QWidget* top = QApplication::activeModalWidget();
        if (auto* box = qobject_cast<QMessageBox*>(top)) {
            told << box->text();
            box->accept();
        } else if (auto* dialog = qobject_cast<QInputDialog*>(top); dialog && !toEnter.isEmpty()) {
            dialog->setTextValue(toEnter.takeFirst());
            dialog->accept();
        }
    });
    answer.start(1);
    pick("filterChip", "Save as filter");
    EXPECT_EQ(told, QStringList(
                        {QString::fromUtf8("There is a filter “Light” already."), "A filter needs a name."}));
    EXPECT_EQ(chip(), "Filter: Dark");
    EXPECT_THAT(inFile(), SizeIs(2));
}
