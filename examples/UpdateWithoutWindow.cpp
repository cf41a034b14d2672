// Updates the core catalogs in a program without a window. A real program would call killDownload() on
// Control-C.
#include <iostream>
#include <set>
#include <thread>

#include <QCoreApplication>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/LibraryCatalogUpdater.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/SQL.h"

namespace {

class App : public Application
{
public:
    std::string name() const override { return "Example"; }
    fileString contentIndexName() const override { return fileString("Orv_Core_Content_Index.txt"); }
};

/// Has only the slots that a program without a window needs. Invocations of other slots are dropped.
class Host : public QObject
{
    Q_OBJECT

public:
    /// Catalog names in the text are Windows-1252.
    Q_INVOKABLE void onSetText(std::string text) { std::cout << SQL::to_utf8(text) << std::endl; }
    Q_INVOKABLE void onCatalogUpdatedEvent(FileStringPair files)
    {
        FileUtils::moveFile(files.second, files.first, false);
    }
    Q_INVOKABLE void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& data)
    {
        std::cout << "Result " << data.result << "; what went wrong stands in " << Library::ErrorLog::file()
                  << std::endl;
        QCoreApplication::quit();
    }
    Q_INVOKABLE void onClose() { QCoreApplication::quit(); }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);
    App app;
    Application::install(&app);
    FileUtils::createDirectoriesWithPerm(PathUtils::getObject().getCoreLibraryDatabasePath(), false);

    const std::set<fileString> coreFiles{PathUtils::getObject().getCoreLibraryDatabasePath() +
                                         fileString("Doors.orvlib")};
    Host host;
    LibraryCatalogUpdate::LibraryCatalogUpdater updater(host, coreFiles, {}, {}, "Example", "1.0",
                                                        argc > 1 ? argv[1] : "", true);
    std::thread worker(updater);
    qt.exec();
    worker.join();
    Application::install(nullptr);
}

#include "UpdateWithoutWindow.moc"
