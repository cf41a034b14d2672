#pragma once

#include <utility>

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QRunnable>
#include <QThreadPool>

/// Work off the interface thread whose result comes back to it.
namespace Background {

/// Runs `work` on the pool and then `done` with its result on the thread of `receiver`, or nothing when the
/// receiver is gone by then. The receiver must wait for its pool before it is destroyed, so that it is there
/// while it is posted to.
/// @param priority of what waits in the pool, the highest goes first
template <class Work, class Done>
void run(QThreadPool& pool, QObject* receiver, Work work, Done done, int priority = 0)
{
    auto task = [receiver, work = std::move(work), done = std::move(done)]() mutable {
        auto result = work();
        QMetaObject::invokeMethod(
            receiver,
            [done = std::move(done), result = std::move(result)]() mutable { done(std::move(result)); },
            Qt::QueuedConnection);
    };
    pool.start(task, priority);
}

} // namespace Background
