#include "apps/orv-library/console/RunLoop.h"

#include <QEventLoop>
#include <QSocketNotifier>

#include "apps/orv-library/console/Interrupt.h"

void RunLoop::run(OrvHost::CatalogUpdateRun& update, UpdateHost& host)
{
    const Interrupt interrupt;
    QEventLoop loop;
    QObject::connect(&update, &OrvHost::CatalogUpdateRun::finished, &loop, &QEventLoop::quit);
    update.start(host);
    // Only from here on, because a cancel has no effect before the updater exists.
    QSocketNotifier notifier(interrupt.descriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&notifier] {
        notifier.setEnabled(false);
        OrvHost::CatalogUpdateRun::cancel();
    });
    loop.exec();
}
