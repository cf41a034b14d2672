#include "tests/catalog/UpdateRun.h"

#include <thread>

#include <QEventLoop>

namespace test {

using LibraryCatalogUpdate::LibraryCatalogUpdater;

LibraryCatalogUpdater makeUpdater(QObject& host, const UpdateArguments& arguments)
{
    return LibraryCatalogUpdater(host, arguments.core, arguments.bonus, arguments.manufacturer,
                                 arguments.product, arguments.version, arguments.redirect,
                                 arguments.coreOnly);
}

void runUpdate(LibraryCatalogUpdater updater)
{
    QEventLoop loop;
    std::thread worker([&loop, run = std::move(updater)]() mutable {
        run();
        // Everything that the run posted to objects of this thread is delivered before.
        QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
}

void runUpdate(QObject& host, const UpdateArguments& arguments)
{
    runUpdate(makeUpdater(host, arguments));
}

} // namespace test
