// The window and its dialogs without a mouse and without a screen: the Tab key reaches every control and the
// focus is visible, and each control has a name for screen readers.
#include <functional>
#include <set>

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QGuiApplication>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QTest>

#include <gmock/gmock.h>

#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/start/FirstStartPage.h"
#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

class BrowserAccessTest : public test::BrowserTest
{
protected:
    BrowserAccessTest()
    {
        test::CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
        const int all = doors.addFolder("All");
        doors.addItem(all, {"Oak door", "", 10000, 55, test::CatalogMaker::picture()});
        doors.addItem(all, {"Pine door"});
    }

    /// Whether the user can operate this element.
    static bool isControl(const QAccessibleInterface& one)
    {
        const std::set<QAccessible::Role> controls{
            QAccessible::PushButton,     QAccessible::CheckBox, QAccessible::RadioButton,
            QAccessible::ComboBox,       QAccessible::Slider,   QAccessible::EditableText,
            QAccessible::List,           QAccessible::Tree,     QAccessible::ListItem,
            QAccessible::TreeItem,       QAccessible::MenuItem, QAccessible::ButtonMenu,
            QAccessible::ButtonDropDown, QAccessible::SpinBox,  QAccessible::Link};
        return controls.count(one.role()) != 0;
    }

    /// Descriptions of the visible controls below `one` that have no accessible name.
    static QStringList namelessBelow(QAccessibleInterface* one, int& count, int depth = 0)
    {
        QStringList nameless;
        if (!one || !one->isValid() || one->state().invisible || depth > 30)
            return nameless;
        if (isControl(*one)) {
            ++count;
            if (one->text(QAccessible::Name).isEmpty())
                nameless << (one->object() ? QString(one->object()->metaObject()->className()) + " " +
                                                 one->object()->objectName()
                                           : "role " + QString::number(one->role()));
        }
        const bool isInner = one->role() == QAccessible::ComboBox; // its list opens as a separate popup
        for (int i = 0; !isInner && i < one->childCount(); ++i)
            nameless << namelessBelow(one->child(i), count, depth + 1);
        return nameless;
    }

    static void expectNames(QWidget& top, int least)
    {
        int count = 0;
        const QStringList nameless = namelessBelow(QAccessible::queryAccessibleInterface(&top), count);
        EXPECT_THAT(nameless, testing::IsEmpty())
            << top.objectName().toStdString() << ": " << nameless.join(", ").toStdString();
        EXPECT_GE(count, least) << top.objectName().toStdString();
    }

    /// Presses the Tab key until the focus returns. Each stop must be visible, inside the window, and show
    /// its focus.
    static void expectVisibleStops(QWidget& top, int least)
    {
        top.activateWindow();
        QApplication::setActiveWindow(&top);
        std::set<QWidget*> stops;
        QStringList order;
        for (int step = 0; step < 60; ++step) {
            QWidget* before = QApplication::focusWidget();
            QTest::keyClick(before ? before : &top, Qt::Key_Tab);
            QWidget* stop = QApplication::focusWidget();
            ASSERT_NE(stop, nullptr) << top.objectName().toStdString();
            if (stop == before)
                continue; // the focus moved to the next link of the same text
            if (!stops.insert(stop).second)
                break;
            const std::string name = std::string(stop->metaObject()->className()) + " " +
                                     stop->objectName().toStdString() + " in " +
                                     top.objectName().toStdString();
            EXPECT_TRUE(stop->isVisible() && stop->isEnabled()) << name;
            const QRect place(stop->mapTo(&top, QPoint(-3, -3)), stop->size() + QSize(6, 6));
            EXPECT_TRUE(top.rect().intersects(place)) << name;
            const QImage with = top.grab(place).toImage();
            stop->clearFocus();
            const QImage without = top.grab(place).toImage();
            stop->setFocus(Qt::TabFocusReason);
            EXPECT_TRUE(with != without) << name << " does not show its focus";
            order << QString::fromStdString(name);
        }
        EXPECT_GE(static_cast<int>(stops.size()), least) << order.join("; ").toStdString();
    }

    /// A window without a set size must fit the small screen of the test platform.
    void expectToFitTheScreen()
    {
        WindowMessages messages;
        MainWindow fresh(fileString(inRoot("")), messages);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const auto fits = [&] {
            return screen.contains(fresh.pos()) && fresh.width() <= screen.width() &&
                   fresh.height() <= screen.height();
        };
        EXPECT_TRUE(fits());
        fresh.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&fresh));
        EXPECT_TRUE(fits()) << fresh.x() << ", " << fresh.y() << ": " << fresh.width() << " x "
                            << fresh.height() << " on " << screen.width() << " x " << screen.height();
    }
};

} // namespace

