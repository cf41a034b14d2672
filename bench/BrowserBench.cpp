// How long the window takes: to start, to open folders of a large library, and for its longest event
// meanwhile. `bench_browser [ROUNDS]` prints the median and the worst of the rounds, offscreen.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QTest>
#include <QTreeView>

#include "OrvHost/AppHost.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/activities/WindowMessages.h"
#include "apps/orv-browser/models/LibraryModel.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/orv-browser/WatchedApplication.h"
#include "tests/support/TempFolder.h"

namespace {

using test::CatalogMaker;

constexpr int kMostMilliseconds = 60000;

std::map<std::string, std::vector<double>> gFigures;

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void makeContent(const std::string& root)
{
    const QByteArray picture = CatalogMaker::picture();
    {
        CatalogMaker large(root + "/core/Large.orvlib", "large");
        for (int folder = 0; folder < 10; ++folder)
            large.addItems(large.addFolder("Folder " + std::to_string(folder)), 10000, picture);
    }
    {
        CatalogMaker huge(root + "/core/Huge.orvlib", "huge");
        huge.addItems(huge.addFolder("All"), 200000);
    }
    for (int number = 0; number < 48; ++number) {
        CatalogMaker catalog(root + "/core/Catalog " + std::to_string(number) + ".orvlib",
                             "id " + std::to_string(number));
        catalog.addItems(catalog.addFolder("All"), 100, picture);
    }
}

QModelIndex childNamed(const QAbstractItemModel& model, const QModelIndex& parent, const QString& name)
{
    return model.match(model.index(0, 0, parent), Qt::DisplayRole, name, 1, Qt::MatchExactly).value(0);
}

/// Opens a folder of a catalog: until all rows are there and painted.
void open(QTreeView& tree, const QString& catalogName, const QString& folderName, const std::string& what)
{
    auto& model = dynamic_cast<LibraryModel&>(*tree.model());
    const QPersistentModelIndex catalog(childNamed(model, model.index(0, 0), catalogName));
    tree.expand(catalog);
    QTest::qWaitFor([&] { return model.isRead(catalog); }, kMostMilliseconds);
    const QPersistentModelIndex folder(childNamed(model, catalog, folderName));
    tree.scrollTo(folder, QAbstractItemView::PositionAtTop);
    QCoreApplication::processEvents();

    const test::EventWatch watch;
    QElapsedTimer timer;
    timer.start();
    tree.expand(folder);
    while (!model.isRead(folder))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    gFigures[what].push_back(milliseconds(timer));
    gFigures[what + ", longest event"].push_back(watch.longest());
}

void round(const fileString& root)
{
    WindowMessages messages;
    QElapsedTimer timer;
    timer.start();
    MainWindow window(root, messages);
    window.show();
    window.start();
    if (!QTest::qWaitForWindowExposed(&window))
        std::fputs("the window is not exposed\n", stderr);
    gFigures["start with 50 catalogs"].push_back(milliseconds(timer));
    auto& tree = *window.findChild<QTreeView*>("libraryTree");
    open(tree, "Large", "Folder 3", "open 10,000 items among 100,000");
    open(tree, "Huge", "All", "open 200,000 items");
    timer.restart();
    tree.collapseAll();
    QCoreApplication::processEvents();
    gFigures["close all"].push_back(milliseconds(timer));
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    test::WatchedApplication application(argc, argv);
    const int rounds = std::max(1, QApplication::arguments().value(1, "5").toInt());
    const test::TempFolder folder;
    {
        const OrvHost::AppHost host({folder.file("root")});
        makeContent(folder.path() + "/root");
        for (int i = 0; i < rounds; ++i)
            round(host.root());
    }
    Library::Chooser::cleanup();
    for (auto& [what, figures] : gFigures) {
        std::sort(figures.begin(), figures.end());
        std::printf("%-50s %8.1f ms, worst %8.1f ms\n", what.c_str(), figures[figures.size() / 2],
                    figures.back());
    }
    return 0;
}
