#include "tests/orv-browser/BrowserTest.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/Utility/Chooser.h"

namespace test {

namespace {

constexpr int kMostMilliseconds = 30000;

} // namespace

BrowserTest::BrowserTest() : mHost({mFolder.file("root")})
{
    LibraryFilterManager::getLibraryFilterManager().loadFilters(); // this root has none
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
    mWindow->overrideService({service, {}, {}, {}, {}});
    mWindow->show();
    mWindow->start();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(mWindow.get()));
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
    return child<QTreeView>("libraryTree");
}

LibraryModel& BrowserTest::model()
{
    return dynamic_cast<LibraryModel&>(*tree().model());
}

QString BrowserTest::summary()
{
    return child<QLabel>("summary").text();
}

bool BrowserTest::waitFor(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, kMostMilliseconds);
}

QModelIndex BrowserTest::openPath(const QStringList& names)
{
    QModelIndex index;
    for (const QString& name : names) {
        if (index.isValid()) {
            tree().expand(index);
            const QPersistentModelIndex place(index);
            EXPECT_TRUE(waitFor([&] { return model().isRead(place); }));
            index = place;
        }
        index = childNamed(index, name);
        if (!index.isValid())
            return {};
    }
    return index;
}

QModelIndex BrowserTest::childNamed(const QModelIndex& parent, const QString& name)
{
    for (int row = 0; row < model().rowCount(parent); ++row) {
        const QModelIndex index = model().index(row, 0, parent);
        if (index.data().toString() == name)
            return index;
    }
    return {};
}

QStringList BrowserTest::childNames(const QModelIndex& parent)
{
    QStringList names;
    for (int row = 0; row < model().rowCount(parent); ++row)
        names << model().index(row, 0, parent).data().toString();
    return names;
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

void BrowserTest::trigger(const char* action)
{
    child<QAction>(action).trigger();
}

} // namespace test