TEST_F(BrowserAccessTest, everyControlOfTheWindowHasAName)
{
    open();
    ASSERT_TRUE(settle());
    select("Oak door");
    expectNames(window(), 25);
}

TEST_F(BrowserAccessTest, everyControlOfTheDialogsHasAName)
{
    inEachDialog([](QDialog& dialog) { expectNames(dialog, 1); });
}

TEST_F(BrowserAccessTest, picturesAreNamedByTheirItems)
{
    open();
    ASSERT_TRUE(settle());
    QAccessibleInterface* gallery = QAccessible::queryAccessibleInterface(&child<QListView>("gallery"));
    ASSERT_NE(gallery, nullptr);
    QAccessibleTableInterface* table = gallery->tableInterface();
    ASSERT_NE(table, nullptr);
    QStringList found;
    for (int row = 0; row < table->rowCount(); ++row)
        found << table->cellAt(row, 0)->text(QAccessible::Name);
    EXPECT_EQ(found, QStringList({"Oak door, from Doors", "Pine door, from Doors"}));
}

TEST_F(BrowserAccessTest, everyTabStopOfTheWindowShowsItsFocus)
{
    open();
    ASSERT_TRUE(settle());
    select("Oak door");
    expectVisibleStops(window(), 8);
}

TEST_F(BrowserAccessTest, everyTabStopOfTheDialogsShowsItsFocus)
{
    inEachDialog([](QDialog& dialog) { expectVisibleStops(dialog, 2); });
}

TEST_F(BrowserAccessTest, tabStopsShowTheirFocusOnADarkGround)
{
    open();
    ASSERT_TRUE(settle());
    Appearance::apply(Appearance::kDark);
    select("Oak door");
    expectVisibleStops(window(), 8);
    Appearance::apply(Appearance::kSystem);
}

TEST_F(BrowserAccessTest, pageOfAnEmptyLibraryIsNamedAndShowsItsFocus)
{
    ASSERT_TRUE(QFile::remove(QString::fromStdString(inRoot("core/Doors.orvlib"))));
    open();
    FirstStartPage& page = window().gallery().firstStart();
    ServiceOffer offer;
    offer.bonus = {{"Garden Party.orvlib", 400'000}};
    page.showCatalogs(offer, {});
    page.offerSamples(true);
    page.setFetchable(true);
    expectNames(page, 5);
    expectVisibleStops(window(), 8);
}

TEST_F(BrowserAccessTest, windowThatWasLargerThanTheScreenFitsIt)
{
    test::writeFile(inRoot("browser-state.json"), R"({"geometry": [-500, 9000, 90000, 70000]})");
    expectToFitTheScreen();
}

TEST_F(BrowserAccessTest, windowFitsTheScreenAtTheFirstStart)
{
    expectToFitTheScreen();
}

TEST_F(BrowserAccessTest, enterInThePreviewOfManufacturersRefreshesThem)
{
    test::BrowserService service(folder().path() + "/service");
    test::writeFile(inRoot("settings.json"), service.manufacturerSettings());
    open();
    inDialog([&] { trigger("refreshManufacturers"); },
             [](QDialog& dialog) {
                 QTest::keyClick(&dialog, Qt::Key_Return); // too early: no changes to apply
                 EXPECT_TRUE(dialog.isVisible());
                 auto* changes = dialog.findChild<QListWidget*>("manufacturerChanges");
                 ASSERT_TRUE(waitFor([&] { return changes->count() == 4; }));
                 QTest::keyClick(&dialog, Qt::Key_Return);
             });
    EXPECT_EQ(summary(), "The manufacturer records were refreshed.");
    EXPECT_TRUE(ManufacturerManager::getManufacturerManager()->manufacturerExists(103));
}

TEST_F(BrowserAccessTest, enterInTheOtherDialogsNeverMeansCancel)
{
    open();
    for (const char* action : {"editPreferences", "editFilters"}) {
        int result = -1;
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     QObject::connect(&dialog, &QDialog::finished, [&](int code) { result = code; });
                     QTest::keyClick(&dialog, Qt::Key_Return);
                 });
        EXPECT_EQ(result, QDialog::Accepted) << action;
    }
}
