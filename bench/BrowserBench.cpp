// Times of the window with 200,000 items in one catalog and 48 small catalogs: until the window is shown,
// until the items are shown, for scrolling, for a key in the search field, and for the longest event
// meanwhile. Also the memory it needs. `bench_browser [ROUNDS]` runs offscreen and prints the median and the
// worst value of the rounds.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QTest>
#include <QTreeView>

#include "OrvHost/AppHost.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/activities/WindowMessages.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/orv-browser/WatchedApplication.h"
#include "tests/support/TempFolder.h"

namespace {

using test::CatalogMaker;

std::map<std::string, std::vector<double>> gFigures;

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void makeContent(const std::string& root)
{
    const QByteArray picture = CatalogMaker::picture();
    {
        CatalogMaker huge(root + "/core/Huge.orvlib", "huge");
        for (int folder = 0; folder < 20; ++folder)
            huge.addItems(huge.addFolder("Folder " + std::to_string(folder)), 10000, picture);
    }
    for (int number = 0; number < 48; ++number) {
        CatalogMaker catalog(root + "/core/Catalog " + std::to_string(number) + ".orvlib",
                             "id " + std::to_string(number));
        catalog.addItems(catalog.addFolder("All"), 100, picture);
    }
}

/// Runs `act` and waits until its items are shown.
void measure(MainWindow& window, const std::string& what, const std::function<void()>& act)
{
    const test::EventWatch watch;
    QElapsedTimer timer;
    timer.start();
    act();
    while (!window.gallery().isSettled())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    gFigures[what].push_back(milliseconds(timer));
    gFigures[what + ", longest event"].push_back(watch.longest());
}

void scrollThrough(MainWindow& window)
{
    QScrollBar& bar = *window.findChild<QListView*>("gallery")->verticalScrollBar();
    const test::EventWatch watch;
    for (int step = 0; step <= 300; ++step) {
        bar.setValue(static_cast<int>(static_cast<long long>(bar.maximum()) * step / 300));
        QCoreApplication::processEvents();
    }
    gFigures["scroll through 200,000 items, longest event"].push_back(watch.longest());
}

void round(const fileString& root)
{
    WindowMessages messages;
    QElapsedTimer timer;
    timer.start();
    MainWindow window(root, messages);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        std::fputs("the window is not exposed\n", stderr);
    gFigures["start"].push_back(milliseconds(timer));
    measure(window, "read and show 204,800 items", [] {});
    scrollThrough(window);
    auto& tree = *window.findChild<QTreeView*>("places");
    const fileString huge = root / fileString("core/Huge.orvlib");
    measure(window, "go to a folder of 10,000 items", [&] {
        window.goTo({Place::Kind::Folder, 0, huge, 7});
    });
    measure(window, "go back to everything", [&] { window.goTo({}); });
    tree.collapseAll();
    auto& field = *window.findChild<QLineEdit*>("searchField");
    for (const char letter : std::string("item 19"))
        measure(window, "a key of a search", [&] {
            QTest::keyClick(&field, letter);
            QTest::qWait(31); // the search waits 30 ms for the next key
        });
}

/// The peak memory of the process in megabytes.
double mostMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1000;
    return 0;
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
    std::printf("%-50s %8.1f MB\n", "most memory", mostMemory());
    return 0;
}
