#pragma once

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

/// Tells the thread sanitizer that a function has gone through one of Qt's queues to another thread. The
/// queue makes everything that happened before visible there, but the sanitizer does not look into Qt and
/// would report races that are none. Capture it last in the function, and call `arrive` first in its body.
/// Without the sanitizer it does nothing.
/// @tparam Way names the queue, so that the sanitizer keeps different queues apart
template <class Way>
class ThreadPassage
{
public:
    ThreadPassage() = default;
    ThreadPassage(const ThreadPassage&) noexcept { leave(); }
    ThreadPassage(ThreadPassage&&) noexcept { leave(); }
    ThreadPassage& operator=(const ThreadPassage&) = delete;
    ~ThreadPassage() { arrive(); } // goes before the other captures, also where the function was not called

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
