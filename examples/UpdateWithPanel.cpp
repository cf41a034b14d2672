// Shows a catalog update in a progress panel. The window owns the panel and forwards the updater's progress
// to it.
#include <iostream>
#include <thread>

#include <QApplication>
#include <QMainWindow>
#include <QSplitter>

#include "OrvLibrary/LibraryCatalogUpdater.h"
#include "OrvLibrary/UI/qtLibraryProgressPanel.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace {

class App : public Application
{
public:
    std::string name() const override { return "Example"; }
    fileString contentIndexName() const override { return fileString("Orv_Core_Content_Index.txt"); }
};

/// Receives every invocation of the updater on the interface thread and forwards the progress slots to the
/// panel.
class Window : public QMainWindow
{
    Q_OBJECT

public:
    Window()
    {
        auto* splitter = new QSplitter(Qt::Vertical, this);
        splitter->setObjectName("libMainSplitter");
        setCentralWidget(splitter);
        mPanel = LibraryProgressPanel::create(this);
    }

    Q_INVOKABLE void onSetText(std::string text) { mPanel->onSetText(text); }
    Q_INVOKABLE void onSetUnits(std::string units) { mPanel->onSetUnits(units); }
    Q_INVOKABLE void onSetRangeInGauge(size_t range) { mPanel->onSetRangeInGauge(range); }
    Q_INVOKABLE void onSetValueInGauge(size_t value) { mPanel->onSetValueInGauge(value); }
    Q_INVOKABLE void onUpdateInGauge() { mPanel->onUpdateInGauge(); }
    Q_INVOKABLE void onCatalogUpdatedEvent(FileStringPair files)
    {
        FileUtils::moveFile(files.second, files.first,
                            false); // one rename: the catalog is old or new
    }
    Q_INVOKABLE void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& outcome)
    {
        std::cout << "Updated " << outcome.updatedCatalogs.size() << " catalogs, result " << outcome.result
                  << std::endl;
        QApplication::quit();
    }
    Q_INVOKABLE void onClose() { QApplication::quit(); }

private:
    LibraryProgressPanel* mPanel = nullptr;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication qt(argc, argv);
    App app;
    Application::install(&app);
    FileUtils::createDirectoriesWithPerm(PathUtils::getObject().getCoreLibraryDatabasePath(), false);

    Window window;
    window.show();
    LibraryCatalogUpdate::LibraryCatalogUpdater updater(window, {}, {}, {}, "Example", "1.0",
                                                        argc > 1 ? argv[1] : "", false);
    std::thread worker(updater); // the thread owns a copy of the updater
    qt.exec();
    worker.join();
    Application::install(nullptr);
}

#include "UpdateWithPanel.moc"
