// The smallest host: it names itself, runs one core update against an address where nobody answers, and waits
// for the closing call.
#include <iostream>
#include <thread>

#include <QCoreApplication>

#include "OrvLibrary/LibraryCatalogUpdater.h"
#include "OrvLibrary/host/Application.h"

namespace {

class Consumer : public Application
{
public:
    std::string name() const override { return "Consumer"; }
    fileString contentIndexName() const override { return fileString("Orv_Core_Content_Index.txt"); }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);
    Consumer application;
    Application::install(&application);

    QObject host;
    LibraryCatalogUpdate::LibraryCatalogUpdater updater(host, {}, {}, {}, "Consumer", "1",
                                                        "http://127.0.0.1:1/redirect", false);
    std::thread worker(updater);
    worker.join();
    Application::install(nullptr);
    std::cout << "the catalog update ran: result 0" << std::endl;
}
