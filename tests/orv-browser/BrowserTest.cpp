#include "tests/orv-browser/BrowserTest.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "tests/orv-browser/BrowserService.h"

namespace test {

namespace {

constexpr int kMostMilliseconds = 30000;

} // namespace

BrowserTest::BrowserTest() : mHost({mFolder.file("root")})
{
    LibraryFilterManager::getLibraryFilterManager().loadFilters(); // the new root has no filters
}

BrowserTest::~BrowserTest()
{
    close();
    ManufacturerManager::cleanup();
    Library::Chooser::cleanup();
}

void BrowserTest::open(const QString& service)
{
    mWindow = std::make_unique<MainWindow>(mHost.root(), mMessages);
    mWindow->library().overrideService({service, {}, {}, {}, {}});
    mWindow->resize(1180, 720); // independent of the screen size
    mWindow->show();
    mWindow->library().start();
    // Menu shortcuts work only in the active window, and the test platform has no window manager to activate
    // it.
    mWindow->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(mWindow.get()));
}

void BrowserTest::close()
{
    if (!mWindow)
        return;
    mWindow->close();
    mWindow.reset();
}

QTreeView& BrowserTest::tree()
{
    return child<QTreeView>("places");
}

PlacesModel& BrowserTest::places()
{
    return dynamic_cast<PlacesModel&>(*tree().model());
}

GalleryModel& BrowserTest::items()
{
    return dynamic_cast<GalleryModel&>(*child<QListView>("gallery").model());
}

QString BrowserTest::summary()
{
    return child<QLabel>("summary").text();
}

bool BrowserTest::waitFor(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, kMostMilliseconds);
}

bool BrowserTest::settle()
{
    return waitFor([&] { return window().gallery().isSettled(); });
}

QModelIndex BrowserTest::place(const QStringList& names)
{
    EXPECT_TRUE(settle());
    QModelIndex index;
    for (const QString& name : names) {
        tree().expand(index);
        QModelIndex found;
        for (int row = 0; row < places().rowCount(index) && !found.isValid(); ++row)
            if (places().index(row, 0, index).data().toString() == name)
                found = places().index(row, 0, index);
        if (!found.isValid())
            return {};
        index = found;
    }
    return index;
}

bool BrowserTest::goTo(const QStringList& names)
{
    const QModelIndex index = place(names);
    if (!index.isValid())
        return false;
    tree().setCurrentIndex(index);
    return settle();
}

QStringList BrowserTest::placesBelow(const QModelIndex& parent)
{
    QStringList names;
    for (int row = 0; row < places().rowCount(parent); ++row)
        names << places().index(row, 0, parent).data().toString();
    return names;
}

QStringList BrowserTest::names()
{
    EXPECT_TRUE(settle());
    QStringList names;
    for (int row = 0; row < items().rowCount(); ++row)
        names << items().index(row, 0).data().toString();
    return names;
}

void BrowserTest::select(const QString& name)
{
    const int row = names().indexOf(name);
    ASSERT_GE(row, 0) << name.toStdString();
    auto& gallery = child<QListView>("gallery");
    gallery.scrollTo(items().index(row, 0));
    const QRect tile = gallery.visualRect(items().index(row, 0));
    QTest::mouseClick(gallery.viewport(), Qt::LeftButton, {}, tile.center());
}

QString BrowserTest::detail(const char* label)
{
    const auto& found = child<QLabel>(label);
    const QString plain = found.property("plainText").toString();
    return plain.isEmpty() ? found.text() : plain;
}

void BrowserTest::inDialog(const std::function<void()>& act, const std::function<void(QDialog&)>& answer)
{
    bool isAnswered = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || isAnswered)
            return;
        isAnswered = true;
        answer(*dialog);
    });
    look.start(1);
    act();
    EXPECT_TRUE(isAnswered) << "no dialog was opened";
}

void BrowserTest::inEachDialog(const std::function<void(QDialog&)>& look)
{
    BrowserService service(mFolder.path() + "/service");
    writeFile(inRoot("settings.json"), service.manufacturerSettings());
    open();
    for (const char* action :
         {"editPreferences", "editFilters", "showLog", "showKeys", "refreshManufacturers"})
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     const auto* changes = dialog.findChild<QListWidget*>("manufacturerChanges");
                     EXPECT_TRUE(waitFor([&] { return !changes || changes->count() > 0; })) << action;
                     look(dialog);
                     dialog.reject();
                 });
}

void BrowserTest::pick(const char* chip, const QString& entry)
{
    QMenu* menu = child<QToolButton>(chip).menu();
    Q_EMIT menu->aboutToShow();
    for (QAction* action : menu->actions())
        if (action->text().startsWith(entry)) {
            action->trigger();
            return;
        }
    ADD_FAILURE() << "no entry " << entry.toStdString();
}

void BrowserTest::trigger(const char* action)
{
    child<QAction>(action).trigger();
}

} // namespace test
