#pragma once

#include <utility>

#include <QMetaObject>
#include <QObject>
#include <QThreadPool>

#include "apps/orv-browser/models/ThreadPassage.h"

/// Runs work on another thread and returns its result to the interface thread.
namespace Background {

struct ToWorker;
struct FromWorker;

/// Runs `work` on the pool and then calls `done` with its result on the thread of `receiver`. If the receiver
/// has been destroyed by then, `done` is not called. The receiver's destructor must wait for its pool, so
/// that the receiver exists while results are posted to it.
/// @param priority among the work waiting in the pool, the highest is first
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
