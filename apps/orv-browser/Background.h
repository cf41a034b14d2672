#pragma once

#include <utility>

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QRunnable>
#include <QThreadPool>
#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

/// Work off the interface thread whose result comes back to it.
namespace Background {

/// Goes as the last capture of a function that Qt's queues bring to another thread. The queues see to it that
/// what was done before is there then; the thread sanitizer, which does not look into Qt, is told of it here,
/// and so can watch all the rest. Each way has a passage of its own.
template <class Way>
class Passage
{
public:
    Passage() = default;
    Passage(const Passage&) noexcept { leave(); }
    Passage(Passage&&) noexcept { leave(); }
    Passage& operator=(const Passage&) = delete;
    ~Passage() { arrive(); } // before the other captures, where the function is not called

    /// To be called by the function before all else.
    void arrive()
    {
#ifdef __SANITIZE_THREAD__
        __tsan_acquire(&sMeeting);
#endif
    }

private:
    void leave()
    {
#ifdef __SANITIZE_THREAD__
        __tsan_release(&sMeeting);
#endif
    }

    static inline char sMeeting = 0;
};
struct ToWork;
struct Back;

/// Runs `work` on the pool and then `done` with its result on the thread of `receiver`, or nothing when the
/// receiver is gone by then. The receiver must wait for its pool before it is destroyed, so that it is there
/// while it is posted to.
/// @param priority of what waits in the pool, the highest goes first
template <class Work, class Done>
void run(QThreadPool& pool, QObject* receiver, Work work, Done done, int priority = 0)
{
    auto task = [receiver, work = std::move(work), done = std::move(done),
                 passage = Passage<ToWork>()]() mutable {
        passage.arrive();
        auto result = work();
        auto end = [done = std::move(done), result = std::move(result), back = Passage<Back>()]() mutable {
            back.arrive();
            done(std::move(result));
        };
        QMetaObject::invokeMethod(receiver, std::move(end), Qt::QueuedConnection);
    };
    pool.start(task, priority);
}

} // namespace Background
