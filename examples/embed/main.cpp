// The smallest host that does something: it brings the core catalogs up to date and says how that went.
#include <iostream>
#include <thread>

#include <QCoreApplication>

#include "OrvLibrary/LibraryCatalogUpdater.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

class App : public Application
{
public:
    std::string name() const override { return "Consumer"; }
    fileString contentIndexName() const override { return fileString("Orv_Core_Content_Index.txt"); }
};

class Host : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void onCatalogUpdatedEvent(FileStringPair files)
    {
        if (!FileUtils::moveFile(files.second, files.first, false))
            std::cerr << files.first << " could not be put in place" << std::endl;
    }
    Q_INVOKABLE void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& outcome)
    {
        std::cout << "result " << outcome.result << ", " << outcome.updatedCatalogs.size() << " updated"
                  << std::endl;
        QCoreApplication::quit();
    }
    Q_INVOKABLE void onClose() { QCoreApplication::quit(); }
};

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);
    App app;
    Application::install(&app);
    RootPathUtils folders(RootPathUtils::defaultRoot());
    PathUtils::install(&folders);
    std::string reason;
    if (!folders.createFolders(reason)) {
        std::cerr << reason << std::endl;
        return 1;
    }

    Host host;
    LibraryCatalogUpdate::LibraryCatalogUpdater updater(host, {}, {}, {}, "Consumer", "1.0",
                                                        argc > 1 ? argv[1] : "", true);
    std::thread worker(updater);
    qt.exec();
    worker.join();
    PathUtils::install(nullptr);
    Application::install(nullptr);
}

#include "main.moc"
