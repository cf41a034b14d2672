// The smallest host with a careful update: it updates the core catalogs and reports the outcome.
#include <iostream>
#include <optional>

#include <QCoreApplication>

#include "OrvHost/AppHost.h"
#include "OrvHost/update/CatalogUpdateRun.h"

class Host : public QObject
{
    Q_OBJECT

public:
    explicit Host(OrvHost::CatalogUpdateRun& run) : mRun(run) {}
    Q_INVOKABLE void onCatalogUpdatedEvent(FileStringPair files)
    {
        mRun.swapper().swapIn(files.first, files.second);
    }
    Q_INVOKABLE void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& data) { closing = data; }

    std::optional<LibraryCatalogUpdate::UpdateData> closing; ///< none after a cancel

private:
    OrvHost::CatalogUpdateRun& mRun;
};

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);
    const OrvHost::AppHost appHost({});
    OrvHost::CatalogUpdateRun::Request request;
    request.url = argc > 1 ? argv[1] : "";
    request.product = "Consumer";
    request.productVersion = "1.0";
    request.coreOnly = true;

    OrvHost::CatalogUpdateRun run(request);
    Host host(run);
    QObject::connect(&run, &OrvHost::CatalogUpdateRun::finished, &qt, &QCoreApplication::quit);
    run.start(host);
    qt.exec();
    const OrvHost::UpdateOutcome outcome = run.finish(host.closing, appHost.root());
    std::cout << outcome.name() << ", " << outcome.updatedCatalogs.size() << " new" << std::endl;
    if (!outcome.error.empty())
        std::cerr << outcome.error << std::endl;
    return outcome.isGood() ? 0 : 1;
}

#include "main.moc"
