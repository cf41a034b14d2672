#pragma once

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

/// Tells the thread sanitizer that a function has passed through one of Qt's queues to another thread. The
/// queue makes earlier writes visible there, but the sanitizer does not see this and would report races.
/// Capture it last in the function, and call `arrive` first in its body. Without the sanitizer it does
/// nothing.
/// @tparam Way identifies the queue, so that the sanitizer distinguishes queues
template <class Way>
class ThreadPassage
{
public:
    ThreadPassage() = default;
    ThreadPassage(const ThreadPassage&) noexcept { leave(); }
    ThreadPassage(ThreadPassage&&) noexcept { leave(); }
    ThreadPassage& operator=(const ThreadPassage&) = delete;
    ~ThreadPassage() { arrive(); } // destroyed before the other captures, even if the function was not called

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
