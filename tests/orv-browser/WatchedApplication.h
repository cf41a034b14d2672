#pragma once

#include <string>

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>

#include "tests/orv-browser/EventWatch.h"

namespace test {

/// An application that tells the EventWatch, while there is one, how long each event of the interface thread
/// takes, whatever is handled within it.
class WatchedApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (QThread::currentThread() != thread() || mDepth > 0 || !EventWatch::current())
            return QApplication::notify(receiver, event);
        const std::string name =
            std::string(receiver->metaObject()->className()) + ", event " + std::to_string(event->type());
        ++mDepth;
        const double waitedBefore = EventWatch::waitForProcessor();
        QElapsedTimer timer;
        timer.start();
        const bool result = QApplication::notify(receiver, event);
        --mDepth;
        if (auto* watch = EventWatch::current())
            watch->note(static_cast<double>(timer.nsecsElapsed()) / 1e6 -
                            (EventWatch::waitForProcessor() - waitedBefore),
                        name);
        return result;
    }

private:
    int mDepth = 0;
};

} // namespace test
