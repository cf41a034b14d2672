#pragma once

#include <string>

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>

#include "tests/orv-browser/EventWatch.h"

namespace test {

/// Measures how long the interface thread takes for each event, including events handled inside it, and
/// reports the times to the EventWatch if there is one.
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
