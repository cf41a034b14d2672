#pragma once

#include <utility>

#include <QMetaObject>
#include <QObject>
#include <QThreadPool>

#include "apps/orv-browser/models/ThreadPassage.h"

/// Work off the interface thread whose result comes back to it.
namespace Background {

struct ToWorker;
struct FromWorker;

/// Runs `work` on the pool and then `done` with its result on the thread of `receiver`, or nothing when the
/// receiver is gone by then. The receiver must wait for its pool before it is destroyed, so that it is there
/// while it is posted to.
/// @param priority of what waits in the pool, the highest goes first
template <class Work, class Done>
void run(QThreadPool& pool, QObject* receiver, Work work, Done done, int priority = 0)
{
    auto task = [receiver, work = std::move(work), done = std::move(done),
                 passage = ThreadPassage<ToWorker>()]() mutable {
        passage.arrive();
        auto result = work();
        auto end = [done = std::move(done), result = std::move(result),
                    back = ThreadPassage<FromWorker>()]() mutable {
            back.arrive();
            done(std::move(result));
        };
        QMetaObject::invokeMethod(receiver, std::move(end), Qt::QueuedConnection);
    };
    pool.start(task, priority);
}

} // namespace Background
