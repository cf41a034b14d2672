// Takes the screenshots for the documents, offscreen:
// `orv_browser_screenshots ROOT REDIRECT EMPTY-ROOT OUT [light|dark [rtl]]`.
#include <cstdio>
#include <stdexcept>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFont>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include "OrvHost/AppHost.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/Translations.h"
#include "apps/orv-browser/activities/WindowMessages.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/gallery/GalleryViews.h"

namespace {

constexpr int kSettleMilliseconds = 300; // time to load the item pictures

QString gFolder;
QString gSuffix;

void save(QWidget& widget, const QString& name, int settle = kSettleMilliseconds)
{
    QTest::qWait(settle);
    const QString path = gFolder + "/" + name + gSuffix + ".png";
    if (!widget.grab().toImage().convertToFormat(QImage::Format_RGB888).save(path, "PNG", 0))
        throw std::runtime_error(path.toStdString() + " cannot be written");
}

void settle(MainWindow& window)
{
    if (!QTest::qWaitFor([&] { return window.gallery().isSettled(); }))
        throw std::runtime_error("the items did not come");
}

Place catalogNamed(MainWindow& window, const QString& name)
{
    settle(window);
    for (const auto& catalog : window.gallery().views().model().found().index->catalogs())
        if (catalog->name() == name)
            return {Place::Kind::Catalog, catalog->category(), catalog->database(), -1};
    throw std::runtime_error("no catalog " + name.toStdString());
}

void selectRow(MainWindow& window, int row)
{
    settle(window);
    const ItemDrag::Item item = window.gallery().views().model().itemAt(row);
    window.gallery().views().select(item.database, item.id);
}

void saveDialog(QWidget& window, const char* action, const QString& name)
{
    QTimer::singleShot(kSettleMilliseconds, &window, [&] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            save(*dialog, name);
            dialog->reject();
        }
    });
    window.findChild<QAction*>(action)->trigger();
}

void saveBrowsing(MainWindow& window)
{
    auto& tree = *window.findChild<QTreeView*>("places");
    window.goTo(catalogNamed(window, "Oakline Cabinets"));
    settle(window);
    tree.expand(tree.currentIndex());
    save(window, "catalog");
    selectRow(window, 4);
    save(window, "browser");
    auto& details = *window.findChild<QScrollArea*>("detailsPane");
    QScrollBar& down = *details.verticalScrollBar();
    down.setValue(down.maximum());
    save(details, "similar");
    down.setValue(0);
    window.findChild<QSlider*>("pictureSize")->setValue(64);
    window.goTo({Place::Kind::Category, 0, {}, -1});
    settle(window);
    save(window, "small");
    window.findChild<QToolButton*>("showList")->click();
    save(window, "list");
    window.findChild<QToolButton*>("showGrid")->click();
    window.findChild<QSlider*>("pictureSize")->setValue(128);

    window.goTo({});
    auto& field = *window.findChild<QLineEdit*>("searchField");
    field.setText("oak 2");
    QTest::qWait(kSettleMilliseconds);
    selectRow(window, 2);
    save(window, "search");
    field.setText("oak spaceship");
    QTest::qWait(kSettleMilliseconds);
    save(window, "nothing");
    field.clear();
    QTest::qWait(kSettleMilliseconds);
}

void saveDialogs(MainWindow& window)
{
    LibraryFilterManager::getLibraryFilterManager().setLibraryFilters(
        {LibraryFilter("Bathroom", 0, {"sample-1", "sample-6"}), LibraryFilter("Garden", 1, {"sample-10"})});
    saveDialog(window, "editFilters", "filters");
    saveDialog(window, "editPreferences", "preferences");
    saveDialog(window, "showLog", "log");
    saveDialog(window, "newLibrary", "new-library");
    error::MessagingSystem::control().notify(__FILE__, __LINE__, error::InformationOnceTrait(),
                                             error::Message::kManufacturerMaterial, {}, {}, {});
    save(window, "message");
}

// The arguments set the colours and the text direction, whatever the preferences and the language say.
void show(MainWindow& window, const QString& service)
{
    const QStringList arguments = QApplication::arguments();
    Appearance::apply(arguments.value(5, Appearance::kLight));
    window.library().overrideService(
        {service, "Demo", "1", {"Garden Party", "Holiday Décor"}, {"Oakline Cabinets"}});
    window.resize(1180, 660); // independent of the screen size
    window.show();
}

void saveUpdate(const OrvHost::AppHost& host, const QString& service)
{
    WindowMessages messages;
    MainWindow window(host.root(), messages);
    show(window, service);
    const auto* state = window.findChild<QLabel*>("serviceState");
    if (!QTest::qWaitFor([&] { return state->text().contains(':'); }))
        throw std::runtime_error("the service was not asked");
    save(window, "first-start");
    auto& summary = *window.findChild<QLabel*>("summary");
    auto& speed = *window.findChild<QLabel*>("speed");
    auto& action = *window.findChild<QAction*>("checkForUpdates");
    action.trigger();
    if (QTest::qWaitFor([&] { return !speed.text().isEmpty() || action.isEnabled(); }, 20000) &&
        !action.isEnabled()) {
        save(window, "update", 0);
        window.findChild<QAction*>("viewActivities")->trigger();
        save(window, "activities");
    }
    if (!QTest::qWaitFor([&] { return action.isEnabled(); }, 60000))
        throw std::runtime_error("the update did not end: " + summary.text().toStdString());
    save(window, "updated");
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setFont(QFont("DejaVu Sans", 10)); // as desktops have it; the platform's own is larger
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 5) {
        std::fputs("usage: orv_browser_screenshots ROOT REDIRECT EMPTY-ROOT OUT [light|dark [rtl]]\n",
                   stderr);
        return 2;
    }
    Translations::install(application);
    if (arguments.contains("rtl")) // before there is a window, as a language has it
        QApplication::setLayoutDirection(Qt::RightToLeft);
    gFolder = arguments[4];
    gSuffix = arguments.size() > 5 ? "-" + arguments.mid(5).join('-') : QString();
    try {
        {
            const OrvHost::AppHost host({fileString(arguments[1].toStdString())});
            WindowMessages messages;
            MainWindow window(host.root(), messages);
            show(window, arguments[2]);
            saveBrowsing(window);
            saveDialogs(window);
        }
        Library::Chooser::cleanup();
        const OrvHost::AppHost host({fileString(arguments[3].toStdString())});
        saveUpdate(host, arguments[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orv_browser_screenshots: %s\n", error.what());
        return 1;
    }
    return 0;
}
